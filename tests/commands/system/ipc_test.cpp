// The two commands that call another program over a connection: TCP and CallNamedPipe, against
// servers of the test and the echo server.
#include "commands/system/gui_callnamedpipe.h"
#include "commands/system/gui_tcp.h"
#include "tests/commands/system/systemtest.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>

#include <sys/stat.h>

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

class CallNamedPipeTest : public ::testing::Test {
protected:
    CallNamedPipeTest() { host.Declare("Antwort", g_StringType); }

    // One call: the reply stored in Antwort, or the failure text.
    QString Run(const QString& name, const QString& call)
    {
        TParamList params = ParamsOf({{"Name", name}, {"Call", call}, {"Result", "Antwort"}});
        const QString failure = FailureOf([&] { command.RunThreaded(params); });
        return failure.isEmpty() ? host.ValueText("Antwort") : failure;
    }

    TTestHost host;
    TDVCmdCallNamedPipe command{&host};
};

TEST_F(CallNamedPipeTest, NamesOutsideTheLocalNamespaceFailNamingTheReasonAndWriteNothing)
{
    const std::pair<QString, const char*> rows[] = {
        {R"(\\server\pipe\x)", "\"server\""},           {R"(\\localhost\pipe\x)", "anderen Rechnern"},
        {R"(\\.\mailslot\x)", "Ungültiger Pipe-Name"},  {R"(\\.\pipe\)", "Ungültiger Pipe-Name"},
        {"a/b", "Ungültiger Pipe-Name"},                {"..", "Ungültiger Pipe-Name"},
        {"", "kein Pipe-Name"},                         {QString(108, 'x'), "zu lang"},  // past a socket address
    };
    for (const auto& [pipeName, reason] : rows) {
        const QString failure = Run(pipeName, "x");
        EXPECT_TRUE(failure.startsWith("CallNamedPipe: ") && failure.contains(reason)) << failure.toStdString();
    }
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST_F(CallNamedPipeTest, TheReplyIsTheServersFirstMessageInWindows1252)
{
    QByteArray received;
    TPipeServer server([&](int fd, const TRunControl& quit) {
        received = ReceiveSome(fd, quit);
        if (received == "slow" && quit.WaitForStop(300)) return;
        if (received == "two") SendBytes(fd, "first");
        if (received == "zero") SendBytes(fd, QByteArray("AB\0CD", 5));
        else if (received.toInt() > 0) SendBytes(fd, QByteArray(received.toInt(), 'r'));
        else if (received != "none") SendBytes(fd, received);
    });
    const std::pair<QString, QString> rows[] = {
        {"two", "first"},  // a second message is not part of the reply
        {"slow", "slow"},  {"none", ""},  // a server that closes without answering
        {"zero", "AB"},    // the reply ends at its first zero byte
        {"4097", QString(4097, 'r')},
        {"4098", "CallNamedPipe: Weitere Daten sind verfügbar: die Antwort ist länger als 4097 Bytes."},
        {QString::fromUtf8("Grüße 5 €"), QString::fromUtf8("Grüße 5 €")},
    };
    for (const auto& [call, outcome] : rows) EXPECT_EQ(Run(server.name, call), outcome) << call.toStdString();
    EXPECT_EQ(received, QByteArray("Gr\xFC\xDF" "e 5 \x80"));
    EXPECT_EQ(Run("\\\\.\\pipe\\" + server.name, "full form"), "full form");  // the same endpoint
    EXPECT_EQ(Run("\\\\.\\PIPE\\" + server.name, "any case"), "any case");
}

TEST_F(CallNamedPipeTest, ABusyPipeIsRetriedUntilTheLimitThenFailsWithTheBusyText)
{
    static_assert(localpipe::TConnectTimings{}.retryWaitMs == 50 && localpipe::TConnectTimings{}.connectLimitMs == 5000);
    // Backlog 0 and nobody accepting yet: the first client fills the queue, every further one is busy.
    TPipeServer busy({}, 0, 60000);
    const TSocketFd filler = ConnectFiller(busy.path);
    command.SetConnectTimings({50, 300});
    const auto start = Clock::now();
    EXPECT_EQ(Run(busy.name, "x"), "CallNamedPipe: Alle Pipeinstanzen sind ausgelastet.");
    EXPECT_GE(MsSince(start), 300);

    // A server that starts accepting 250 ms late is served within a 2 s limit.
    TPipeServer late([](int fd, const TRunControl& quit) { SendBytes(fd, ReceiveSome(fd, quit)); }, 0, 250);
    const TSocketFd lateFiller = ConnectFiller(late.path);
    SendBytes(lateFiller.Get(), "filler");
    command.SetConnectTimings({50, 2000});
    EXPECT_EQ(Run(late.name, "patient"), "patient");
}

TEST_F(CallNamedPipeTest, AMissingPipeFailsWithTheSystemTextAfterTheWaitOrAtOnceWhenStopped)
{
    const QString missing = "CallNamedPipe: " + qt_error_string(ENOENT);
    command.SetConnectTimings({50, 200});
    auto start = Clock::now();
    EXPECT_EQ(Run(UniquePipeName(), "x"), missing);
    EXPECT_GE(MsSince(start), 200);

    command.SetConnectTimings({50, 5000});
    host.runControl.SignalStop();
    start = Clock::now();
    EXPECT_EQ(Run(UniquePipeName(), "x"), missing);
    EXPECT_LT(MsSince(start), 1000);
}

TEST_F(CallNamedPipeTest, StopEndsAPendingTransactionWithAnEmptyReplyWithin100Ms)
{
    TPipeServer server([](int fd, const TRunControl& quit) {
        ReceiveSome(fd, quit);
        quit.WaitForStop(-1);  // never answers
    });
    host.Declare("Antwort", g_StringType).Assign(std::make_unique<TStringValue>("old"));
    TStopLater stopper(host.runControl, 100);
    EXPECT_EQ(Run(server.name, "x"), "");
    EXPECT_LT(stopper.MsSinceSignal(), 100);
    EXPECT_EQ(host.setVariableCalls, QStringList{"Antwort"});
}

// In a folder that another user owns or may write to, someone else could serve the call and forge
// the reply: such a folder is refused before anything is sent.
TEST_F(CallNamedPipeTest, OnlyAnEndpointFolderOfTheUserClosedToOthersIsTrusted)
{
    QTemporaryDir runtime;
    const TScopedEnvironment environment("XDG_RUNTIME_DIR", QFile::encodeName(runtime.path()));
    const QString folder = localpipe::EndpointDirectory();
    ASSERT_TRUE(folder.startsWith(runtime.path()) && QDir().mkdir(folder));
    std::atomic<int> served{0};
    TTestServer forger(ListenAt(folder + "/p"), [&](int fd, const TRunControl& quit) {
        ++served;
        ReceiveSome(fd, quit);
        SendBytes(fd, "forged");
    });
    const QByteArray dir = QFile::encodeName(folder);
    const struct { const char* what; mode_t mode; uid_t owner; } rows[] = {
        {"writable by others", 0777, ::geteuid()},
        {"writable by its group", 0770, ::geteuid()},
        {"another user's", 0700, kOtherUser},  // only root can give a folder away
    };
    for (const auto& row : rows) {
        if (row.owner != ::geteuid() && ::geteuid() != 0) continue;
        ASSERT_EQ(::chown(dir.constData(), row.owner, ::getegid()), 0);
        ASSERT_EQ(::chmod(dir.constData(), row.mode), 0);
        EXPECT_TRUE(Run("p", "x").contains("Pipe-Verzeichnis")) << row.what;
    }
    EXPECT_EQ(served, 0);
    ASSERT_EQ(::chown(dir.constData(), ::geteuid(), ::getegid()), 0);
    ASSERT_EQ(::chmod(dir.constData(), 0700), 0);
    EXPECT_EQ(Run("p", "x"), "forged");  // the user's own closed folder is served
}

TEST_F(CallNamedPipeTest, LongMessagesArriveWholeAndTooLongOnesNameTheLimit)
{
    TPipeServer server([](int fd, const TRunControl& quit) {
        if (WaitForEvents({{fd, POLLIN}}, &quit, 5000) != TWaitResult::Ready) return;
        QByteArray message(1 << 20, '\0');
        SendBytes(fd, QByteArray::number(qint64(::recv(fd, message.data(), size_t(message.size()), 0))));
    });
    EXPECT_EQ(Run(server.name, QString(300000, 'm')), "300000");  // past the default send buffer
    // A send buffer grows to twice net.core.wmem_max at most, and the kernel makes no packet of much
    // more than 4 MiB, whatever the buffer: messages that long cannot go, and the text says how long may.
    const qsizetype pastBuffer = 2 * ReadFile("/proc/sys/net/core/wmem_max").trimmed().toLongLong() + 1;
    static const QRegularExpression limit("höchstens (\\d+) Bytes");
    for (const qsizetype size : {pastBuffer, qsizetype(4300000)}) {
        const QString tooLong = Run(server.name, QString(size, 'm'));
        const qsizetype largest = limit.match(tooLong).captured(1).toLongLong();
        EXPECT_TRUE(tooLong.contains(QString::number(size) + " Bytes zu lang")) << tooLong.toStdString();
        EXPECT_TRUE(largest > 300000 && largest <= (4 << 20) && largest < size) << tooLong.toStdString();
    }
}

TEST_F(CallNamedPipeTest, TheEchoServerAnswersPipeAndTcp)
{
    const QString name = UniquePipeName();
    int port = 0;
    LoopbackSocket(false, port);  // closed again: free for the echo server
    QProcess echo;
    echo.start(QStringLiteral(DV_PIPE_ECHO), {"--pipe", name, "--tcp", QString::number(port), "--exit-after", "20"});
    ASSERT_TRUE(echo.waitForReadyRead(5000)) << "dvpipe-echo did not start";
    ASSERT_EQ(echo.readLine().trimmed(), "ready");
    EXPECT_EQ(Run(name, "PING"), "PING");
    // A message longer than any fixed buffer comes back whole.
    const TSocketFd raw = ConnectFiller(localpipe::EndpointPath(name));
    const int bufferSize = 1 << 20;
    ::setsockopt(raw.Get(), SOL_SOCKET, SO_SNDBUF, &bufferSize, sizeof bufferSize);
    QByteArray message;
    for (int i = 0; message.size() < 200000; ++i) message += QByteArray::number(i) + ' ';
    ASSERT_EQ(::send(raw.Get(), message.constData(), size_t(message.size()), MSG_NOSIGNAL), message.size());
    QByteArray echoed(message.size() + 1, '\0');
    TRunControl never;
    ASSERT_EQ(WaitForEvents({{raw.Get(), POLLIN}}, &never, 5000), TWaitResult::Ready);
    echoed.resize(::recv(raw.Get(), echoed.data(), size_t(echoed.size()), 0));
    EXPECT_TRUE(echoed == message) << echoed.size() << " of " << message.size() << " bytes";
    TDVCmdTCP tcp(&host);
    QString large;  // far more than one read of the server takes
    for (int i = 0; large.size() < (1 << 20); ++i) large += QString::number(i) + ' ';
    for (const QString& send : {QStringLiteral("TCP-PING"), large}) {
        TParamList params =
            ParamsOf({{"Host", "127.0.0.1"}, {"Port", QString::number(port)}, {"Send", send}, {"Sentinel", "[10]"}, {"Result", "Antwort"}});
        tcp.RunThreaded(params);
        const QString reply = host.ValueText("Antwort");
        EXPECT_TRUE(reply == send) << reply.size() << " of " << send.size() << " characters";
    }
    echo.terminate();
    ASSERT_TRUE(echo.waitForFinished(5000));
    EXPECT_FALSE(QFile::exists(localpipe::EndpointPath(name)));  // the server removes its endpoint
}

}  // namespace
}  // namespace dv
