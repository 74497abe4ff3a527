#include "commands/system/gui_inifile.h"

#include "commands/system/platform_process.h"
#include "framework/exceptions.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <csignal>
#include <thread>

namespace dv {
namespace {

QByteArray ReadAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void WriteAll(const QString& path, const QByteArray& content)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(content);
}

class IniFileTest : public ::testing::Test {
protected:
    IniFileTest()
    {
        path = dir.filePath("test.ini");
        WriteAll(path, kStart);
        host.Declare("N", g_NumberType);
        host.Declare("S", g_StringType);
        host.Declare("B", g_BooleanType);
    }

    void Run(int mode, const QString& section, const QString& ident = {}, const QString& value = {}, const QString& result = {})
    {
        TParamList p;
        p.AddString("FileName", path);
        p.AddString("Section", section);
        p.AddString("Ident", ident);
        p.AddString("Value", value);
        p.AddString("Result", result);
        p.AddString("Mode", QString::number(mode));
        ini.Run(p);
    }
    QString Text(const char* var) const { return host.ValueText(var); }

    static inline const QByteArray kStart =
        "; settings\n[Werte]\nZahl=42\nHex=$1F\nHex2=0x1f\nFloat=2.5\nText = ' Hallo '\nWahr=1\nWort=True\n\n[Leer]\n";
    QTemporaryDir dir;
    QString path;
    test::TTestHost host;
    TDVCmdIniFiles ini{&host};
};

TEST_F(IniFileTest, ReadModes)
{
    struct Row {
        int mode;
        const char* ident;
        const char* var;
        const char* expected;
    };
    const Row rows[] = {
        {3, "zahl", "N", "42"},      {3, "Hex", "N", "31"},     {3, "Hex2", "N", "31"},
        {3, "Float", "N", "0"},      {3, "missing", "N", "0"},  // not an integer: the default
        {4, "Float", "N", "2.5"},    {4, "Zahl", "N", "42"},    {4, "Text", "N", "0"},
        {5, "TEXT", "S", " Hallo "}, {5, "missing", "S", ""},
        {6, "Wahr", "B", "True"},    {6, "Wort", "B", "False"},  // booleans are read as integers
        {6, "Hex", "B", "True"},     {6, "missing", "B", "False"},
        {14, "zahl", "B", "True"},   {14, "missing", "B", "False"},
    };
    for (const Row& r : rows) {
        host.Declare(r.var, host.Value(r.var)->GetType());  // back to the default between rows
        Run(r.mode, "werte", r.ident, {}, r.var);
        EXPECT_EQ(Text(r.var), r.expected) << "mode " << r.mode << " " << r.ident;
    }
    Run(14, "Nirgends", "Zahl", {}, "B");
    EXPECT_EQ(Text("B"), "False");
    Run(13, "WERTE", {}, {}, "B");
    EXPECT_EQ(Text("B"), "True");
    Run(13, "Leer", {}, {}, "B");  // a section without keys counts as missing, as the classic class has it
    EXPECT_EQ(Text("B"), "False");
    EXPECT_EQ(ReadAll(path), kStart);  // reads leave the file alone
}

TEST_F(IniFileTest, WriteModesRoundTrip)
{
    Run(7, "Neu", "I", "$10");
    Run(8, "Neu", "F", "1.25");
    Run(9, "Neu", "S", "");
    Run(10, "Neu", "B", "True");
    Run(10, "Neu", "B0", "0");
    EXPECT_TRUE(ReadAll(path).endsWith("[Neu]\nI=16\nF=1.25\nS=\nB=1\nB0=0\n"));
    EXPECT_TRUE(ReadAll(path).startsWith(kStart));

    Run(3, "neu", "i", {}, "N");
    EXPECT_EQ(Text("N"), "16");
    Run(4, "neu", "f", {}, "N");
    EXPECT_EQ(Text("N"), "1.25");
    Run(14, "Neu", "S", {}, "B");  // an empty value still makes an entry
    EXPECT_EQ(Text("B"), "True");
    Run(6, "Neu", "B", {}, "B");
    EXPECT_EQ(Text("B"), "True");

    Run(11, "NEU", "s");
    Run(14, "Neu", "S", {}, "B");
    EXPECT_EQ(Text("B"), "False");
    Run(12, "neu");
    Run(13, "Neu", {}, {}, "B");
    EXPECT_EQ(Text("B"), "False");
    EXPECT_EQ(ReadAll(path), kStart);
}

TEST_F(IniFileTest, MissingFileFailsInEveryModeAndIsNeverCreated)
{
    path = dir.filePath("fehlt.ini");
    for (int mode = 0; mode <= 15; ++mode) {
        try {
            Run(mode, "S", "K", "1", "N");
            ADD_FAILURE() << "mode " << mode << " did not fail";
        } catch (const TDVRuntimeException& e) {
            EXPECT_EQ(e.Message(), "Die angegebene INI-Datei " + path + " existiert nicht!");
        }
    }
    EXPECT_FALSE(QFile::exists(path));
    path = dir.path();  // a folder is no INI file
    EXPECT_THROW(Run(1, "S"), TDVRuntimeException);
}

TEST_F(IniFileTest, BadValuesFailAndLeaveTheFileAlone)
{
    struct Row {
        int mode;
        const char* value;
    };
    const Row rows[] = {{7, "1.5"}, {7, "zwölf"}, {7, "3000000000"}, {8, "1,5"}, {8, "abc"}, {10, "vielleicht"}, {9, "a\nb"}};
    for (const Row& r : rows) {
        EXPECT_THROW(Run(r.mode, "Werte", "Zahl", r.value), TDVRuntimeException) << r.value;
    }
    EXPECT_EQ(ReadAll(path), kStart);
    Run(1, "egal");
    Run(2, "egal");
    Run(0, "Werte", "Zahl", "1");
    Run(15, "Werte", "Zahl", "1");
    EXPECT_EQ(ReadAll(path), kStart);
}

TEST(IniFileParamsTest, OlderLineFormAndParameterList)
{
    TDVCmdIniFiles ini(nullptr);
    TParamList p;
    ASSERT_TRUE(ini.DecodeScript("  IniFiles_WriteString(Filename:c.ini,Sec:S,Id:K,Value:V,Result:R,);", p, nullptr));
    EXPECT_EQ(p.Names(), QStringList({"FileName", "Section", "Ident", "Value", "Result", "Mode"}));
    EXPECT_EQ(p.GetString("FileName"), "c.ini");
    EXPECT_EQ(p.GetString("Section"), "S");
    EXPECT_EQ(p.GetString("Ident"), "K");
    EXPECT_EQ(p.GetString("Value"), "V");
    EXPECT_EQ(p.GetString("Result"), "R");
    EXPECT_EQ(p.GetString("Mode"), "9");

    TParamList unknown;
    ASSERT_TRUE(ini.DecodeScript("IniFiles_Frobnicate(Filename:c.ini,", unknown, nullptr));
    EXPECT_EQ(unknown.GetString("Mode"), "0");
    EXPECT_EQ(unknown.GetString("Section"), "");
}

// The far end of the crash test: writes two large versions of one entry in turn until killed.
TEST(IniFileCrashTest, WriterLoop)
{
    const QString file = qEnvironmentVariable("DV_INI_WRITER_FILE");
    if (file.isEmpty()) GTEST_SKIP() << "started only by IniFileCrashTest.KilledWriterNeverLeavesAHalfFile";
    test::TTestHost host;
    TDVCmdIniFiles ini(&host);
    for (int i = 0;; ++i) {
        TParamList p;
        p.AddString("FileName", file);
        p.AddString("Section", "S");
        p.AddString("Ident", "Big");
        p.AddString("Value", QString(1 << 20, QChar(i % 2 ? 'b' : 'a')));
        p.AddString("Mode", "9");
        ini.Run(p);
    }
}

TEST(IniFileCrashTest, KilledWriterNeverLeavesAHalfFile)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("crash.ini");
    WriteAll(file, "[S]\nBig=start\nEnd=1\n");
    int rewritten = 0;
    for (int delayMs : {150, 230, 310}) {
        qputenv("DV_INI_WRITER_FILE", file.toLocal8Bit());
        TChildProcess writer;
        const QString error = writer.Start({"/proc/self/exe", "--gtest_filter=IniFileCrashTest.WriterLoop"}, {});
        qunsetenv("DV_INI_WRITER_FILE");
        ASSERT_EQ(error, "");
        std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
        ::kill(writer.Pid(), SIGKILL);
        ASSERT_EQ(writer.Wait(nullptr, 5000), TChildWait::Exited);

        const QByteArray content = ReadAll(file);
        ASSERT_TRUE(content.startsWith("[S]\nBig=")) << delayMs;
        ASSERT_TRUE(content.endsWith("\nEnd=1\n")) << delayMs;
        const QByteArray value = content.mid(8, content.size() - 8 - 7);
        const bool whole = value == "start" || value == QByteArray(1 << 20, 'a') || value == QByteArray(1 << 20, 'b');
        EXPECT_TRUE(whole) << "after " << delayMs << " ms the entry has " << value.size() << " bytes";
        if (value != "start") ++rewritten;
    }
    EXPECT_GT(rewritten, 0) << "the writer never got to write";
}

}  // namespace
}  // namespace dv
