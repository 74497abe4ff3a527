#include "commands/system/gui_tcp.h"
#include "framework/exceptions.h"
#include "framework/registry.h"
#include "tests/commands/system/testservers.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <chrono>

namespace dv {
namespace {

using test::TTcpServer;

class TcpCommandTest : public ::testing::Test {
protected:
    TcpCommandTest() { host.Declare("Antwort", g_StringType); }

    void Run(int port, const QString& send, const QString& sentinel = "\n")
    {
        TParamList params;
        params.AddString("Host", "127.0.0.1");
        params.AddString("Port", QString::number(port));
        params.AddString("Send", send);
        params.AddString("Sentinel", sentinel);
        params.AddString("Result", "Antwort");
        command.RunThreaded(params);
    }

    QString FailureOfRun(int port, const QString& send, const QString& sentinel = "\n")
    {
        try {
            Run(port, send, sentinel);
        } catch (const TDravikException& e) {
            return e.Message();
        }
        return {};
    }

    test::TTestHost host;
    TDVCmdTCP command{&host};
};

// A server that answers each request with reply, once.
test::TConnectionHandler Answering(QByteArray reply)
{
    return [reply](int fd, const TRunControl& quit) {
        test::ReceiveSome(fd, quit);
        test::SendBytes(fd, reply);
        quit.WaitForStop(200);  // let the client read before the close
    };
}

TEST_F(TcpCommandTest, ReplyEndsBeforeTheSentinel)
{
    struct Row {
        QByteArray reply;
        QString sentinel;
        QString result;
    };
    const Row rows[] = {
        {"OK\r\nfurther text", "\n", "OK"},
        {"OK\r\nfurther text", "[10]", "OK"},
        {"OK\r\nfurther text", "{13}{10}", "OK"},
        {"a\r\nbENDc", "END", "a\r\nb"},
        {"\xC3\xA4rger\n", "\n", QString::fromUtf8("ärger")},  // the reply is read as UTF-8
    };
    for (const Row& r : rows) {
        TTcpServer server(Answering(r.reply));
        Run(server.Port(), "Q", r.sentinel);
        EXPECT_EQ(host.ValueText("Antwort"), r.result) << r.sentinel.toStdString();
    }
}

TEST_F(TcpCommandTest, SendGoesOutAsUtf8WithoutALineEnding)
{
    QByteArray received;
    TTcpServer server([&](int fd, const TRunControl& quit) {
        received = test::ReceiveSome(fd, quit);
        test::SendBytes(fd, "ok\n");
    });
    Run(server.Port(), QString::fromUtf8("Grüße"));
    EXPECT_EQ(received, QByteArray("Gr\xC3\xBC\xC3\x9F" "e"));
}

TEST_F(TcpCommandTest, ADisconnectBeforeTheSentinelFailsAndWritesNothing)
{
    TTcpServer server([](int fd, const TRunControl& quit) {
        test::ReceiveSome(fd, quit);
        test::SendBytes(fd, "partial");
    });
    EXPECT_TRUE(FailureOfRun(server.Port(), "x").startsWith("TCP: Die Verbindung wurde geschlossen"));
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST_F(TcpCommandTest, AnEmptySentinelDoesNotWaitForAReply)
{
    TTcpServer server([](int fd, const TRunControl& quit) {
        test::ReceiveSome(fd, quit);
        quit.WaitForStop(-1);  // never answers
    });
    const auto start = std::chrono::steady_clock::now();
    Run(server.Port(), "x", "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_EQ(host.ValueText("Antwort"), "");
    EXPECT_EQ(host.setVariableCalls, QStringList{"Antwort"});
}

TEST_F(TcpCommandTest, StopKeepsTheReplyAsItStands)
{
    TTcpServer server([](int fd, const TRunControl& quit) {
        test::ReceiveSome(fd, quit);
        test::SendBytes(fd, "line\r");
        quit.WaitForStop(-1);
    });
    std::thread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        host.runControl.SignalStop();
    });
    Run(server.Port(), "x");
    stopper.join();
    EXPECT_EQ(host.ValueText("Antwort"), "line\r");
}

TEST_F(TcpCommandTest, AnEndlessReplyHitsTheGuard)
{
    command.SetReplyLimit(4096);
    TTcpServer server([](int fd, const TRunControl& quit) {
        test::ReceiveSome(fd, quit);
        test::SendBytes(fd, QByteArray(20000, 'x'));
        quit.WaitForStop(500);
    });
    EXPECT_TRUE(FailureOfRun(server.Port(), "x").startsWith("TCP: Die Antwort ist länger als 4096 Bytes"));
}

TEST_F(TcpCommandTest, PortTexts)
{
    EXPECT_EQ(TcpPort("5000"), 5000);
    EXPECT_EQ(TcpPort(" 80 "), 80);
    EXPECT_EQ(TcpPort("65535"), 65535);
    EXPECT_EQ(TcpPort("5000.0"), 5000);
    for (const QString bad : {"0", "65536", "-1", "1.5", "abc", ""}) {
        try {
            TcpPort(bad);
            ADD_FAILURE() << "port " << bad.toStdString() << " must fail";
        } catch (const TDravikException& e) {
            EXPECT_TRUE(e.Message().contains("Ungültiger Port \"" + bad + "\"")) << e.what();
        }
    }
}

TEST_F(TcpCommandTest, TheEchoServerAnswersWithTheSameText)
{
    const int port = test::FreeLoopbackPort();
    QProcess echo;
    echo.start(QStringLiteral(DV_PIPE_ECHO), {"--tcp", QString::number(port), "--exit-after", "20"});
    ASSERT_TRUE(echo.waitForReadyRead(5000)) << "dvpipe-echo did not start";
    ASSERT_EQ(echo.readLine().trimmed(), "ready");
    Run(port, "PING");
    EXPECT_EQ(host.ValueText("Antwort"), "PING");
    echo.terminate();
    EXPECT_TRUE(echo.waitForFinished(5000));
}

TEST(IpcCatalogueTest, BothCommandsAreAvailableAsThreadCommands)
{
    for (const char* commandClass : {"TDVCmdCallNamedPipe", "TDVCmdTCP"}) {
        auto command = CreateCommand(commandClass, nullptr);
        ASSERT_NE(command, nullptr) << commandClass;
        EXPECT_NE(dynamic_cast<TDVThreadRunEdit*>(command.get()), nullptr) << commandClass;
        EXPECT_EQ(dynamic_cast<TDVFuncRunEdit*>(command.get()), nullptr) << commandClass;
    }
    // The signature's default reaches a call that leaves Sentinel out, and means a line feed.
    TDVCmdTCP tcp(nullptr);
    TParamList params;
    tcp.AddDefaults(params);
    EXPECT_EQ(tcpclient::SentinelText(params.GetString("Sentinel")), "\n");
}

}  // namespace
}  // namespace dv
