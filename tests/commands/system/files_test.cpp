// The file commands on real files: SysUtils and IniFile, with the atomic writes, locks and
// encodings they share.
#include "commands/system/gui_inifile.h"
#include "commands/system/gui_sysutils.h"
#include "commands/system/initext.h"
#include "commands/system/platform_files.h"
#include "tests/commands/system/systemtest.h"

#include <QStringEncoder>

#include <sys/file.h>
#include <sys/stat.h>

#include <csignal>

namespace dv {
namespace {

using namespace test;

TEST(SysUtilsKeywordTest, ContainmentInItsOwnOrderAndEverythingElseIsFileExist)
{
    for (const TSysUtilRow& row : kSysUtilCommands) EXPECT_EQ(RecogniseSysUtil(row.keyword), row.command) << row.keyword;
    using C = TSysUtilSubcommand;
    const std::pair<const char*, C> rows[] = {
        {"fileexists", C::FileExist},         {"COPYFILE", C::FileExist},   {"", C::FileExist},
        {"x filecopy y", C::FileCopy},
        {"FileInUse+CreateDir", C::CreateDir},   // CreateDir is looked for first
        {"FileCopy DeleteFile", C::DeleteFile},  // DeleteFile before FileCopy
    };
    for (const auto& [text, expected] : rows) EXPECT_EQ(RecogniseSysUtil(text), expected) << text;
}

class SysUtilsRunTest : public ::testing::Test {
protected:
    // Without a display no window is found; the tests must not touch the desktop they run on.
    SysUtilsRunTest() { WriteFile(file, QByteArray(1234, 'x')); qunsetenv("DISPLAY"); }
    ~SysUtilsRunTest() override { if (!display.isEmpty()) qputenv("DISPLAY", display); }
    // Runs the sub-command and returns the result variable's text ("<none>" when not written).
    QString Run(const char* command, const QString& fileName, const QString& target = {})
    {
        host.Declare("R", g_MiscType);
        host.setVariableCalls.clear();
        TParamList p = ParamsOf({{"Command", command}, {"FileName", fileName}, {"Result", "R"}, {"Target", target}});
        utils.Run(p);
        return host.setVariableCalls.isEmpty() ? QStringLiteral("<none>") : host.ValueText("R");
    }

    const QByteArray display = qgetenv("DISPLAY");
    QTemporaryDir dir;
    QString file = dir.filePath("data.bin");
    TTestHost host;
    TDVCmdSystemUtilities utils{&host};
};

TEST_F(SysUtilsRunTest, FileOperations)
{
    const QString sub = dir.filePath("sub");
    const QString copy = dir.filePath("copy.bin");
    WriteFile(copy, "old");  // FileCopy overwrites
    const struct { const char* command; QString fileName, expected, target = {}; } rows[] = {
        {"FileExist", file, "True"},           {"FileExist", dir.path(), "False"},   {"FileExist", file + ".no", "False"},
        {"FileSize", file, "1234"},            {"DirectoryExists", dir.path(), "True"},
        {"DirectoryExists", file, "False"},    {"GetFilePath", "/x/y/z.ini", "/x/y/"},
        {"CreateDir", sub, "True"},            {"CreateDir", sub, "False"},
        {"CreateDir", dir.filePath("a/b"), "False"},  // no intermediate folders
        {"FileCopy", file, "<none>", copy},    {"FileSize", copy, "1234"},
        {"FileCopy", file + ".no", "<none>", copy},  // a failed copy is silent and keeps the target
        {"FileSize", copy, "1234"},            {"DeleteFile", copy, "True"},         {"DeleteFile", copy, "False"},
        {"FileInUse", file + ".no", "False"},  {"FileDate", file + ".no", "<none>"},  // the variable stays as it was
        {"FindWindow", "Kein Fenster dieses Namens", "0"},  {"DestroyWindow", "12345", "False"},
    };
    for (const auto& r : rows) EXPECT_EQ(Run(r.command, r.fileName, r.target), r.expected) << r.command << r.fileName.toStdString();
    EXPECT_TRUE(QFileInfo(sub).isDir());
    EXPECT_TRUE(FailureOf([&] { Run("DestroyWindow", "Fenster"); }).contains("Fenster"));  // strict integer conversion
}

TEST_F(SysUtilsRunTest, FileDateIsLocalDaysSince1899)
{
    struct stat st {};
    ASSERT_EQ(::stat(file.toLocal8Bit().constData(), &st), 0);
    std::tm local{};
    localtime_r(&st.st_mtime, &local);
    // Days from 1899-12-30 to the local date by the civil-from-days formula, independent of Qt.
    auto daysFromCivil = [](int y, unsigned m, unsigned d) {
        y -= m <= 2;
        const int era = (y >= 0 ? y : y - 399) / 400;
        const unsigned yoe = static_cast<unsigned>(y - era * 400);
        const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
        const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
        return era * 146097 + static_cast<int>(doe);
    };
    const double expected = daysFromCivil(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) - daysFromCivil(1899, 12, 30) +
                            (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec + st.st_mtim.tv_nsec / 1e9) / 86400.0;
    EXPECT_NEAR(Run("FileDate", file).toDouble(), expected, 0.002 / 86400);  // millisecond resolution
}

TEST_F(SysUtilsRunTest, FileSizeIsTakenAsSigned32Bit)
{
    QFile big(dir.filePath("sparse"));
    ASSERT_TRUE(big.open(QIODevice::WriteOnly));
    if (!big.resize(3LL << 30)) GTEST_SKIP() << "no sparse file here";
    big.close();
    EXPECT_EQ(Run("FileSize", big.fileName()), "-1073741824");
}

TEST_F(SysUtilsRunTest, FileInUseByAnotherProcessOrALock)
{
    QFile mine(file);  // our own handles do not count
    ASSERT_TRUE(mine.open(QIODevice::ReadOnly));
    EXPECT_EQ(Run("FileInUse", file), "False");
    TChildProcess holder;
    ASSERT_EQ(holder.Start({"sh", "-c", "exec 3<\"$0\"; echo ready > \"$0.ready\"; exec sleep 30", file}, {}, STDERR_FILENO), "");
    Eventually([&] { return QFile::exists(file + ".ready"); }, 3000);
    EXPECT_EQ(Run("FileInUse", file), "True");
    holder.AskToTerminate();
    ASSERT_EQ(holder.Wait(nullptr, 5000), TChildWait::Exited);
    EXPECT_EQ(Run("FileInUse", file), "False");
    // A lock counts even where the holder's descriptors cannot be seen (here our own, left out).
    const int fd = ::open(file.toLocal8Bit().constData(), O_RDONLY);
    ASSERT_EQ(::flock(fd, LOCK_EX), 0);
    EXPECT_EQ(Run("FileInUse", file), "True");
    ::close(fd);
}

TEST(SysUtilsParamsTest, OlderLineFormsAndTheirSecondText)
{
    const std::array<const char*, 5> rows[] = {  // line, Command, FileName, Result, Target
        {"FILESIZE(c:\\a.txt):R;", "\"FileSize\"", "c:\\a.txt", "R", ""},
        {"SysUtils.FileCopy(a.txt,b.txt);", "\"FileCopy\"", "a.txt", "", "b.txt"},
        {"FileDate(x):d;", "\"FileExist\"", "x", "d", ""},  // FileDate has no older form
    };
    TDVCmdSystemUtilities utils(nullptr);
    for (const auto& [line, command, fileName, result, target] : rows) {
        TParamList p;
        ASSERT_TRUE(utils.DecodeScript(line, p, nullptr));
        EXPECT_EQ(p, MakeParams({{"Command", command}, {"FileName", fileName}, {"Result", result}, {"Target", target}})) << line;
    }
    EXPECT_EQ(utils.OlderNames().size(), 10);  // every sub-command but FileDate
}

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

TEST_F(IniFileTest, NamesMatchWithoutTheirBlanksAndNamesTheFileCannotGiveBackAreRefused)
{
    Run(7, " Werte ", " Zahl ", "5");
    EXPECT_EQ(Run(3, "werte  ", "  zahl"), "5");
    QByteArray expected = kStart;
    EXPECT_EQ(ReadFile(path), expected.replace("Zahl=42", "Zahl=5"));  // replaced, not added again

    const std::pair<const char*, const char*> rows[] = {  // section, ident
        {"A]B", "K"}, {"Werte", "K=1"}, {"Werte", " ;K"}, {"Werte", "#K"}, {"  ", "K"}, {"Werte", ""}, {";S", "K"},
    };
    for (const auto& [section, ident] : rows) {
        const QString failure = FailureOf([&] { Run(9, section, ident, "1"); });
        EXPECT_TRUE(failure.contains("kann nicht in eine INI-Datei geschrieben werden")) << section << "/" << ident;
    }
    EXPECT_EQ(ReadFile(path), expected);
}

QByteArray Utf16(const char16_t* text, QStringEncoder::Encoding encoding)
{
    return QStringEncoder(encoding, QStringEncoder::Flag::WriteBom)(QString::fromUtf16(text));
}

// Files of Windows stations are read in their encoding and written back in it; an empty file
// becomes UTF-8.
TEST_F(IniFileTest, FilesKeepTheirEncoding)
{
    const struct { const char* name; QByteArray before, after; } rows[] = {  // after: once N is written as "€ü"
        {"UTF-16LE", Utf16(u"[S]\r\nK=Grüße\r\n", QStringEncoder::Utf16LE), Utf16(u"[S]\r\nK=Grüße\r\nN=€ü\r\n", QStringEncoder::Utf16LE)},
        {"UTF-16BE", Utf16(u"[S]\nK=Grüße\n", QStringEncoder::Utf16BE), Utf16(u"[S]\nK=Grüße\nN=€ü\n", QStringEncoder::Utf16BE)},
        {"Windows-1252", "[S]\nK=Gr\xFC\xDF" "e\n", "[S]\nK=Gr\xFC\xDF" "e\nN=\x80\xFC\n"},
        // the five bytes the code page leaves undefined come back as they were
        {"Windows-1252 undefined", "[S]\nU=\x81\x8D\x8F\x90\x9D\nK=Gr\xFC\xDF" "e\n",
         "[S]\nU=\x81\x8D\x8F\x90\x9D\nK=Gr\xFC\xDF" "e\nN=\x80\xFC\n"},
        {"UTF-8 BOM", "\xEF\xBB\xBF[S]\nK=Grüße\n", "\xEF\xBB\xBF[S]\nK=Grüße\nN=€ü\n"},
    };
    for (const auto& row : rows) {
        WriteFile(path, row.before);
        EXPECT_EQ(Run(5, "s", "k"), "Grüße") << row.name;
        Run(9, "S", "N", "€ü");
        EXPECT_EQ(ReadFile(path), row.after) << row.name;
        EXPECT_EQ(Run(5, "S", "N"), "€ü") << row.name;
    }
    // Windows-1252 has no place for these characters: refused, the file as it was.
    WriteFile(path, rows[2].after);
    EXPECT_TRUE(FailureOf([&] { Run(9, "S", "J", "日本"); }).contains("Windows-1252"));
    EXPECT_EQ(ReadFile(path), rows[2].after);

    // Bytes that are no text of the file's encoding read as replacement characters; writing them
    // would store those instead of the bytes: refused, the file as it was.
    const std::pair<QByteArray, QString> damaged[] = {  // file, K as read
        {"\xEF\xBB\xBF[S]\nK=Gr\xFC\xDF" "e\n", QString::fromUtf16(u"Gr\uFFFD\uFFFDe")},
        {Utf16(u"[S]\nK=1\n", QStringEncoder::Utf16LE) + 'x', QStringLiteral("1")},
    };
    for (const auto& [file, value] : damaged) {
        WriteFile(path, file);
        EXPECT_EQ(Run(5, "S", "K"), value) << file.toHex().constData();
        EXPECT_TRUE(FailureOf([&] { Run(9, "S", "N", "1"); }).contains("kein Text")) << file.toHex().constData();
        EXPECT_EQ(ReadFile(path), file);
    }

    // "Ã" and a no-break space make UTF-8's "à": once the change takes the file's last other
    // Windows-1252 byte, X would read so. Refused; a change that leaves plain ASCII is not.
    const QByteArray mixed = "[S]\nX=\xC3\xA0\nY=\xFC\n";
    WriteFile(path, mixed);
    EXPECT_TRUE(FailureOf([&] { Run(9, "S", "Y", "u"); }).contains("als UTF-8 statt als Windows-1252"));
    EXPECT_EQ(ReadFile(path), mixed);
    WriteFile(path, "[S]\nY=\xFC\n");
    Run(9, "S", "Y", "u");
    EXPECT_EQ(ReadFile(path), "[S]\nY=u\n");

    WriteFile(path, "");
    Run(9, "S", "N", "€ü");
    EXPECT_EQ(ReadFile(path), "[S]\nN=€ü\n");
}

// A value may begin with U+FEFF, at the start of the file's text as anywhere else.
TEST_F(IniFileTest, AValueKeepsALeadingZeroWidthNoBreakSpace)
{
    const QString feff(QChar(0xFEFF));
    WriteFile(path, "[S]\nK=\xEF\xBB\xBFwert\n");
    EXPECT_EQ(Run(5, "S", "K"), feff + "wert");
    Run(9, "S", "L", feff + "x");
    EXPECT_EQ(Run(5, "S", "L"), feff + "x");
    EXPECT_EQ(Run(5, "S", "K"), feff + "wert");
}

// Leftovers of a writer killed mid-write go with the next write, the user's files of like names
// stay; the owner and mode of the file stay.
TEST_F(IniFileTest, AWriteRemovesLeftoversAndKeepsOwnerAndMode)
{
    const QStringList leftovers{dir.filePath(".test.ini.dvtmp-Ab12Cd"), dir.filePath(".test.ini.dvtmp-zzzzzz")};
    for (const QString& f : leftovers) WriteFile(f, "half");
    const QStringList kept{".other.ini.dvtmp-Ab12Cd", ".test.ini.backup", ".test.ini.orig01", ".test.ini.Ab12Cd", ".test.ini.dvtmp-Ab12C"};
    for (const QString& f : kept) WriteFile(dir.filePath(f), "someone else's");
    const bool root = ::geteuid() == 0;
    if (root) {
        ASSERT_EQ(::chown(QFile::encodeName(path).constData(), kOtherUser, kOtherUser), 0);
    }
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0640), 0);
    Run(9, "Neu", "K", "1");
    for (const QString& f : leftovers) EXPECT_FALSE(QFile::exists(f)) << f.toStdString();
    for (const QString& f : kept) EXPECT_EQ(ReadFile(dir.filePath(f)), "someone else's") << f.toStdString();
    struct stat after {};
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &after), 0);
    EXPECT_EQ(after.st_mode & 07777, 0640u);
    if (root) {
        EXPECT_EQ(after.st_uid, kOtherUser);
    }
    EXPECT_EQ(ReadFile(path), kStart + "[Neu]\nK=1\n");
}

// A copy onto the file that is under way while the file is written keeps its temporary file and
// ends as it would alone.
TEST_F(IniFileTest, AWriteLeavesTheTemporaryFileOfACopyUnderWay)
{
    const QString fifo = dir.filePath("quelle");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    QString copied = "not ended";
    std::thread copy([&] { copied = CopyFileAtomically(fifo, path); });
    QFile source(fifo);
    ASSERT_TRUE(source.open(QIODevice::WriteOnly));  // the copy has opened it too
    source.write("[Kopie]\n");
    source.flush();
    EXPECT_TRUE(Eventually([&] { return !QDir(dir.path()).entryList({".test.ini.dvtmp-*"}, QDir::Files | QDir::Hidden).isEmpty(); }));
    EXPECT_EQ(ReplaceFileContent(path, "[S]\n"), "");
    source.write("K=1\n");
    source.close();
    copy.join();
    EXPECT_EQ(copied, "");
    EXPECT_EQ(ReadFile(path), "[Kopie]\nK=1\n");
}

// Whether a file is written is the file's own permission: a write-protected file is not written, as
// Windows refuses it, though its folder would take a new one, and a copy onto it fails (silently) as
// well; a file the writer may write in a folder it may not is written in place.
TEST(IniFileFolderTest, TheFilesPermissionDecides)
{
    if (!CanActAsOtherUser()) GTEST_SKIP() << "running as root without setpriv";
    QTemporaryDir dir;
    const QString folder = dir.filePath("fest"), file = folder + "/t.ini", readOnly = dir.filePath("ro.ini");
    ASSERT_TRUE(QDir().mkdir(folder));
    WriteFile(file, "[S]\r\nA=1\r\n");
    WriteFile(readOnly, "[S]\nA=1\n");
    WriteFile(dir.filePath("neu.ini"), "[S]\nA=2\n");
    WriteFile(dir.filePath("w.dvs"), "IniFile(FileName := \"fest/t.ini\", Section := \"S\", Ident := \"B\", Value := \"2\", Mode := 9)\n"
                                     "SysUtils(Command := \"FileCopy\", FileName := \"neu.ini\", Target := \"ro.ini\")\n"
                                     "IniFile(FileName := \"ro.ini\", Section := \"S\", Ident := \"B\", Value := \"2\", Mode := 9)\n");
    for (const auto& [path, mode] : {std::pair{dir.path(), 0777}, {file, 0666}, {readOnly, 0444}, {dir.filePath("w.dvs"), 0644},
                                     {dir.filePath("neu.ini"), 0644}, {folder, 0555}}) {
        ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), mode), 0) << path.toStdString();
    }
    struct stat before {}, after {}, readOnlyAfter {};
    ::stat(QFile::encodeName(file).constData(), &before);
    const TDvrunRun run = RunDvrun({"w.dvs"}, {.workDir = dir.path(), .asOtherUser = true});
    ::chmod(QFile::encodeName(folder).constData(), 0755);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains("w.dvs:3: Die INI-Datei ro.ini kann nicht geschrieben werden: keine Schreibberechtigung"))
        << run.err.toStdString();
    EXPECT_EQ(ReadFile(readOnly), "[S]\nA=1\n");
    ASSERT_EQ(::stat(QFile::encodeName(readOnly).constData(), &readOnlyAfter), 0);
    EXPECT_EQ(readOnlyAfter.st_mode & 07777, 0444u);
    EXPECT_EQ(ReadFile(file), "[S]\r\nA=1\r\nB=2\r\n");
    ::stat(QFile::encodeName(file).constData(), &after);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList{"t.ini"});
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

TEST(IniFileCrashTest, KilledWriterNeverLeavesAHalfFile)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("crash.ini");
    WriteFile(file, "[S]\nBig=start\nEnd=1\n");
    // The far end: a script that writes two large versions of one entry in turn until it is killed.
    const QString script = dir.filePath("writer.dvs");
    WriteFile(script, "var F, A, B : String\nvar I : Number\nA := \"a\"\nB := \"b\"\nfor I := 1 to 20 do\n  A := A + A\n  B := B + B\n"
                      "end for\nwhile True do\n  IniFile(FileName := F, Section := \"S\", Ident := \"Big\", Value := A, Mode := 9)\n"
                      "  IniFile(FileName := F, Section := \"S\", Ident := \"Big\", Value := B, Mode := 9)\nend while\n");
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

// Two scripts that write 1000 keys each into one file at once: every key arrives.
TEST(IniFileConcurrencyTest, TwoWriterProcessesLoseNothing)
{
    QTemporaryDir dir(QDir("/dev/shm").exists() ? "/dev/shm/dvtest-XXXXXX" : QDir::tempPath() + "/dvtest-XXXXXX");
    const QString file = dir.filePath("shared.ini");
    WriteFile(file, "[S]\n");
    WriteFile(dir.filePath("writer.dvs"), "var F, P : String\nvar I : Number\nfor I := 1 to 1000 do\n"
                                          "  IniFile(FileName := F, Section := \"S\", Ident := P + I, Value := I, Mode := 9)\nend for\n");
    QProcess writers[2];
    for (int w = 0; w < 2; ++w) {
        writers[w].start(DV_BINARY_DIR "/host/dvrun", {"--define", "F=" + file, "--define", QStringLiteral("P=w%1_").arg(w), dir.filePath("writer.dvs")});
    }
    for (QProcess& w : writers) {
        ASSERT_TRUE(w.waitForFinished(60000));
        EXPECT_EQ(w.exitCode(), 0) << w.readAllStandardError().toStdString();
    }
    const TIniText ini(ReadFile(file));
    int found = 0;
    for (int w = 0; w < 2; ++w) {
        for (int i = 1; i <= 1000; ++i) found += ini.ReadString("S", QStringLiteral("w%1_%2").arg(w).arg(i)) == QString::number(i);
    }
    EXPECT_EQ(found, 2000);
}

TEST(IniFileLockTest, AWriterWaitsForTheLockOfAnotherProcessThenFailsNamingIt)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("held.ini");
    WriteFile(file, "[S]\n");
    const QString ready = dir.filePath("ready");
    QProcess holder;
    // Holds the lock until the test leaves a file "ready.done".
    holder.start("flock", {"-x", dir.filePath(".held.ini.lock"), "sh", "-c",
                           "touch \"$0\"; while [ ! -e \"$0.done\" ]; do sleep 0.02; done", ready});
    ASSERT_TRUE(Eventually([&] { return QFile::exists(ready); })) << "the other process took no lock";
    EXPECT_TRUE(TFileLock(file, false, 100).Error().contains(".held.ini.lock"));
    WriteFile(ready + ".done", "");
    ASSERT_TRUE(holder.waitForFinished(5000));
    EXPECT_EQ(TFileLock(file, true, 100).Error(), "");
}

}  // namespace
}  // namespace dv
