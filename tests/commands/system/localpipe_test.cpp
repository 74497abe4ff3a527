#include "commands/system/localpipe.h"
#include "framework/exceptions.h"
#include "tests/commands/system/testservers.h"

#include <gtest/gtest.h>

#include <sys/un.h>

#include <chrono>

namespace dv::localpipe {
namespace {

using test::TPipeServer;
using Clock = std::chrono::steady_clock;

long long MsSince(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

// The failure text of a call, or "" when it succeeded.
template <class Call>
QString FailureOf(Call call)
{
    try {
        call();
    } catch (const TDVRuntimeException& e) {
        return e.Message();
    }
    return {};
}

void Echo(int fd, const TRunControl& quit) { test::SendBytes(fd, test::ReceiveSome(fd, quit)); }

TEST(LocalPipeTest, NamesOfTheLocalNamespace)
{
    struct Row {
        const char* pipeName;
        const char* endpoint;
    };
    const Row rows[] = {
        {"demo", "demo"},
        {R"(\\.\pipe\demo)", "demo"},
        {R"(\\.\PIPE\Demo)", "Demo"},        // the namespace is matched without regard to case
        {R"(\\.\pipe\a\b)", R"(a\b)"},       // further backslashes belong to the name
        {"my pipe", "my pipe"},
    };
    for (const Row& r : rows) EXPECT_EQ(EndpointName(QString::fromUtf8(r.pipeName)), QString::fromUtf8(r.endpoint)) << r.pipeName;
}

TEST(LocalPipeTest, NamesThatCannotBeServedFailNamingTheReason)
{
    struct Row {
        const char* pipeName;
        const char* reasonPart;
    };
    const Row rows[] = {
        {R"(\\server\pipe\x)", "\"server\""},
        {R"(\\localhost\pipe\x)", "anderen Rechnern"},
        {R"(\\.\mailslot\x)", "Ungültiger Pipe-Name"},
        {R"(\single)", "Ungültiger Pipe-Name"},
        {R"(\\.\pipe\)", "Ungültiger Pipe-Name"},
        {"a/b", "Ungültiger Pipe-Name"},
        {"..", "Ungültiger Pipe-Name"},
        {"", "kein Pipe-Name"},
    };
    for (const Row& r : rows) {
        const QString failure = FailureOf([&] { EndpointName(QString::fromUtf8(r.pipeName)); });
        EXPECT_TRUE(failure.startsWith("CallNamedPipe: ")) << r.pipeName << ": " << failure.toStdString();
        EXPECT_TRUE(failure.contains(QString::fromUtf8(r.reasonPart))) << r.pipeName << ": " << failure.toStdString();
    }
}

TEST(LocalPipeTest, EndpointsLiveInOneDirectoryAndMustFitASocketAddress)
{
    EXPECT_EQ(EndpointPath("demo"), EndpointDirectory() + "/demo");
    const QString tooLong(static_cast<qsizetype>(sizeof(sockaddr_un{}.sun_path)), 'x');
    EXPECT_TRUE(FailureOf([&] { EndpointPath(tooLong); }).contains("zu lang"));
}

TEST(LocalPipeTest, StandardTimingsAreFiftyMillisecondWaitsForFiveSeconds)
{
    const TConnectTimings timings;
    EXPECT_EQ(timings.retryWaitMs, 50);
    EXPECT_EQ(timings.connectLimitMs, 5000);
    EXPECT_EQ(kReplyBufferSize, 4097);
}

TEST(LocalPipeTest, OneMessageOutOneMessageBack)
{
    QByteArray received;
    TPipeServer server([&](int fd, const TRunControl& quit) {
        received = test::ReceiveSome(fd, quit);
        test::SendBytes(fd, "reply to " + received);
    });
    EXPECT_EQ(Transact(server.Path(), "hello", nullptr), "reply to hello");
    EXPECT_EQ(received, "hello");
}

TEST(LocalPipeTest, ASecondMessageOfTheServerIsNotPartOfTheReply)
{
    TPipeServer server([](int fd, const TRunControl& quit) {
        test::ReceiveSome(fd, quit);
        test::SendBytes(fd, "first");
        test::SendBytes(fd, "second");
    });
    EXPECT_EQ(Transact(server.Path(), "x", nullptr), "first");
}

TEST(LocalPipeTest, ASlowServerIsAwaited)
{
    TPipeServer server([](int fd, const TRunControl& quit) {
        const QByteArray call = test::ReceiveSome(fd, quit);
        if (!quit.WaitForStop(300)) test::SendBytes(fd, call);
    });
    EXPECT_EQ(Transact(server.Path(), "late", nullptr), "late");
}

TEST(LocalPipeTest, ReplyBufferHoldsExactly4097Bytes)
{
    TPipeServer server([](int fd, const TRunControl& quit) {
        const int size = test::ReceiveSome(fd, quit).toInt();
        test::SendBytes(fd, QByteArray(size, 'r'));
    });
    EXPECT_EQ(Transact(server.Path(), "4097", nullptr).size(), 4097);
    const QString failure = FailureOf([&] { Transact(server.Path(), "4098", nullptr); });
    EXPECT_TRUE(failure.startsWith("CallNamedPipe: Weitere Daten")) << failure.toStdString();
}

TEST(LocalPipeTest, AServerThatClosesWithoutAnsweringGivesAnEmptyReply)
{
    TPipeServer server([](int fd, const TRunControl& quit) { test::ReceiveSome(fd, quit); });
    EXPECT_EQ(Transact(server.Path(), "anyone?", nullptr), QByteArray());
}

TEST(LocalPipeTest, ABusyPipeFailsWithTheBusyTextWhenTheWaitExpires)
{
    // Backlog 0 and nobody accepting: the first client fills the queue, every further one is busy.
    const QString name = TPipeServer::UniqueName();
    const TSocketFd listener = ListenEndpoint(name, 0);
    const QString path = EndpointPath(name);
    const TSocketFd filler = test::ConnectFiller(path);

    const auto start = Clock::now();
    const QString failure = FailureOf([&] { Transact(path, "x", nullptr, {50, 300}); });
    EXPECT_EQ(failure, "CallNamedPipe: Alle Pipeinstanzen sind ausgelastet.");
    EXPECT_GE(MsSince(start), 300);
    QFile::remove(path);
}

TEST(LocalPipeTest, APipeThatFreesUpWithinTheLimitIsServed)
{
    // The server starts accepting 250 ms late; until then the filler keeps the pipe busy.
    TPipeServer server([](int fd, const TRunControl& quit) { Echo(fd, quit); }, 0, 250);
    const TSocketFd filler = test::ConnectFiller(server.Path());
    test::SendBytes(filler.Get(), "filler");

    EXPECT_EQ(Transact(server.Path(), "patient", nullptr, {50, 2000}), "patient");
}

TEST(LocalPipeTest, AMissingPipeFailsWithTheSystemTextAfterTheWait)
{
    const QString path = EndpointPath(TPipeServer::UniqueName());
    const auto start = Clock::now();
    const QString failure = FailureOf([&] { Transact(path, "x", nullptr, {50, 200}); });
    EXPECT_EQ(failure, "CallNamedPipe: " + qt_error_string(ENOENT));
    EXPECT_GE(MsSince(start), 200);
}

TEST(LocalPipeTest, StopEndsAPendingTransactionWithAnEmptyReplyWithin100Ms)
{
    TPipeServer server([](int fd, const TRunControl& quit) {
        test::ReceiveSome(fd, quit);
        quit.WaitForStop(-1);  // never answers
    });
    TRunControl stop;
    Clock::time_point signalled;
    std::thread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        signalled = Clock::now();
        stop.SignalStop();
    });
    const QByteArray reply = Transact(server.Path(), "x", &stop);
    const auto returned = Clock::now();
    stopper.join();
    EXPECT_EQ(reply, QByteArray());
    EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(returned - signalled).count(), 100);
}

TEST(LocalPipeTest, StopDuringTheConnectWaitFailsAtOnce)
{
    const QString path = EndpointPath(TPipeServer::UniqueName());
    TRunControl stop;
    stop.SignalStop();
    const auto start = Clock::now();
    EXPECT_EQ(FailureOf([&] { Transact(path, "x", &stop); }), "CallNamedPipe: " + qt_error_string(ENOENT));
    EXPECT_LT(MsSince(start), 1000);
}

TEST(LocalPipeTest, ListeningReplacesAnEndpointLeftBehindButNotALiveOne)
{
    const QString name = TPipeServer::UniqueName();
    { const TSocketFd ended = ListenEndpoint(name); }  // closed: its file stays behind
    ASSERT_TRUE(QFile::exists(EndpointPath(name)));
    const TSocketFd live = ListenEndpoint(name);
    EXPECT_TRUE(live.Valid());
    EXPECT_THROW(ListenEndpoint(name), TDravikException);
    QFile::remove(EndpointPath(name));
}

}  // namespace
}  // namespace dv::localpipe
