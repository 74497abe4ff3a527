#include "commands/system/gui_tcp.h"

#include "tests/commands/system/systemtest.h"

namespace dv {
namespace {

using namespace test;
using namespace tcpclient;

TEST(TcpClientTest, SentinelTextsOfCharacterCodes)
{
    const std::pair<QString, QString> rows[] = {
        {"\n", "\n"},  {"[10]", "\n"},  {"{13}{10}", "\r\n"},  {"[ 13, 10 ]", "\r\n"},  {"[]", ""},  {"", ""},
        {"{128}", QString(QChar(0x20AC))},  // codes are Windows-1252: 128 is the euro sign
        {"[256]", "[256]"},  {"[10", "[10"},  {"{10}x", "{10}x"},  {"END", "END"},  // no code list: the text itself
    };
    for (const auto& [parameter, sentinel] : rows) EXPECT_EQ(SentinelText(parameter), sentinel) << parameter.toStdString();
}

TEST(TcpClientTest, PortTextsAndConnectFailuresNameWhatWasWrong)
{
    const std::pair<const char*, int> ports[] = {{" 80 ", 80}, {"65535", 65535}, {"5000.0", 5000}};
    for (const auto& [text, port] : ports) EXPECT_EQ(TcpPort(text), port);
    for (const QString bad : {"0", "65536", "-1", "1.5", "abc", ""}) {
        EXPECT_TRUE(FailureOf([&] { TcpPort(bad); }).contains("Ungültiger Port \"" + bad + "\"")) << bad.toStdString();
    }
    EXPECT_TRUE(FailureOf([] { Connect("", 80, nullptr); }).contains("kein Host"));
    int port = 0;
    LoopbackSocket(false, port);  // closed again: nobody listens there
    EXPECT_EQ(FailureOf([&] { Connect("127.0.0.1", port, nullptr); }),
              QString("TCP: Keine Verbindung zu 127.0.0.1:%1: %2").arg(port).arg(qt_error_string(ECONNREFUSED)));
}

class TcpCommandTest : public ::testing::Test {
protected:
    TcpCommandTest() { host.Declare("Antwort", g_StringType); }

    // One call: the reply stored in Antwort, or the failure text.
    QString Run(int port, const QString& send, const QString& sentinel)
    {
        TParamList params = ParamsOf({{"Host", "127.0.0.1"}, {"Port", QString::number(port)}, {"Send", send}, {"Sentinel", sentinel},
                                      {"Result", "Antwort"}});
        const QString failure = FailureOf([&] { command.RunThreaded(params); });
        return failure.isEmpty() ? host.ValueText("Antwort") : failure;
    }

    TTestHost host;
    TDVCmdTCP command{&host};
};

TEST_F(TcpCommandTest, ReadsThePiecesOfTheReplyUpToTheSentinelOrFailsWritingNothing)
{
    QByteArray received;
    TTcpServer server([&](int fd, const TRunControl& quit) {  // echoes in two pieces, then closes
        received = ReceiveSome(fd, quit);
        SendBytes(fd, received.left(3));
        if (!quit.WaitForStop(30)) SendBytes(fd, received.mid(3));
    });
    TParamList defaults;  // what a call that leaves Sentinel out gets
    command.AddDefaults(defaults);
    static_assert(kReplyLimit == 64 * 1024 * 1024);  // what scripts get; this test lowers it
    command.SetReplyLimit(20);
    const std::array<QString, 3> rows[] = {  // Send, Sentinel, what is stored or the failure
        {"OK\r\nfurther text", defaults.GetString("Sentinel"), "OK"},  // the CR before a line feed goes too
        {"OK\r\nfurther text", "{13}{10}", "OK"},
        {"a\r\nbENDc", "END", "a\r\nb"},
        {QString(19, 'x') + "\n", "\n", QString(19, 'x')},  // up to the limit
        {"", "", ""},  // an empty sentinel takes what has arrived: nothing yet
        {"half", "\n", "TCP: Die Verbindung wurde geschlossen, bevor das Ende der Antwort empfangen wurde (4 Bytes empfangen)."},
        {QString(21, 'x'), "\n", "TCP: Die Antwort ist länger als 20 Bytes, ohne dass ihr Ende empfangen wurde."},
        {QString::fromUtf8("Grüße\n"), "\n", QString::fromUtf8("Grüße")},
    };
    for (const auto& [send, sentinel, outcome] : rows) EXPECT_EQ(Run(server.port, send, sentinel), outcome) << send.toStdString();
    EXPECT_EQ(received, QByteArray("Gr\xC3\xBC\xC3\x9F" "e\n"));  // UTF-8, and no line ending appended
    EXPECT_EQ(host.setVariableCalls.size(), 6);
}

TEST_F(TcpCommandTest, StopEndsTheReadWithin100MsKeepingTheReplyUntrimmed)
{
    TTcpServer server([](int fd, const TRunControl& quit) {
        ReceiveSome(fd, quit);
        SendBytes(fd, "line\r");
        quit.WaitForStop(-1);
    });
    TStopLater stopper(host.runControl, 150);
    EXPECT_EQ(Run(server.port, "x", "\n"), "line\r");
    EXPECT_LT(stopper.MsSinceSignal(), 100);
}

}  // namespace
}  // namespace dv
