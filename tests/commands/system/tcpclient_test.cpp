#include "commands/system/tcpclient.h"
#include "framework/exceptions.h"
#include "framework/services.h"
#include "tests/commands/system/testservers.h"

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>

#include <chrono>
#include <functional>
#include <thread>

namespace dv::tcpclient {
namespace {

using Clock = std::chrono::steady_clock;

// A connected pair: the test writes on peer, the reader reads on reader.
struct TPair {
    TPair()
    {
        int fds[2];
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) != 0) throw std::runtime_error("socketpair");
        reader = TSocketFd(fds[0]);
        peer = TSocketFd(fds[1]);
    }
    void Write(const QByteArray& bytes) { ASSERT_EQ(::send(peer.Get(), bytes.constData(), bytes.size(), 0), bytes.size()); }
    TSocketFd reader;
    TSocketFd peer;
};

QString FailureOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const TDravikException& e) {
        return e.Message();
    }
    return {};
}

TEST(TcpClientTest, SentinelTextsOfCharacterCodes)
{
    struct Row {
        QString parameter;
        QString sentinel;
    };
    const Row rows[] = {
        {"\n", "\n"},                          // what the host makes of the default [10]
        {"[10]", "\n"},
        {"{10}", "\n"},
        {"[13, 10]", "\r\n"},
        {"{13}{10}", "\r\n"},
        {"[ 62 ]", ">"},
        {"[]", ""},
        {"{128}", QString(QChar(0x20AC))},     // codes are Windows-1252: 128 is the euro sign
        {"[256]", "[256]"},                    // no character code: the text itself
        {"[10", "[10"},
        {"{10}x", "{10}x"},
        {"{A}", "{A}"},
        {"END", "END"},
        {"", ""},
    };
    for (const Row& r : rows) EXPECT_EQ(SentinelText(r.parameter), r.sentinel) << r.parameter.toStdString();
}

TEST(TcpClientTest, CutAtSentinel)
{
    struct Row {
        QByteArray reply;
        QByteArray sentinel;
        QByteArray cut;
    };
    const Row rows[] = {
        {"OK\r\nmore", "\n", "OK"},            // CR before a line feed sentinel goes too
        {"OK\nmore\n", "\n", "OK"},            // the first sentinel counts
        {"\r\n", "\n", ""},
        {"\n", "\n", ""},
        {"OK\r\n", "\r\n", "OK"},
        {"OK\r\rEND", "\rEND", "OK\r"},        // only a lone line feed sentinel takes the CR along
        {"a\rb;c", ";", "a\rb"},
        {"no end", "\n", "no end"},
        {"kept\r\n", "", "kept\r\n"},          // empty sentinel: nothing is cut
    };
    for (const Row& r : rows) EXPECT_EQ(CutAtSentinel(r.reply, r.sentinel), r.cut) << r.reply.toStdString();
}

TEST(TcpClientTest, ReadsUntilASentinelSplitOverSeveralPieces)
{
    TPair pair;
    std::thread writer([&] {
        for (const char* piece : {"par", "tial\r", "\nafter"}) {
            pair.Write(piece);
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
        }
    });
    const TReply reply = ReadReply(pair.reader.Get(), "\r\n", nullptr);
    writer.join();
    EXPECT_FALSE(reply.stopped);
    EXPECT_TRUE(reply.bytes.startsWith("partial\r\n"));
    EXPECT_EQ(CutAtSentinel(reply.bytes, "\r\n"), "partial");
}

TEST(TcpClientTest, AnEmptySentinelTakesOnlyWhatHasArrived)
{
    TPair pair;
    EXPECT_EQ(ReadReply(pair.reader.Get(), "", nullptr).bytes, QByteArray());  // nothing yet: nothing, at once
    pair.Write("first ");
    pair.Write("second");
    EXPECT_EQ(ReadReply(pair.reader.Get(), "", nullptr).bytes, "first second");
    pair.peer.Reset();  // a closed connection is no failure when no sentinel is awaited
    EXPECT_EQ(ReadReply(pair.reader.Get(), "", nullptr).bytes, QByteArray());
}

TEST(TcpClientTest, ACloseBeforeTheSentinelFails)
{
    TPair pair;
    pair.Write("half a line");
    pair.peer.Reset();
    const QString failure = FailureOf([&] { ReadReply(pair.reader.Get(), "\n", nullptr); });
    EXPECT_TRUE(failure.startsWith("TCP: Die Verbindung wurde geschlossen")) << failure.toStdString();
    EXPECT_TRUE(failure.contains("11 Bytes")) << failure.toStdString();
}

TEST(TcpClientTest, ACloseRightAfterTheSentinelIsNoFailure)
{
    TPair pair;
    pair.Write("done\n");
    pair.peer.Reset();
    EXPECT_EQ(ReadReply(pair.reader.Get(), "\n", nullptr).bytes, "done\n");
}

TEST(TcpClientTest, AReplyBeyondTheLimitWithoutSentinelFails)
{
    TPair pair;
    pair.Write(QByteArray(1001, 'x'));
    const QString failure = FailureOf([&] { ReadReply(pair.reader.Get(), "\n", nullptr, 1000); });
    EXPECT_TRUE(failure.startsWith("TCP: Die Antwort ist länger als 1000 Bytes")) << failure.toStdString();

    TPair exact;  // up to the limit is still fine
    exact.Write(QByteArray(1000, 'x'));
    exact.Write("\n");
    EXPECT_EQ(ReadReply(exact.reader.Get(), "\n", nullptr, 1000).bytes.size(), 1001);
    EXPECT_EQ(kReplyLimit, 64 * 1024 * 1024);
}

TEST(TcpClientTest, StopEndsTheReadWithin100MsKeepingWhatArrived)
{
    TPair pair;
    pair.Write("so far\r");
    TRunControl stop;
    Clock::time_point signalled;
    std::thread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        signalled = Clock::now();
        stop.SignalStop();
    });
    const TReply reply = ReadReply(pair.reader.Get(), "\n", &stop);
    const auto returned = Clock::now();
    stopper.join();
    EXPECT_TRUE(reply.stopped);
    EXPECT_EQ(reply.bytes, "so far\r");
    EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(returned - signalled).count(), 100);
}

TEST(TcpClientTest, ConnectFailuresNameHostAndPort)
{
    EXPECT_TRUE(FailureOf([] { Connect("", 80, nullptr); }).contains("kein Host"));

    const int port = test::FreeLoopbackPort();  // nobody listens there
    const QString failure = FailureOf([&] { Connect("127.0.0.1", port, nullptr); });
    EXPECT_EQ(failure, QString("TCP: Keine Verbindung zu 127.0.0.1:%1: %2").arg(port).arg(qt_error_string(ECONNREFUSED)));
}

}  // namespace
}  // namespace dv::tcpclient
