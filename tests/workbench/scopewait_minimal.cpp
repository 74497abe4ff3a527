// The workbench on a platform with windows that can be shown (QT_QPA_PLATFORM=minimal): only there
// does the scope wait for "Weiter", so only there can stopping end that wait.
#include "scope/gui_scope_form.h"
#include "tests/workbench/workbenchdriver.h"
#include "workbench/logmodel.h"
#include "workbench/scripteditor.h"

#include <QGuiApplication>
#include <QPushButton>

#include <gtest/gtest.h>

namespace dv::workbench {
namespace {

const char* const kScript = "Log(\"vor\")\nScope(Command := \"[WAIT]\", Special := \"\");\nLog(\"nach\")";

class ScopeWaitTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(QGuiApplication::platformName(), "minimal") << "the scope waits only where windows are shown";
        window.show();
        window.Editor().setPlainText(kScript);
    }
    bool Logged(const QString& message)
    {
        for (int i = 0; i < window.LogModel().rowCount(); ++i) {
            if (window.LogModel().Entry(i).message == message) return true;
        }
        return false;
    }

    TMainWindow window;
};

TEST_F(ScopeWaitTest, WeiterLetsTheRunGoOn)
{
    const auto pressWeiter = [] {
        QPushButton* weiter = scope::ScopeWindow()->findChild<QPushButton*>("BT_Weiter");
        ASSERT_NE(weiter, nullptr);
        ASSERT_TRUE(weiter->isEnabled()) << "the scope is not waiting";
        weiter->click();
    };
    const test::TStopped went = test::StopWhileWaiting(window, 2, [this] { window.Run(); }, pressWeiter);
    ASSERT_GE(went.ms, 0) << "the run did not wait for Weiter";
    EXPECT_TRUE(went.verdict.startsWith("Bestanden")) << went.verdict.toStdString();
    EXPECT_TRUE(Logged("nach"));
}

TEST_F(ScopeWaitTest, StopEndsTheWaitForWeiterWithin100Ms)
{
    const test::TStopped stopped = test::StopWhileWaiting(window, 2, [this] { window.Run(); }, [this] { window.Stop(); });
    RecordProperty("stop_ms", static_cast<int>(stopped.ms));
    ASSERT_GE(stopped.ms, 0) << "the run did not wait for Weiter, or gave no verdict";
    EXPECT_LT(stopped.ms, 100);
    EXPECT_TRUE(stopped.verdict.contains("Test abgebrochen")) << stopped.verdict.toStdString();
    EXPECT_TRUE(Logged("vor"));
    EXPECT_FALSE(Logged("nach"));
}

}  // namespace
}  // namespace dv::workbench
