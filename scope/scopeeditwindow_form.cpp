#include "scope/gui_scope_form.h"

#include "framework/exceptions.h"
#include "framework/translate.h"
#include "scope/gui_scope.h"
#include "scope/scopedisplay_form.h"
#include "scope/scopeeditor_form.h"
#include "scope/scopetags.h"

#include <QMessageBox>
#include <QTabWidget>

#include <utility>

namespace dv::scope {

namespace {
// The panel of the window whose Edit is decoding its line; otherwise the library's window is
// filled.
TScopeEditPanel* g_editing = nullptr;
}  // namespace

bool TFormScope::Edit(QString& command, QString& special)
{
    // The scope in its colours with the edit panel instead of the run panel, an ordinary window;
    // clicks on the scope do not measure while the line is edited.
    display_->Refresh();
    const bool wasVisible = isVisible();
    const bool wasRunning = display_->Main().Running();
    hide();
    runPanel_->hide();
    editPanel_->show();
    setWindowFlag(Qt::WindowStaysOnTopHint, false);
    editPanel_->Pages().setCurrentIndex(0);
    display_->Main().SetRunning(false);
    TScopeEditPanel* const formerEditing = std::exchange(g_editing, editPanel_);
    if (!command.isEmpty()) Scope().DecodeScript(command, special, false);
    g_editing = formerEditing;

    setWindowModality(Qt::ApplicationModal);
    show();
    if (live_) raise();
    activateWindow();
    const bool ok = editPanel_->Exec(*this);
    hide();
    setWindowModality(Qt::NonModal);
    editPanel_->hide();
    runPanel_->show();
    display_->Main().SetRunning(wasRunning);
    if (wasVisible) show();
    if (!ok) return false;
    const TScopeScript script = WriteScript(editPanel_->Settings());
    command = script.Command;
    special = script.Special;
    return true;
}

bool TScopeEditorForm::ShowModal() { return Edit(Scope().Command, Scope().Special); }

void TScopeEditorForm::ShowMessage(const QString& text) { QMessageBox::information(ScopeWindow(), _("Scope"), text); }

bool TScopeEditorForm::Edit(QString& command, QString& special)
{
    TFormScope* window = ScopeWindow();
    if (!window) {
        throw TDravikException(
            Format(_("Der Dialog %s kann nicht gezeigt werden: keine grafische Oberfläche"), {QStringLiteral("TFormScope")}));
    }
    return window->Edit(command, special);
}

void RegisterScopeEditor()
{
    RegisterEditorForm(QStringLiteral("TFormScope"), [](TDVRunEdit&) -> std::unique_ptr<TDVEditorForm> {
        return std::make_unique<TScopeEditorForm>();
    });
    SetEditorFillHook([](const TDecodedSettings& s) {
        TScopeEditPanel* panel = g_editing;
        if (!panel && ScopeWindow()) panel = &ScopeWindow()->EditPanel();
        if (panel) panel->Fill(s);
    });
}

}  // namespace dv::scope
