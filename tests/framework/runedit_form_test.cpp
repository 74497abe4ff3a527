#include "framework/forms/boundform.h"
#include "framework/runedit.h"
#include "tests/commands/formdriver.h"

#include <QPushButton>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace dv {
namespace {

// A command that leaves its parameters to the default binding by control name.
class TDVCmdProbe : public TDVThreadRunEdit {
public:
    TDVCmdProbe()
        : TDVThreadRunEdit("procedure Probe(Host: String; Port: Number; Flag: Boolean = false; var Result: String);",
                           "TFormProbe", nullptr) {}
};

class TFormProbe : public TBoundForm {
public:
    explicit TFormProbe(TDVThreadRunEdit& command) : TBoundForm(command, "TFormProbe", "Probe", 1)
    {
        for (const char* name : {"DVEdit_Host", "DVEdit_Port", "DVEdit_Result"}) {
            auto* edit = new QLineEdit(this);
            edit->setObjectName(name);
            Body()->addWidget(edit);
        }
        auto* flag = new QCheckBox(this);
        flag->setObjectName("DVCheckBox_Flag");
        Body()->addWidget(flag);
    }
};

class EditTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        RegisterEditorForm("TFormProbe", [](TDVRunEdit& c) { return std::make_unique<TFormProbe>(static_cast<TDVThreadRunEdit&>(c)); });
        before.AddString("Port", "5000");
        before.AddString("Extra", "bleibt?");
        before.AddString("Host", "localhost");
    }
    TDVCmdProbe command;
    TParamList before;
};

TEST_F(EditTest, CancelLeavesTheListUntouched)
{
    for (const char* closer : {"BT_Cancel", "Escape"}) {
        TParamList params = before;
        test::OnModal("TFormProbe", [closer](QWidget& d) {
            test::Type(d, "DVEdit_Host", "geändert");
            QString(closer) == "Escape" ? QTest::keyClick(&d, Qt::Key_Escape) : test::Click(d, closer);
        });
        EXPECT_FALSE(command.Edit(params)) << closer;
        EXPECT_TRUE(params == before) << closer;
        EXPECT_EQ(params.Names(), QStringList({"Port", "Extra", "Host"}));
    }
}

TEST_F(EditTest, OkClearsTheListThenAddsExactlyTheParameters)
{
    TParamList params = before;
    test::OnModal("TFormProbe", [](QWidget& d) {
        EXPECT_EQ(test::Find<QLineEdit>(d, "DVEdit_Host").text(), "localhost");
        EXPECT_EQ(test::Find<QLineEdit>(d, "DVEdit_Port").text(), "5000");
        test::Type(d, "DVEdit_Result", "Antwort");
        test::Click(d, "DVCheckBox_Flag");
        test::Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(params.Names(), QStringList({"Host", "Port", "Flag", "Result"}));
    EXPECT_EQ(params.GetString("Host"), "localhost");
    EXPECT_EQ(params.GetString("Flag"), "True");
    EXPECT_EQ(params.GetString("Result"), "Antwort");
    EXPECT_FALSE(params.Contains("Extra"));
}

TEST_F(EditTest, DialogCarriesTheStandardButtons)
{
    TFormProbe form(command);
    EXPECT_EQ(form.objectName(), "TFormProbe");
    EXPECT_EQ(test::Find<QPushButton>(form, "BT_Cancel").text(), "Abbrechen");
    EXPECT_TRUE(test::Find<QPushButton>(form, "BT_OK").isDefault());
}

}  // namespace
}  // namespace dv
