#include "commands/system/gui_sysutils.h"

#include "commands/system/platform_files.h"
#include "commands/system/platform_process.h"
#include "framework/exceptions.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <ctime>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace dv {
namespace {

TEST(SysUtilsKeywordTest, ContainmentInItsOwnOrder)
{
    using C = TSysUtilSubcommand;
    struct Row {
        const char* text;
        C expected;
    };
    const Row rows[] = {
        {"\"FileExist\"", C::FileExist},         {"fileexists", C::FileExist},
        {"COPYFILE", C::FileExist},              {"", C::FileExist},
        {"deletefile", C::DeleteFile},           {"x FileCopy y", C::FileCopy},
        {"FileSize", C::FileSize},               {"\"FileDate\"", C::FileDate},
        {"GetFilePath", C::GetFilePath},         {"DirectoryExists", C::DirectoryExists},
        {"FileInUse", C::FileInUse},             {"createdir", C::CreateDir},
        {"FindWindow", C::FindWindow},           {"DestroyWindow", C::DestroyWindow},
        {"FileInUse+CreateDir", C::CreateDir},   // CreateDir is looked for first
        {"FileCopy DeleteFile", C::DeleteFile},  // DeleteFile before FileCopy
    };
    for (const Row& r : rows) EXPECT_EQ(RecogniseSysUtil(r.text), r.expected) << r.text;
}

TEST(SysUtilsKeywordTest, DaysSince1899)
{
    // Serial day numbers of the spreadsheet/OLE date convention.
    EXPECT_DOUBLE_EQ(DaysSince1899(QDateTime(QDate(1899, 12, 30), QTime(0, 0))), 0.0);
    EXPECT_DOUBLE_EQ(DaysSince1899(QDateTime(QDate(1900, 1, 1), QTime(12, 0))), 2.5);
    EXPECT_DOUBLE_EQ(DaysSince1899(QDateTime(QDate(2024, 1, 1), QTime(6, 0))), 45292.25);
    EXPECT_EQ(ExtractFilePath("/a/b/c.txt"), "/a/b/");
    EXPECT_EQ(ExtractFilePath("c.txt"), "");
}

class SysUtilsRunTest : public ::testing::Test {
protected:
    SysUtilsRunTest()
    {
        file = dir.filePath("data.bin");
        QFile f(file);
        f.open(QIODevice::WriteOnly);
        f.write(QByteArray(1234, 'x'));
        host.Declare("R", g_MiscType);
    }
    // Runs the sub-command and returns the result variable's text ("<none>" when not written).
    QString Run(const QString& command, const QString& fileName, const QString& target = {})
    {
        host.Declare("R", g_MiscType);
        host.setVariableCalls.clear();
        TParamList p;
        p.AddString("Command", command);
        p.AddString("FileName", fileName);
        p.AddString("Result", "R");
        p.AddString("Target", target);
        utils.Run(p);
        return host.setVariableCalls.isEmpty() ? QStringLiteral("<none>") : host.ValueText("R");
    }

    QTemporaryDir dir;
    QString file;
    test::TTestHost host;
    TDVCmdSystemUtilities utils{&host};
};

TEST_F(SysUtilsRunTest, FileOperations)
{
    EXPECT_EQ(Run("FileExist", file), "True");
    EXPECT_EQ(Run("FileExist", dir.path()), "False");
    EXPECT_EQ(Run("FileExist", file + ".no"), "False");
    EXPECT_EQ(Run("FileSize", file), "1234");
    EXPECT_EQ(Run("DirectoryExists", dir.path()), "True");
    EXPECT_EQ(Run("DirectoryExists", file), "False");
    EXPECT_EQ(Run("GetFilePath", "/x/y/z.ini"), "/x/y/");

    const QString sub = dir.filePath("sub");
    EXPECT_EQ(Run("CreateDir", sub), "True");
    EXPECT_TRUE(QFileInfo(sub).isDir());
    EXPECT_EQ(Run("CreateDir", sub), "False");
    EXPECT_EQ(Run("CreateDir", dir.filePath("a/b")), "False");  // no intermediate folders

    const QString copy = dir.filePath("copy.bin");
    QFile old(copy);
    old.open(QIODevice::WriteOnly);
    old.write("old and longer than nothing");
    old.close();
    EXPECT_EQ(Run("FileCopy", file, copy), "<none>");
    EXPECT_EQ(QFileInfo(copy).size(), 1234);
    EXPECT_EQ(Run("FileCopy", file + ".no", copy), "<none>");  // silent failure, target kept
    EXPECT_EQ(QFileInfo(copy).size(), 1234);

    EXPECT_EQ(Run("DeleteFile", copy), "True");
    EXPECT_FALSE(QFile::exists(copy));
    EXPECT_EQ(Run("DeleteFile", copy), "False");
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
    EXPECT_EQ(Run("FileDate", file + ".no"), "<none>");
}

TEST_F(SysUtilsRunTest, FileSizeIsTakenAsSigned32Bit)
{
    const QString big = dir.filePath("sparse");
    QFile f(big);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    if (!f.resize(3LL << 30)) GTEST_SKIP() << "no sparse file here";
    f.close();
    EXPECT_EQ(Run("FileSize", big), "-1073741824");
}

TEST_F(SysUtilsRunTest, FileInUse)
{
    EXPECT_EQ(Run("FileInUse", file + ".no"), "False");
    EXPECT_EQ(Run("FileInUse", file), "False");
    QFile mine(file);  // our own handles do not count
    ASSERT_TRUE(mine.open(QIODevice::ReadOnly));
    EXPECT_EQ(Run("FileInUse", file), "False");
    mine.close();

    TChildProcess holder;
    ASSERT_EQ(holder.Start({"sh", "-c", "exec 3<\"$0\"; echo ready > \"$0.ready\"; exec sleep 30", file}, {}), "");
    for (int i = 0; i < 300 && !QFile::exists(file + ".ready"); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(Run("FileInUse", file), "True");
    holder.AskToTerminate();
    holder.Wait(nullptr, 5000);
    EXPECT_EQ(Run("FileInUse", file), "False");

    // A lock counts even where the holder's descriptors cannot be seen: here our own, which the
    // descriptor scan leaves out.
    const int fd = ::open(file.toLocal8Bit().constData(), O_RDONLY);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(::flock(fd, LOCK_EX), 0);
    EXPECT_EQ(Run("FileInUse", file), "True");
    ::close(fd);
    EXPECT_EQ(Run("FileInUse", file), "False");
}

TEST_F(SysUtilsRunTest, WindowsWithoutADisplay)
{
    const QByteArray display = qgetenv("DISPLAY");
    qunsetenv("DISPLAY");
    EXPECT_EQ(Run("FindWindow", "Kein Fenster dieses Namens"), "0");
    EXPECT_EQ(Run("DestroyWindow", "12345"), "False");
    EXPECT_THROW(Run("DestroyWindow", "Fenster"), TDVRuntimeException);  // strict integer conversion
    if (!display.isEmpty()) qputenv("DISPLAY", display);
}

TEST(SysUtilsParamsTest, SecondTextFollowsTheSubcommand)
{
    TDVCmdSystemUtilities utils(nullptr);
    TParamList in;
    in.AddString("Command", "filecopy");
    in.AddString("FileName", "a");
    in.AddString("Result", "ignored");
    in.AddString("Target", "b");
    utils.SetParams(in);
    TParamList out;
    utils.ReadParams(out);
    EXPECT_EQ(out.GetString("Command"), "\"FileCopy\"");
    EXPECT_EQ(out.GetString("Result"), "");
    EXPECT_EQ(out.GetString("Target"), "b");

    in.AddString("Command", "FileSize");
    utils.SetParams(in);
    utils.ReadParams(out);
    EXPECT_EQ(out.GetString("Result"), "ignored");
    EXPECT_EQ(out.GetString("Target"), "");
}

TEST(SysUtilsParamsTest, OlderLineForms)
{
    struct Row {
        const char* line;
        const char* command;
        const char* fileName;
        const char* result;
        const char* target;
    };
    const Row rows[] = {
        {"FileExist(c:\\a.txt):R;", "\"FileExist\"", "c:\\a.txt", "R", ""},
        {"SysUtils.FileCopy(a.txt,b.txt);", "\"FileCopy\"", "a.txt", "", "b.txt"},
        {"FILESIZE(a.txt):Groesse;", "\"FileSize\"", "a.txt", "Groesse", ""},
        {"CreateDir(neu):ok;", "\"CreateDir\"", "neu", "ok", ""},
        {"FileInUse(x):b;", "\"FileInUse\"", "x", "b", ""},
        {"DestroyWindow(77):b;", "\"DestroyWindow\"", "77", "b", ""},
        {"FileDate(x):d;", "\"FileExist\"", "x", "d", ""},  // FileDate has no older form
    };
    const QStringList older = TDVCmdSystemUtilities(nullptr).OlderNames();
    EXPECT_EQ(older.size(), 10);
    EXPECT_TRUE(older.contains("FileExist") && older.contains("DestroyWindow"));
    EXPECT_FALSE(older.contains("FileDate"));
    for (const Row& r : rows) {
        TDVCmdSystemUtilities utils(nullptr);
        TParamList p;
        ASSERT_TRUE(utils.DecodeScript(r.line, p, nullptr));
        EXPECT_EQ(p.GetString("Command"), r.command) << r.line;
        EXPECT_EQ(p.GetString("FileName"), r.fileName) << r.line;
        EXPECT_EQ(p.GetString("Result"), r.result) << r.line;
        EXPECT_EQ(p.GetString("Target"), r.target) << r.line;
    }
}

}  // namespace
}  // namespace dv
