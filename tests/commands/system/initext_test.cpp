#include "commands/system/initext.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

const QByteArray kFile =
    "; leading comment\n"
    "\n"
    "[Main]\n"
    "Name = \"quoted value\"\n"
    "not a key line\n"
    "Count=7\n"
    "\n"
    "; about the next section\n"
    "[Other]\n"
    "Key=first\n"
    "[main]\n"
    "Name=second section of the same name\n"
    "; trailing comment";

TEST(IniTextTest, ReadsCaseInsensitivelyFromTheFirstMatch)
{
    const TIniText ini(kFile);
    EXPECT_EQ(ini.ReadString("MAIN", "name"), "quoted value");
    EXPECT_EQ(ini.ReadString("other", "KEY"), "first");
    EXPECT_EQ(ini.ReadString("Main", "missing"), std::nullopt);
    EXPECT_EQ(ini.ReadString("Nowhere", "Key"), std::nullopt);
    EXPECT_FALSE(ini.ValueExists("Main", "not a key line"));
    EXPECT_EQ(ini.Content(), kFile);  // untouched text comes back byte for byte
}

TEST(IniTextTest, ChangesTouchOnlyTheirLine)
{
    TIniText ini(kFile);
    ini.WriteString("main", "COUNT", "8");
    QByteArray expected = kFile;
    expected.replace("Count=7", "Count=8");
    EXPECT_EQ(ini.Content(), expected);

    ini.WriteString("Main", "New", "x");  // after the section's last key, before the blank line
    expected.replace("Count=8\n", "Count=8\nNew=x\n");
    EXPECT_EQ(ini.Content(), expected);

    ini.DeleteKey("MAIN", "name");
    expected.replace("Name = \"quoted value\"\n", "");
    EXPECT_EQ(ini.Content(), expected);
}

TEST(IniTextTest, NewSectionsGoToTheEndAndErasingTakesTheWholeSection)
{
    TIniText ini(kFile);
    ini.WriteString("Added", "K", "v");
    EXPECT_TRUE(ini.Content().endsWith("; trailing comment\n[Added]\nK=v\n"));
    ini.EraseSection("other");
    EXPECT_FALSE(ini.Content().contains("[Other]"));
    EXPECT_FALSE(ini.Content().contains("Key=first"));
    EXPECT_TRUE(ini.Content().contains("; about the next section\n[main]"));
}

TEST(IniTextTest, KeepsWindowsLineEndsAndByteOrderMark)
{
    TIniText ini(QByteArray("\xEF\xBB\xBF[S]\r\nA=1\r\n"));
    EXPECT_EQ(ini.ReadString("s", "a"), "1");
    ini.WriteString("S", "B", "2");
    EXPECT_EQ(ini.Content(), QByteArray("\xEF\xBB\xBF[S]\r\nA=1\r\nB=2\r\n"));
}

TEST(IniTextTest, SectionExistsOnlyWithAKey)
{
    const TIniText ini(QByteArray("[Empty]\n; only a comment\n[Full]\nK=\n"));
    EXPECT_FALSE(ini.SectionExists("Empty"));
    EXPECT_TRUE(ini.SectionExists("full"));
    EXPECT_TRUE(ini.ValueExists("Full", "k"));
    EXPECT_EQ(ini.ReadString("Full", "K"), "");
}

}  // namespace
}  // namespace dv
