#pragma once
// The workbench's main window: the script editor with the command palette, the run log, the
// variables and the verdict of the last run; the "Labor" window holds the run's text output.
#include "host/hostservices.h"
#include "host/runner.h"
#include "workbench/guiservices.h"
#include "workbench/runsession.h"
#include "workbench/scriptfile.h"

#include <QMainWindow>
#include <QStringListModel>
#include <QTimer>

#include <memory>
#include <optional>

class QLabel;
class QTreeView;
class QTreeWidget;
class QAction;
class QMenu;

namespace dv::workbench {

class TScriptEditor;
class TCommandPalette;
class TLaborWindow;
class TFindReplaceBar;

class TMainWindow final : public QMainWindow {
    Q_OBJECT
public:
    explicit TMainWindow(QWidget* parent = nullptr);
    ~TMainWindow() override;

    TScriptEditor& Editor() { return *editor_; }
    TCommandPalette& Palette() { return *palette_; }
    TLaborWindow& Labor() { return *labor_; }
    QTreeView& Log() { return *log_; }
    TLogModel& LogModel() { return *logModel_; }
    QTreeWidget& Variables() { return *variables_; }
    QLabel& Verdict() { return *verdict_; }
    host::TCommandPool& Commands() { return editHost_.Commands(); }

    // Reads the file in its encoding (see scriptfile.h); asks nothing.
    bool OpenFile(const QString& path);
    // Writes the script in the encoding and line ending it was read in.
    bool SaveFile(const QString& path);
    bool Save();    // to the current file, or as a new one when there is none
    bool SaveAs();  // asks for the file
    // When the script has unsaved changes, asks "Änderungen speichern?": true when they were
    // saved or may be dropped, false when the user cancelled (or saving failed).
    bool MayDiscardChanges();
    const TScriptFormat& FileFormat() const { return format_; }
    const QString& FileName() const { return fileName_; }
    // The folder PROJEKTPFAD names; empty: the script's folder.
    void SetProjectFolder(const QString& folder);
    QString ProjectFolder() const;

    void Run();
    void Stop();
    bool IsRunning() const { return session_ != nullptr; }
    // The report of the last run, once it has finished.
    const std::optional<host::TRunReport>& LastReport() const { return lastReport_; }
    bool ExportJUnit(const QString& path) const;

    // Palette and editor: a new command at the cursor, or the command of the current line edited.
    bool InsertCommand(const QString& commandClass);
    bool EditCurrentLine();
    // The older lines converted after a preview; false when cancelled or nothing to convert.
    bool ConvertOlderLines();
    TFindReplaceBar& FindBar() { return *findBar_; }
    // Most recent first; the program keeps them between sessions.
    void SetRecentFiles(const QStringList& files);
    const QStringList& RecentFiles() const { return recent_; }
    static constexpr int kMaxRecentFiles = 8;

signals:
    void RunFinished();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void BuildActions();
    void BuildDocks();
    void OnRunFinished();
    void ShowVerdict(const host::TRunReport& report);
    void ShowBatch(TRunSession::TBatch batch);
    void ShowVariables(const QList<TVariableRow>& rows);
    void SetRunning(bool running);
    void PollRun();
    void UpdateTitle();
    void PrepareEdit(int line);
    void PlaceNewText(const QString& text);
    void Report(const QString& message);

    QStringListModel variableNames_;  // before the hosts: their dialogs' completers use it
    host::THost editHost_;
    TGuiServices editServices_;
    TScriptEditor* editor_;
    TCommandPalette* palette_;
    TLaborWindow* labor_;
    TLogModel* logModel_;
    QTreeView* log_;
    QTreeWidget* variables_;
    QLabel* verdict_;
    TFindReplaceBar* findBar_;
    QMenu* recentMenu_ = nullptr;
    QStringList recent_;
    QAction* runAction_ = nullptr;
    QAction* stopAction_ = nullptr;
    QString fileName_;
    TScriptFormat format_;
    QString projectFolder_;
    std::unique_ptr<TRunSession> session_;
    std::optional<host::TRunReport> lastReport_;
    QTimer pollTimer_;
};

}  // namespace dv::workbench
