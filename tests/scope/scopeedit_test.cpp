// A Scope call's arguments as the editor works on them, and editing where no editor can be shown.
#include "framework/exceptions.h"
#include "scope/gui_scope.h"
#include "scope/scopeedit.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

namespace dv::scope {
namespace {

TEST(ScopeEditArguments, LiteralsAreEditedAsTheirTextExpressionsAsWritten)
{
    struct TRow {
        const char* argument;
        const char* text;
    };
    const TRow rows[] = {
        {R"("[CLR],[OUT:R]")", "[CLR],[OUT:R]"},
        {R"(  "1:[FILE:""a b.txt"",SEP:59]" )", R"(1:[FILE:"a b.txt",SEP:59])"},
        {R"("")", ""},
        // An expression: the text between its outer quotes, quotes inside left as written.
        {R"("[CLR],1:[" + Quelle + "],[OUT:M]")", R"([CLR],1:[" + Quelle + "],[OUT:M])"},
        // No quotes around it (a variable): the text itself.
        {"Befehl", "Befehl"},
        {"", ""},
    };
    for (const TRow& r : rows) {
        EXPECT_EQ(ArgumentText(QString::fromUtf8(r.argument)), QString::fromUtf8(r.text)) << r.argument;
        // Unchanged text gives the argument back.
        if (QString::fromUtf8(r.argument).trimmed().startsWith('"')) {
            EXPECT_EQ(ArgumentOf(QString::fromUtf8(r.text), QString::fromUtf8(r.argument)), QString::fromUtf8(r.argument).trimmed())
                << r.argument;
        }
    }
    // What the editor wrote for a variable or a new call is a literal.
    EXPECT_EQ(ArgumentOf(R"(1:[FILE:"x",SEP:59])", "Befehl"), R"("1:[FILE:""x"",SEP:59]")");
    EXPECT_EQ(ArgumentOf("", ""), R"("")");
}

TEST(ScopeEditArguments, CommandLosesOnlyTheWritersFrame)
{
    EXPECT_EQ(CommandTags("Scope([CLR],[OUT:R]);"), "[CLR],[OUT:R]");
    EXPECT_EQ(CommandTags("Scope([FX:FFT:100:1][OUT:S]);"), "[FX:FFT:100:1][OUT:S]");
    EXPECT_EQ(CommandTags("[CLR],[OUT:R]"), "[CLR],[OUT:R]");
}

TEST(ScopeEditArguments, WithoutAGuiEditingFailsClearlyAndLeavesTheList)
{
    test::TTestHost host;
    TDVCmdScope cmd(&host);
    TParamList params;
    params.AddString("Command", "\"[CLR],[OUT:R]\"");
    params.AddString("Special", "\"\"");
    try {
        cmd.Edit(params);
        FAIL() << "Edit must raise without a GUI";
    } catch (const TDravikException& e) {
        EXPECT_TRUE(e.Message().contains("TFormScope")) << e.Message().toStdString();
    }
    EXPECT_EQ(params.GetString("Command"), "\"[CLR],[OUT:R]\"");
    EXPECT_EQ(params.GetString("Special"), "\"\"");
}

}  // namespace
}  // namespace dv::scope
