#include "framework/exceptions.h"
#include "framework/runedit.h"
#include "tests/commands/params.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

class TDVCmdPlain : public TDVThreadRunEdit {
public:
    TDVCmdPlain() : TDVThreadRunEdit("procedure Plain(A: String; B: Number = 3; var C: String);", "TFormPlain", nullptr) {}
};

TEST(RunEditTest, EditWithoutAGuiFailsClearlyAndLeavesTheList)
{
    TDVCmdPlain command;
    TParamList params;
    params.AddString("A", "x");
    const QString failure = test::RaisedMessage<TDravikException>([&] { command.Edit(params); }).value_or("Edit ran without a GUI");
    EXPECT_TRUE(failure.contains("TFormPlain")) << failure.toStdString();
    EXPECT_EQ(params.GetString("A"), "x");
    EXPECT_EQ(params.Count(), 1);
}

TEST(RunEditTest, DefaultBindingCopiesOneFieldPerParameterInSignatureOrder)
{
    TDVCmdPlain command;
    TParamList in;
    in.AddString("C", "Ziel");
    in.AddString("A", "x");
    in.AddString("Fremd", "y");
    command.SetParams(in);
    TParamList out;
    command.ReadParams(out);
    EXPECT_EQ(out.Names(), QStringList({"A", "B", "C"}));
    EXPECT_EQ(out.GetString("A"), "x");
    EXPECT_EQ(out.GetString("B"), "");
    EXPECT_EQ(out.GetString("C"), "Ziel");
}

TEST(RunEditTest, DefaultsAndParameterCheck)
{
    TDVCmdPlain command;
    TParamList params;
    params.AddString("A", "x");
    EXPECT_FALSE(command.CheckParams(params));  // C has no default
    params.AddString("C", "Ziel");
    EXPECT_TRUE(command.CheckParams(params));
    command.AddDefaults(params);
    EXPECT_EQ(params.GetString("B"), "3");
    EXPECT_EQ(command.GetID(), "Plain");
    EXPECT_FALSE(command.DecodeScript("Plain(1, 2);", params, nullptr));
}

}  // namespace
}  // namespace dv
