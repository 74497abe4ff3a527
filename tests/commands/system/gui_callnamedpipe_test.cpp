#include "commands/system/gui_callnamedpipe.h"
#include "framework/exceptions.h"
#include "tests/commands/system/testservers.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <QProcess>

namespace dv {
namespace {

using test::TPipeServer;

class CallNamedPipeTest : public ::testing::Test {
protected:
    CallNamedPipeTest() { host.Declare("Antwort", g_StringType); }

    void Run(const QString& name, const QString& call)
    {
        TParamList params;
        params.AddString("Name", name);
        params.AddString("Call", call);
        params.AddString("Result", "Antwort");
        command.RunThreaded(params);
    }

    test::TTestHost host;
    TDVCmdCallNamedPipe command{&host};
};

TEST_F(CallNamedPipeTest, ReplyGoesToTheResultVariable)
{
    TPipeServer server([](int fd, const TRunControl& quit) { test::SendBytes(fd, test::ReceiveSome(fd, quit).toUpper()); });
    Run(server.Name(), "status?");
    EXPECT_EQ(host.ValueText("Antwort"), "STATUS?");
}

TEST_F(CallNamedPipeTest, TheFullLocalFormReachesTheSameEndpoint)
{
    TPipeServer server([](int fd, const TRunControl& quit) { test::SendBytes(fd, test::ReceiveSome(fd, quit)); });
    Run("\\\\.\\pipe\\" + server.Name(), "via prefix");
    EXPECT_EQ(host.ValueText("Antwort"), "via prefix");
}

TEST_F(CallNamedPipeTest, TextTravelsInTheWindows1252CodePage)
{
    QByteArray received;
    TPipeServer server([&](int fd, const TRunControl& quit) {
        received = test::ReceiveSome(fd, quit);
        test::SendBytes(fd, received);
    });
    Run(server.Name(), QString::fromUtf8("Grüße 5 €"));
    EXPECT_EQ(received, QByteArray("Gr\xFC\xDF" "e 5 \x80"));
    EXPECT_EQ(host.ValueText("Antwort"), QString::fromUtf8("Grüße 5 €"));
}

TEST_F(CallNamedPipeTest, TheReplyEndsAtItsFirstZeroByte)
{
    TPipeServer server([](int fd, const TRunControl& quit) {
        test::ReceiveSome(fd, quit);
        test::SendBytes(fd, QByteArray("AB\0CD", 5));
    });
    Run(server.Name(), "x");
    EXPECT_EQ(host.ValueText("Antwort"), "AB");
}

TEST_F(CallNamedPipeTest, ARemotePipeFailsAndWritesNothing)
{
    try {
        Run("\\\\server\\pipe\\x", "x");
        FAIL() << "a remote pipe name must fail";
    } catch (const TDVRuntimeException& e) {
        EXPECT_TRUE(e.Message().startsWith("CallNamedPipe: Pipes auf anderen Rechnern")) << e.what();
    }
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST_F(CallNamedPipeTest, StoppingTheRunStoresAnEmptyReply)
{
    host.runControl.SignalStop();
    TPipeServer server([](int fd, const TRunControl& quit) {
        test::ReceiveSome(fd, quit);
        quit.WaitForStop(-1);
    });
    host.Declare("Antwort", g_StringType).Assign(std::make_unique<TStringValue>("old"));
    Run(server.Name(), "x");
    EXPECT_EQ(host.ValueText("Antwort"), "");
    EXPECT_EQ(host.setVariableCalls, QStringList{"Antwort"});
}

TEST_F(CallNamedPipeTest, TheEchoServerAnswersWithTheSameText)
{
    const QString name = TPipeServer::UniqueName();
    QProcess echo;
    echo.start(QStringLiteral(DV_PIPE_ECHO), {"--pipe", name, "--exit-after", "20"});
    ASSERT_TRUE(echo.waitForReadyRead(5000)) << "dvpipe-echo did not start";
    ASSERT_EQ(echo.readLine().trimmed(), "ready");
    Run(name, "PING");
    EXPECT_EQ(host.ValueText("Antwort"), "PING");
    echo.terminate();
    ASSERT_TRUE(echo.waitForFinished(5000));
    EXPECT_FALSE(QFile::exists(localpipe::EndpointPath(name)));  // the server removes its endpoint
}

}  // namespace
}  // namespace dv
