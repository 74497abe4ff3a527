// FormShow and FormResult end to end: the served form answered by an HTTP client over a socket.
#include "commands/dialogs/gui_formshow.h"
#include "framework/headless.h"
#include "framework/systemlog.h"
#include "host/hostservices.h"
#include "tests/commands/params.h"
#include "tests/support/httpclient.h"
#include "tests/support/process.h"
#include "tests/support/testhost.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>
#include <thread>

namespace dv {
namespace {

using namespace test;
using namespace std::chrono_literals;

constexpr qsizetype kMiB = 1024 * 1024;

QByteArray Post(const QUrl& url, const QByteArray& body) { return PostRequest(url.port(), url.path(QUrl::FullyEncoded).toUtf8(), body); }

// Shows File through FormShow; the message of what it raised, or "".
QString Show(TDVParser& parser, const QString& file)
{
    TDVCmdFormShow show(&parser);
    TParamList params = MakeParams({{"File", file.toUtf8().constData()}});
    return RaisedMessage<TDravikException>([&] { show.Run(params); }).value_or("");
}

class FormTest : public testing::Test {
protected:
    void SetUp() override
    {
        // Every host has an application object; the form's server thread needs one too.
        if (!QCoreApplication::instance()) app = std::make_unique<QCoreApplication>(argc, nullptr);
        SystemLog.SetSink([this](const QString&, const QString& text) { warnings << text; });
        ASSERT_TRUE(QDir(root.path()).mkdir("form"));
        WriteFile(root.filePath("form/eingabe.html"), "<form method=post><input name=Name></form>");
        WriteFile(root.filePath("form/stil.css"), "body{}");
        WriteFile(root.filePath("geheim.txt"), "geheim");
        ASSERT_EQ(Show(host, root.filePath("form/eingabe.html")), "");
        ASSERT_TRUE(ShownForm());
        url = QUrl(ShownForm()->Url());
    }
    void TearDown() override
    {
        CloseShownForm();
        SetHeadlessAnswers({});
        SystemLog.SetSink({});
    }

    // FormResult on a thread of its own, as the host runs it; the future is ready when it ended.
    std::future<void> StartResult(TParamRows rows)
    {
        return std::async(std::launch::async, [this, params = MakeParams(rows)]() mutable {
            TDVCmdFormResult result(&host);
            failure = RaisedMessage<TDravikException>([&] { result.RunThreaded(params); }).value_or(failure);
        });
    }
    // Waits for a FormResult started by StartResult; one that still waits after 10 s is stopped so
    // that the test fails instead of hanging.
    bool Ended(std::future<void>& waiting)
    {
        if (waiting.wait_for(10s) == std::future_status::ready) return true;
        host.runControl.SignalStop();
        waiting.wait();
        return false;
    }
    bool Ended(std::future<void>&& waiting) { return Ended(waiting); }

    int argc = 0;
    std::unique_ptr<QCoreApplication> app;
    QTemporaryDir root;
    TTestHost host;
    QUrl url;
    QString failure;
    QStringList warnings;
};

TEST_F(FormTest, ServesOnlyTheFormsFolderToThisHostUnderItsToken)
{
    const QByteArray token = ShownForm()->Token().toUtf8(), path = url.path().toUtf8();
    const int port = url.port();
    EXPECT_EQ(url.host(), "127.0.0.1");
    EXPECT_TRUE(url.path().endsWith("/eingabe.html"));
    const std::pair<QByteArray, int> rows[] = {
        {GetRequest(port, path), 200},
        {GetRequest(port, "/" + token + "/stil.css"), 200},
        {GetRequest(port, "/" + token + "/../geheim.txt"), 403},
        {GetRequest(port, "/" + token + "/%2e%2e/geheim.txt"), 403},
        {GetRequest(port, "/" + token + "x/eingabe.html"), 404},
        {GetRequest(port, "/eingabe.html"), 404},
        {GetRequest(port, "/" + token + "/fehlt.html"), 404},
        {GetRequest(port, path, "fremd.example:80"), 403},
    };
    for (const auto& [request, status] : rows) EXPECT_EQ(Http(port, request).status, status) << request.left(80).toStdString();
    EXPECT_EQ(Http(port, GetRequest(port, path)).body, "<form method=post><input name=Name></form>");
}

// 1 MiB of body is the most a form takes. A larger one is refused by its Content-Length before any
// of it is read, and a body without one (chunked) once 1 MiB has passed.
TEST_F(FormTest, BodiesUpToOneMebibyteAreTakenLargerOnesRefusedBeforeTheyArrive)
{
    host.Declare("Antwort", g_StringType);
    const QByteArray path = url.path(QUrl::FullyEncoded).toUtf8();
    const QByteArray exactly = "A=" + QByteArray(kMiB - 2, 'x');
    EXPECT_EQ(Http(url.port(), PostRequest(url.port(), path, exactly)).status, 200);
    ASSERT_TRUE(Ended(StartResult({{"Close", "False"}, {"Timeout", "5000"}, {"Result", "Antwort"}})));
    EXPECT_EQ(host.ValueText("Antwort").size(), kMiB);

    EXPECT_EQ(Http(url.port(), PostRequest(url.port(), path, exactly + 'x')).status, 413);
    // Only the header is sent: the answer must not wait for the announced 64 MiB.
    EXPECT_EQ(Http(url.port(), PostRequest(url.port(), path, "A=", 64 * kMiB), 5).status, 413);
    QByteArray chunked = "POST " + path + " HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(url.port()) +
                         "\r\nContent-Type: application/x-www-form-urlencoded\r\nTransfer-Encoding: chunked\r\n"
                         "Connection: close\r\n\r\n";
    for (int i = 0; i < 40; ++i) chunked += "10000\r\n" + QByteArray(0x10000, 'x') + "\r\n";
    EXPECT_EQ(Http(url.port(), chunked + "0\r\n\r\n", 5).status, 413);
    // None of the refused bodies became a submission.
    ASSERT_TRUE(Ended(StartResult({{"Timeout", "50"}, {"Result", "Antwort"}})));
    EXPECT_EQ(host.ValueText("Antwort"), "");
}

TEST_F(FormTest, PostAndGetSubmissionsReachResultUrlEncoded)
{
    host.Declare("Antwort", g_StringType);
    std::future<void> waiting = StartResult({{"Close", "False"}, {"Timeout", "30000"}, {"Result", "Antwort"}});
    EXPECT_EQ(Http(url.port(), Post(url, "Name=Anna+M%C3%BCller&Ort=K%C3%B6ln%26Bonn")).status, 200);
    ASSERT_TRUE(Ended(waiting));
    EXPECT_EQ(failure, "");
    EXPECT_EQ(host.ValueText("Antwort"), "Name=Anna%20M%C3%BCller&Ort=K%C3%B6ln%26Bonn");

    ASSERT_TRUE(ShownForm()) << "Close False keeps the form";
    EXPECT_EQ(Http(url.port(), GetRequest(url.port(), url.path().toUtf8() + "?Name=Ben&Alter=42")).status, 200);
    TDVCmdFormResult result(&host);
    TParamList params = MakeParams({{"Result", "Antwort"}, {"Timeout", "5000"}});
    result.RunThreaded(params);
    EXPECT_EQ(host.ValueText("Antwort"), "Name=Ben&Alter=42");
    EXPECT_FALSE(ShownForm()) << "Close defaults to true";
}

TEST_F(FormTest, UnpackFillsDeclaredVariablesAndListsTheNames)
{
    host.Declare("Antwort", g_StringType);
    host.Declare("Name", g_StringType);
    host.Declare("alter", g_StringType);
    std::future<void> waiting = StartResult({{"Result", "Antwort"}, {"Unpack", "True"}, {"Timeout", "30000"}});
    EXPECT_EQ(Http(url.port(), Post(url, "Name=Anna&Alter=42&Extra=x")).status, 200);
    ASSERT_TRUE(Ended(waiting));
    EXPECT_EQ(failure, "");
    EXPECT_EQ(host.ValueText("Name"), "Anna");
    EXPECT_EQ(host.ValueText("alter"), "42");
    EXPECT_EQ(host.ValueText("Antwort"), "Name,Alter,Extra");
    EXPECT_FALSE(host.setVariableCalls.contains("Extra"));
}

TEST_F(FormTest, TimeoutWritesEmptyAndWarns)
{
    host.Declare("Antwort", g_StringType);
    host.SetVariable("Antwort", std::make_unique<TStringValue>("alt"));
    TDVCmdFormResult result(&host);
    TParamList params = MakeParams({{"Close", "False"}, {"Timeout", "30"}, {"Result", "Antwort"}});
    const auto started = std::chrono::steady_clock::now();
    result.RunThreaded(params);
    EXPECT_GE(std::chrono::steady_clock::now() - started, 30ms);
    EXPECT_EQ(host.ValueText("Antwort"), "");
    EXPECT_EQ(warnings, QStringList{"FormResult: keine Eingabe innerhalb von 30 ms"});
}

TEST_F(FormTest, StopEndsTheWaitWithin100Milliseconds)
{
    host.Declare("Antwort", g_StringType);
    host.SetVariable("Antwort", std::make_unique<TStringValue>("alt"));
    std::future<void> waiting = StartResult({{"Timeout", "60000"}, {"Result", "Antwort"}});
    ASSERT_EQ(waiting.wait_for(50ms), std::future_status::timeout) << "ended before the stop";
    const auto stopped = std::chrono::steady_clock::now();
    host.runControl.SignalStop();
    ASSERT_EQ(waiting.wait_for(10s), std::future_status::ready);
    EXPECT_LT(std::chrono::steady_clock::now() - stopped, 100ms);
    EXPECT_EQ(host.ValueText("Antwort"), "alt");
    EXPECT_EQ(failure, "");
    EXPECT_TRUE(warnings.isEmpty());
}

// Without a GUI "--answer FormResult=name=value&..." is the submission; without an answer a
// FormResult that would wait without limit fails at once, naming the option.
TEST_F(FormTest, HeadlessAnswerIsTheSubmissionAndNoLimitWithoutOneFails)
{
    host.Declare("Antwort", g_StringType);
    host.Declare("Name", g_StringType);
    SetHeadlessAnswers({"FormResult=Name=Anna+M%C3%BCller&Alter=42"});
    ASSERT_TRUE(Ended(StartResult({{"Close", "False"}, {"Result", "Antwort"}, {"Unpack", "True"}})));
    EXPECT_EQ(failure, "");
    EXPECT_EQ(host.ValueText("Name"), QString::fromUtf8("Anna Müller"));
    EXPECT_EQ(host.ValueText("Antwort"), "Name,Alter");

    SetHeadlessAnswers({});
    ASSERT_TRUE(Ended(StartResult({{"Timeout", "-1"}, {"Result", "Antwort"}})));
    EXPECT_TRUE(failure.contains("dvrun --answer FormResult=")) << failure.toStdString();
}

TEST_F(FormTest, ParametersAreCheckedBeforeTheWaitNamingCommandAndParameter)
{
    host.Declare("Zahl", g_NumberType);
    host.Declare("Antwort", g_StringType);
    const struct { TParamRows params; const char* message; } rows[] = {
        {{{"Timeout", "1.7"}, {"Result", "Antwort"}}, "FormResult: Timeout \"1.7\" ist keine ganze Zahl"},
        {{{"Timeout", "10"}, {"Result", "Zahl"}}, "FormResult: Result: die Variable \"Zahl\" vom Typ Number"},
        {{{"Timeout", "10"}, {"Result", "Fehlt"}}, "Der Bezeichner \"Fehlt\" wurde nicht als Variable deklariert!"},
    };
    for (const auto& r : rows) {
        failure.clear();
        ASSERT_TRUE(Ended(StartResult(r.params)));
        EXPECT_TRUE(failure.startsWith(QString::fromUtf8(r.message))) << failure.toStdString();
    }
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
    EXPECT_TRUE(ShownForm()) << "a call that failed its parameters leaves the form";
}

// Submissions that came before the window ended are still taken; after them the closed window ends
// every further wait at once.
TEST_F(FormTest, AClosedWindowEndsTheWaitAfterTheSubmissionsBeforeIt)
{
    THtmlForm& form = *ShownForm();
    form.Submit({{"A", "1"}});
    form.WindowClosed();
    TFormFields fields;
    EXPECT_EQ(form.WaitForSubmission(nullptr, 5000, fields), TFormWait::Submitted);
    EXPECT_EQ(fields, (TFormFields{{"A", "1"}}));
    for (int i = 0; i < 2; ++i) EXPECT_EQ(form.WaitForSubmission(nullptr, 5000, fields), TFormWait::WindowClosed);
}

// Submissions arrive on the server's thread while FormResult waits on its own: however the two
// meet, every submission is taken once, and with none left a wait ends at its time-out.
TEST_F(FormTest, SubmissionsMeetingTheWaitStillLetItTimeOut)
{
    THtmlForm& form = *ShownForm();
    constexpr int kSubmissions = 20000;
    std::thread server([&form] {
        for (int i = 0; i < kSubmissions; ++i) form.Submit({{"N", QString::number(i)}});
    });
    std::future<int> waiting = std::async(std::launch::async, [&form] {
        int taken = 0;
        TFormFields fields;
        while (taken < kSubmissions) taken += form.WaitForSubmission(nullptr, 0, fields) == TFormWait::Submitted;
        for (int i = 0; i < 3; ++i) {
            if (form.WaitForSubmission(nullptr, 20, fields) != TFormWait::TimedOut) return -1;
        }
        return taken;
    });
    server.join();
    const bool ended = waiting.wait_for(std::chrono::seconds(10)) == std::future_status::ready;
    if (!ended) form.WindowClosed();  // frees a wait that would otherwise never end
    ASSERT_TRUE(ended) << "a wait with nothing to take did not time out";
    EXPECT_EQ(waiting.get(), kSubmissions);
}

// A page may be a link to a file beside it; a link out of the form's folder is refused.
TEST_F(FormTest, ALinkedPageIsAnsweredALinkOutOfTheFolderRefused)
{
    ASSERT_TRUE(QFile::link("eingabe.html", root.filePath("form/verweis.html")));
    ASSERT_EQ(Show(host, root.filePath("form/verweis.html")), "");
    const QUrl linked(ShownForm()->Url());
    EXPECT_TRUE(linked.path().endsWith("/verweis.html"));
    host.Declare("Antwort", g_StringType);
    std::future<void> waiting = StartResult({{"Timeout", "5000"}, {"Result", "Antwort"}});
    EXPECT_EQ(Http(linked.port(), Post(linked, "Name=Link")).status, 200);
    ASSERT_TRUE(Ended(waiting));
    EXPECT_EQ(host.ValueText("Antwort"), "Name=Link");

    ASSERT_TRUE(QDir(root.path()).mkdir("anderswo"));
    ASSERT_TRUE(QFile::link("../form/eingabe.html", root.filePath("anderswo/hinaus.html")));
    const QString refused = Show(host, root.filePath("anderswo/hinaus.html"));
    EXPECT_TRUE(refused.startsWith("FormShow: die Formulardatei") && refused.contains("verweist aus ihrem Ordner hinaus"))
        << refused.toStdString();
}

TEST(FormShowTest, MissingFileAndResultWithoutFormFailClearly)
{
    TTestHost host;
    host.Declare("Antwort", g_StringType);
    EXPECT_NE(Show(host, "/gibt/es/nicht.html"), "");
    TDVCmdFormResult result(&host);
    TParamList resultParams = MakeParams({{"Result", "Antwort"}, {"Timeout", "10"}});
    const QString failure = RaisedMessage<TDravikException>([&] { result.RunThreaded(resultParams); }).value_or("ran without a form");
    EXPECT_TRUE(failure.contains("FormShow")) << failure.toStdString();
}

// Unpack writes all fields or none: a field its variable cannot take names the field, and the
// variables written before it get their values back.
TEST(FormUnpackTest, AFieldItsVariableCannotTakeWritesNothing)
{
    int argc = 0;
    std::unique_ptr<QCoreApplication> app;
    if (!QCoreApplication::instance()) app = std::make_unique<QCoreApplication>(argc, nullptr);
    QTemporaryDir root;
    WriteFile(root.filePath("f.html"), "<form method=post></form>");
    host::THost host;
    for (const char* name : {"A", "C", "R"}) host.Program().globals.Declare({name, g_StringType});
    host.Program().globals.Declare({"B", g_NumberType});
    host.PrepareRun({});
    host.SetVariable("A", std::make_unique<TStringValue>("alt"));
    host.SetVariable("B", std::make_unique<TNumberValue>(7.0L));
    ASSERT_EQ(Show(host, root.filePath("f.html")), "");
    SetHeadlessAnswers({"FormResult=A=neu&B=abc&C=x"});
    TDVCmdFormResult result(&host);
    TParamList params = MakeParams({{"Result", "R"}, {"Unpack", "True"}, {"Timeout", "5000"}});
    const std::optional<QString> message = RaisedMessage([&] { result.RunThreaded(params); });
    SetHeadlessAnswers({});
    CloseShownForm();
    ASSERT_TRUE(message);
    EXPECT_TRUE(message->startsWith("FormResult: Unpack: das Feld \"B\"") && message->contains("\"abc\"")) << message->toStdString();
    EXPECT_EQ(host.ResolveText("A"), "alt");
    EXPECT_EQ(host.ResolveText("B"), "7");
    EXPECT_EQ(host.ResolveText("C"), "");
}

}  // namespace
}  // namespace dv
