// A scope window on a display: "[HIDE]" hides it, "[KEEP]" leaves it as it is (also closed by the
// user), neither shows it again; pictures are taken only of a shown scope.
#include "framework/artifacts.h"
#include "scope/gui_scope.h"
#include "scope/gui_scope_form.h"
#include "scope/scopemodel.h"
#include "tests/support/modal.h"
#include "tests/support/testhost.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace dv::scope {
namespace {

void RunScope(const QString& command)
{
    Scope().Command = command;
    Scope().Special.clear();
    Scope().Start();
}

TEST(ScopeLiveWindow, HideHidesKeepLeavesAsItIsAndPicturesOnlyWhenShown)
{
    test::TTestHost host;
    QTemporaryDir dir;
    SetArtifactsFolder(dir.path());
    {
        TFormScope live(true);
        struct Row {
            const char* command;
            bool close;  // the user closes the window before the call
            bool visible;
            bool picture;
        };
        const Row rows[] = {
            {"[CLR]", false, true, true},   {"[KEEP]", false, true, true},  {"[HIDE]", false, false, false},
            {"[KEEP]", false, false, false}, {"[CLR]", false, true, true},   {"[KEEP]", true, false, false},
            {"[HIDE]", false, false, false}, {"", false, true, true},
        };
        int pictures = 0;
        for (const Row& r : rows) {
            if (r.close) {
                live.close();
                ASSERT_FALSE(live.isVisible());
            }
            RunScope(r.command);
            pictures += r.picture;
            EXPECT_EQ(live.isVisible(), r.visible) << r.command;
            EXPECT_EQ(ScopeModel().Visible, r.visible) << r.command;
            EXPECT_EQ(live.LastPicture().isEmpty(), !r.picture) << r.command;
            EXPECT_EQ(Artifacts().size(), pictures) << r.command;
        }
    }
    // The library's window takes the runs again once the second window is gone.
    RunScope("[CLR]");
    ASSERT_NE(ScopeWindow(), nullptr);
    EXPECT_FALSE(ScopeWindow()->LastPicture().isEmpty());
    SetArtifactsFolder({});
}

// The envelope comparison of a run with a missing file: an error box with Cancel only, then the
// test stops.
TEST(ScopeLiveWindow, AMissingEnvelopeFileOffersOnlyCancel)
{
    test::TTestHost host;
    TFormScope live(true);
    QString text;
    QMessageBox::StandardButtons buttons;
    test::WhenModal([&](QDialog& d) {
        auto& box = dynamic_cast<QMessageBox&>(d);
        text = box.text();
        buttons = box.standardButtons();
        box.button(QMessageBox::Cancel)->click();
    });
    RunScope("[CLR],[HIDE],[FX:ENVELOPE:1],[FILE:/gibt/es/nicht.HKV]");
    EXPECT_EQ(buttons, QMessageBox::Cancel);
    EXPECT_EQ(text, "Scope-Plugin: Fehler beim Laden der Hüllkurvendatei !\n/gibt/es/nicht.HKV existiert im agegebenen Pfad nicht !");
    EXPECT_EQ(host.stopCalls, 1);
}

}  // namespace
}  // namespace dv::scope
