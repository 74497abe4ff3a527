// FormShow and FormResult end to end: the served form answered by an HTTP client over a socket.
#include "commands/dialogs/gui_formshow.h"
#include "tests/commands/params.h"
#include "tests/support/httpclient.h"
#include "tests/support/testhost.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>

namespace dv {
namespace {

using namespace test;

QByteArray Get(const QUrl& url, const QByteArray& path, const QByteArray& host = {})
{
    return GetRequest(url.port(), path, host);
}

QByteArray Post(const QUrl& url, const QByteArray& body)
{
    return PostRequest(url.port(), url.path(QUrl::FullyEncoded).toUtf8(), body);
}

void WriteFile(const QString& path, const QByteArray& text)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(text);
}

class FormTest : public testing::Test {
protected:
    void SetUp() override
    {
        // Every host has an application object; the form's server thread needs one too.
        if (!QCoreApplication::instance()) app = std::make_unique<QCoreApplication>(argc, nullptr);
        ASSERT_TRUE(QDir(root.path()).mkdir("form"));
        WriteFile(root.filePath("form/eingabe.html"), "<form method=post><input name=Name></form>");
        WriteFile(root.filePath("form/stil.css"), "body{}");
        WriteFile(root.filePath("geheim.txt"), "geheim");
        TDVCmdFormShow show(&host);
        TParamList params = MakeParams({{"File", root.filePath("form/eingabe.html").toUtf8().constData()}});
        show.Run(params);
        ASSERT_TRUE(ShownForm());
        url = QUrl(ShownForm()->Url());
    }
    void TearDown() override { CloseShownForm(); }

    // FormResult on a thread of its own, as the host runs it.
    std::thread StartResult(TParamRows rows)
    {
        return std::thread([this, params = MakeParams(rows)]() mutable {
            TDVCmdFormResult result(&host);
            try {
                result.RunThreaded(params);
            } catch (const TDravikException& e) {
                failure = e.Message();
            }
        });
    }

    int argc = 0;
    std::unique_ptr<QCoreApplication> app;
    QTemporaryDir root;
    TTestHost host;
    QUrl url;
    QString failure;
};

TEST_F(FormTest, ServesOnlyTheFormsFolderToThisHostUnderItsToken)
{
    const QByteArray token = ShownForm()->Token().toUtf8();
    EXPECT_EQ(url.host(), "127.0.0.1");
    EXPECT_TRUE(url.path().endsWith("/eingabe.html"));
    struct Row {
        QByteArray request;
        int status;
    };
    const Row rows[] = {
        {Get(url, url.path().toUtf8()), 200},
        {Get(url, "/" + token + "/stil.css"), 200},
        {Get(url, "/" + token + "/../geheim.txt"), 403},
        {Get(url, "/" + token + "/%2e%2e/geheim.txt"), 403},
        {Get(url, "/" + token + "x/eingabe.html"), 404},
        {Get(url, "/eingabe.html"), 404},
        {Get(url, "/" + token + "/fehlt.html"), 404},
        {Get(url, url.path().toUtf8(), "fremd.example:80"), 403},
        {Post(url, QByteArray(1024 * 1024 + 1, 'a')), 413},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(Http(url.port(), r.request).status, r.status) << r.request.left(80).toStdString();
    }
    EXPECT_EQ(Http(url.port(), Get(url, url.path().toUtf8())).body, "<form method=post><input name=Name></form>");
}

TEST_F(FormTest, PostAndGetSubmissionsReachResultUrlEncoded)
{
    host.Declare("Antwort", g_StringType);
    std::thread waiting = StartResult({{"Close", "False"}, {"Timeout", "-1"}, {"Result", "Antwort"}});
    EXPECT_EQ(Http(url.port(), Post(url, "Name=Anna+M%C3%BCller&Ort=K%C3%B6ln%26Bonn")).status, 200);
    waiting.join();
    EXPECT_EQ(failure, "");
    EXPECT_EQ(host.ValueText("Antwort"), "Name=Anna%20M%C3%BCller&Ort=K%C3%B6ln%26Bonn");

    ASSERT_TRUE(ShownForm()) << "Close False keeps the form";
    EXPECT_EQ(Http(url.port(), Get(url, url.path().toUtf8() + "?Name=Ben&Alter=42")).status, 200);
    TDVCmdFormResult result(&host);
    TParamList params = MakeParams({{"Result", "Antwort"}});
    result.RunThreaded(params);
    EXPECT_EQ(host.ValueText("Antwort"), "Name=Ben&Alter=42");
    EXPECT_FALSE(ShownForm()) << "Close defaults to true";
}

TEST_F(FormTest, UnpackFillsDeclaredVariablesAndListsTheNames)
{
    host.Declare("Antwort", g_StringType);
    host.Declare("Name", g_StringType);
    host.Declare("alter", g_StringType);
    std::thread waiting = StartResult({{"Result", "Antwort"}, {"Unpack", "True"}});
    EXPECT_EQ(Http(url.port(), Post(url, "Name=Anna&Alter=42&Extra=x")).status, 200);
    waiting.join();
    EXPECT_EQ(failure, "");
    EXPECT_EQ(host.ValueText("Name"), "Anna");
    EXPECT_EQ(host.ValueText("alter"), "42");
    EXPECT_EQ(host.ValueText("Antwort"), "Name,Alter,Extra");
    EXPECT_FALSE(host.setVariableCalls.contains("Extra"));
}

TEST_F(FormTest, TimeoutWritesEmptyAndStopEndsTheWait)
{
    host.Declare("Antwort", g_StringType);
    host.SetVariable("Antwort", std::make_unique<TStringValue>("alt"));
    TDVCmdFormResult result(&host);
    TParamList params = MakeParams({{"Close", "False"}, {"Timeout", "30"}, {"Result", "Antwort"}});
    result.RunThreaded(params);
    EXPECT_EQ(host.ValueText("Antwort"), "");

    host.SetVariable("Antwort", std::make_unique<TStringValue>("alt"));
    std::thread waiting = StartResult({{"Timeout", "-1"}, {"Result", "Antwort"}});
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const auto stopped = std::chrono::steady_clock::now();
    host.runControl.SignalStop();
    waiting.join();
    // Generous: the wait ends on the stop event itself, well under this.
    EXPECT_LT(std::chrono::steady_clock::now() - stopped, std::chrono::seconds(1));
    EXPECT_EQ(host.ValueText("Antwort"), "alt");
    EXPECT_EQ(failure, "");
}

TEST(FormShowTest, MissingFileAndResultWithoutFormFailClearly)
{
    TTestHost host;
    host.Declare("Antwort", g_StringType);
    TDVCmdFormShow show(&host);
    TParamList params = MakeParams({{"File", "/gibt/es/nicht.html"}});
    EXPECT_THROW(show.Run(params), TDravikException);
    TDVCmdFormResult result(&host);
    TParamList resultParams = MakeParams({{"Result", "Antwort"}, {"Timeout", "10"}});
    try {
        result.RunThreaded(resultParams);
        ADD_FAILURE() << "ran without a form";
    } catch (const TDravikException& e) {
        EXPECT_TRUE(e.Message().contains("FormShow")) << e.Message().toStdString();
    }
}

}  // namespace
}  // namespace dv
