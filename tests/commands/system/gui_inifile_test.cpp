#include "commands/system/gui_inifile.h"

#include "commands/system/initext.h"
#include "tests/commands/system/systemtest.h"

#include <csignal>

namespace dv {
namespace {

using namespace test;

class IniFileTest : public ::testing::Test {
protected:
    IniFileTest() { WriteFile(path, kStart); }

    // Runs one mode; a reading or testing mode stores into B, declared afresh with its type, and gives B.
    QString Run(int mode, const QString& section, const QString& ident = {}, const QString& value = {})
    {
        const bool reads = (mode >= 3 && mode <= 6) || mode == 13 || mode == 14;
        if (reads) host.Declare("B", mode <= 4 ? g_NumberType : mode == 5 ? g_StringType : g_BooleanType);
        TParamList p = ParamsOf({{"FileName", path}, {"Section", section},      {"Ident", ident},
                                 {"Value", value},   {"Result", reads ? "B" : ""}, {"Mode", QString::number(mode)}});
        ini.Run(p);
        return reads ? host.ValueText("B") : QString();
    }

    static inline const QByteArray kStart = "; settings\n[Werte]\nZahl=42\nHex=$1F\nHex2=0x1f\nFloat=2.5\nText = ' Hallo '\nWahr=1\n"
                                            "Wort=True\n\n[Leer]\nkein Eintrag\n[werte]\nZahl=7\n";
    QTemporaryDir dir;
    QString path = dir.filePath("test.ini");
    TTestHost host;
    TDVCmdIniFiles ini{&host};
};

TEST_F(IniFileTest, ReadModesGiveTheClassicReadingsOrTheDefault)
{
    const std::tuple<int, const char*, const char*, const char*> rows[] = {  // mode, section, ident, B
        {3, "werte", "zahl", "42"},       {3, "Werte", "Hex", "31"},       {3, "Werte", "Hex2", "31"},
        {3, "Werte", "Float", "0"},       {3, "Werte", "missing", "0"},    {4, "Werte", "Float", "2.5"},
        {4, "Werte", "Text", "0"},        {5, "WERTE", "TEXT", " Hallo "},  // one pair of quotes off
        {5, "Werte", "missing", ""},      {6, "Werte", "Wahr", "True"},
        {6, "Werte", "Wort", "False"},    // booleans are read as integers
        {6, "Werte", "missing", "False"}, {14, "Werte", "zahl", "True"},   {14, "Nirgends", "Zahl", "False"},
        {13, "WERTE", "", "True"},        {13, "Leer", "", "False"},  // without keys a section counts as missing
    };
    for (const auto& [mode, section, ident, b] : rows) EXPECT_EQ(Run(mode, section, ident), b) << mode << " " << ident;
    EXPECT_EQ(ReadFile(path), kStart);  // reads leave the file alone
}

TEST_F(IniFileTest, WritesChangeOnlyTheirLinesAndRoundTrip)
{
    Run(7, "WERTE", "zahl", "$10");  // in place, in the first section of that name
    Run(9, "Werte", "Leer", "");     // after the section's last key; an empty value still makes an entry
    Run(8, "Neu", "F", "1.25");      // a new section goes to the end
    Run(10, "Neu", "B", "True");
    Run(10, "Neu", "B0", "0");
    QByteArray expected = kStart;
    expected.replace("Zahl=42", "Zahl=16").replace("Wort=True\n", "Wort=True\nLeer=\n");
    EXPECT_EQ(ReadFile(path), expected + "[Neu]\nF=1.25\nB=1\nB0=0\n");

    EXPECT_EQ(Run(3, "werte", "ZAHL"), "16");
    EXPECT_EQ(Run(4, "neu", "f"), "1.25");
    EXPECT_EQ(Run(14, "Werte", "leer"), "True");
    EXPECT_EQ(Run(6, "Neu", "B"), "True");
    Run(11, "WERTE", "leer");
    EXPECT_EQ(Run(14, "Werte", "Leer"), "False");
    Run(12, "neu");
    EXPECT_EQ(Run(13, "Neu"), "False");
    Run(7, "Werte", "Zahl", "42");
    EXPECT_EQ(ReadFile(path), kStart);
}

TEST_F(IniFileTest, MissingFileFailsInEveryModeAndIsNeverCreated)
{
    path = dir.filePath("fehlt.ini");
    for (int mode = 0; mode <= 15; ++mode) {
        EXPECT_EQ(FailureOf([&] { Run(mode, "S", "K", "1"); }),
                  "Die angegebene INI-Datei " + path + " existiert nicht!") << mode;
    }
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST_F(IniFileTest, BadValuesFailNamingTheValueAndOtherModesDoNothing)
{
    const std::pair<int, const char*> rows[] = {{7, "1.5"}, {7, "zwölf"}, {7, "3000000000"}, {8, "1,5"}, {10, "ja"}, {9, "a\nb"}};
    for (const auto& [mode, value] : rows) {
        EXPECT_TRUE(FailureOf([&] { Run(mode, "Werte", "Zahl", value); }).contains(value)) << mode << " " << value;
    }
    for (int mode : {0, 1, 2, 15}) Run(mode, "Werte", "Zahl", "1");
    EXPECT_EQ(ReadFile(path), kStart);
}

TEST(IniFileParamsTest, OlderLineForm)
{
    TDVCmdIniFiles ini(nullptr);
    TParamList p;
    ASSERT_TRUE(ini.DecodeScript("  IniFiles_WriteString(Filename:c.ini,Sec:S,Id:K,Value:V,Result:R,);", p, nullptr));
    EXPECT_EQ(p, MakeParams({{"FileName", "c.ini"}, {"Section", "S"}, {"Ident", "K"}, {"Value", "V"}, {"Result", "R"},
                                   {"Mode", "9"}}));
    ASSERT_TRUE(ini.DecodeScript("IniFiles_Frobnicate(Filename:c.ini,", p, nullptr));
    EXPECT_EQ(p.GetString("Mode"), "0");
}

TEST(IniTextTest, KeepsWindowsLineEndsAndByteOrderMark)
{
    TIniText ini(QByteArray("\xEF\xBB\xBF[S]\r\nA=1\r\n"));
    EXPECT_EQ(ini.ReadString("s", "a"), "1");
    ini.WriteString("S", "B", "2");
    EXPECT_EQ(ini.Content(), QByteArray("\xEF\xBB\xBF[S]\r\nA=1\r\nB=2\r\n"));
}

// The far end of the crash test: a script that writes two large versions of one entry in turn
// until it is killed.
constexpr const char* kWriterScript = R"(var F : String
var A : String = "a"
var B : String = "b"
var I : Number
for I := 1 to 20 do
  A := A + A
  B := B + B
end for
while True do
  IniFile(FileName := F, Section := "S", Ident := "Big", Value := A, Mode := 9)
  IniFile(FileName := F, Section := "S", Ident := "Big", Value := B, Mode := 9)
end while
)";

TEST(IniFileCrashTest, KilledWriterNeverLeavesAHalfFile)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("crash.ini");
    WriteFile(file, "[S]\nBig=start\nEnd=1\n");
    const QString script = dir.filePath("writer.dvs");
    WriteFile(script, kWriterScript);
    const QList<QByteArray> whole{"start", QByteArray(1 << 20, 'a'), QByteArray(1 << 20, 'b')};
    int rewritten = 0;
    for (int delayMs : {150, 230, 310}) {
        TChildProcess writer;
        ASSERT_EQ(writer.Start({DV_BINARY_DIR "/host/dvrun", "--define", "F=" + file, script}, {}, STDERR_FILENO), "");
        std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
        ::kill(writer.Pid(), SIGKILL);
        ASSERT_EQ(writer.Wait(nullptr, 5000), TChildWait::Exited);
        const QByteArray content = ReadFile(file);
        ASSERT_TRUE(content.startsWith("[S]\nBig=") && content.endsWith("\nEnd=1\n")) << delayMs;
        const QByteArray value = content.mid(8, content.size() - 8 - 7);
        EXPECT_TRUE(whole.contains(value)) << "after " << delayMs << " ms the entry has " << value.size() << " bytes";
        rewritten += value != "start";
    }
    EXPECT_GT(rewritten, 0) << "the writer never got to write";
}

}  // namespace
}  // namespace dv
