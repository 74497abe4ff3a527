#include "commands/system/gui_sysutils.h"

#include "tests/commands/system/systemtest.h"

#include <sys/file.h>
#include <sys/stat.h>

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

}  // namespace
}  // namespace dv
