#include "workbench/mainwindow.h"

#include "framework/exceptions.h"
#include "host/junit.h"
#include "workbench/calledit.h"
#include "workbench/convertpreview.h"
#include "workbench/findreplace.h"
#include "workbench/laborwindow.h"
#include "workbench/palette.h"
#include "workbench/scriptcheck.h"
#include "workbench/scripteditor.h"
#include "workbench/scriptfile.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QDir>
#include <QDockWidget>
#include <QEventLoop>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSaveFile>
#include <QScrollBar>
#include <QStatusBar>
#include <QTextBlock>
#include <QToolBar>
#include <QTreeView>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace dv::workbench {

namespace {

constexpr int kPollMs = 100;  // running line, variables and what the run wrote: at most ten times a second

QTreeWidget* MakeTable(const char* objectName, const QStringList& headers, QWidget* parent)
{
    auto* table = new QTreeWidget(parent);
    table->setObjectName(QString::fromLatin1(objectName));
    table->setRootIsDecorated(false);
    table->setHeaderLabels(headers);
    table->setUniformRowHeights(true);
    return table;
}

QDockWidget* Dock(const QString& title, const char* objectName, QWidget* content, QWidget* parent)
{
    auto* dock = new QDockWidget(title, parent);
    dock->setObjectName(QString::fromLatin1(objectName));
    dock->setWidget(content);
    return dock;
}

}  // namespace

TMainWindow::TMainWindow(QWidget* parent)
    : QMainWindow(parent),
      editServices_(editHost_, &variableNames_),
      editor_(new TScriptEditor),
      palette_(new TCommandPalette),
      labor_(new TLaborWindow(this)),
      logModel_(new TLogModel(this)),
      log_(new QTreeView(this)),
      variables_(MakeTable("Variables", {QStringLiteral("Name"), QStringLiteral("Typ"), QStringLiteral("Wert")}, this)),
      verdict_(new QLabel),
      findBar_(new TFindReplaceBar(*editor_))
{
    setObjectName(QStringLiteral("Workbench"));
    editServices_.Install();
    editor_->SetChecker([this](const QString& text) {
        TScriptCheck check = CheckScript(text, editHost_.Commands());
        variableNames_.setStringList(check.globals);
        return check;
    });
    editor_->SetLineTip([this](const QString& line) { return DescribeLine(line, editHost_.Commands()); });
    editor_->viewport()->installEventFilter(this);

    verdict_->setObjectName(QStringLiteral("VerdictBanner"));
    verdict_->setWordWrap(true);
    verdict_->setMargin(6);
    verdict_->hide();
    auto* centre = new QWidget;
    auto* layout = new QVBoxLayout(centre);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(verdict_);
    layout->addWidget(editor_);
    layout->addWidget(findBar_);
    setCentralWidget(centre);

    BuildActions();
    BuildDocks();
    SetRecentFiles({});
    connect(palette_, &TCommandPalette::InsertRequested, this, &TMainWindow::InsertCommand);
    connect(&editServices_, &TGuiServices::StatusTextChanged, statusBar(), [this](const QString& t) { statusBar()->showMessage(t); });
    pollTimer_.setInterval(kPollMs);
    connect(&pollTimer_, &QTimer::timeout, this, &TMainWindow::PollRun);
    editor_->CheckNow();
    UpdateTitle();
    resize(1100, 750);
}

TMainWindow::~TMainWindow()
{
    // A run waiting on the GUI thread (a dialog, the scope) needs the event loop to get to its end.
    if (session_) session_->Stop();
    while (session_ && session_->IsRunning()) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    session_.reset();
}

void TMainWindow::BuildActions()
{
    QMenu* file = menuBar()->addMenu(QStringLiteral("&Datei"));
    QAction* newScript = file->addAction(QStringLiteral("&Neu"), QKeySequence::New, this, [this] {
        if (!MayDiscardChanges()) return;
        editor_->clear();
        editor_->document()->setModified(false);
        fileName_.clear();
        format_ = {};
        UpdateTitle();
    });
    newScript->setObjectName(QStringLiteral("ActionNew"));
    QAction* open = file->addAction(QStringLiteral("Ö&ffnen..."), QKeySequence::Open, this, [this] {
        if (!MayDiscardChanges()) return;
        const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Skript öffnen"), ProjectFolder(),
                                                          QStringLiteral("Skripte (*.dvs);;Alle Dateien (*)"));
        if (!path.isEmpty()) OpenFile(path);
    });
    open->setObjectName(QStringLiteral("ActionOpen"));
    recentMenu_ = file->addMenu(QStringLiteral("&Zuletzt geöffnet"));
    file->addAction(QStringLiteral("&Speichern"), QKeySequence::Save, this, &TMainWindow::Save);
    file->addAction(QStringLiteral("Speichern &unter..."), QKeySequence::SaveAs, this, &TMainWindow::SaveAs);
    file->addSeparator();
    file->addAction(QStringLiteral("&Projektordner..."), this, [this] {
        const QString folder = QFileDialog::getExistingDirectory(this, QStringLiteral("Projektordner (PROJEKTPFAD)"), ProjectFolder());
        if (!folder.isEmpty()) SetProjectFolder(folder);
    });
    file->addAction(QStringLiteral("&JUnit-Bericht exportieren..."), this, [this] {
        if (!lastReport_) return Report(QStringLiteral("Noch kein Lauf beendet"));
        const QString path = QFileDialog::getSaveFileName(this, QStringLiteral("JUnit-Bericht"), ProjectFolder(), QStringLiteral("XML (*.xml)"));
        if (!path.isEmpty() && !ExportJUnit(path)) Report(QStringLiteral("Der Bericht %1 kann nicht geschrieben werden").arg(path));
    });
    file->addSeparator();
    file->addAction(QStringLiteral("&Beenden"), QKeySequence::Quit, this, &QWidget::close);

    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Bearbeiten"));
    QAction* editLine = edit->addAction(QStringLiteral("Befehl &bearbeiten"), this, &TMainWindow::EditCurrentLine);
    editLine->setShortcut(Qt::Key_F2);
    edit->addAction(QStringLiteral("&Suchen und ersetzen"), QKeySequence::Find, findBar_, &TFindReplaceBar::Open);
    edit->addAction(QStringLiteral("Ältere Zeilen &umsetzen..."), this, &TMainWindow::ConvertOlderLines);

    QMenu* test = menuBar()->addMenu(QStringLiteral("&Test"));
    runAction_ = test->addAction(QStringLiteral("&Ausführen"), this, &TMainWindow::Run);
    runAction_->setShortcut(Qt::Key_F5);
    stopAction_ = test->addAction(QStringLiteral("&Stoppen"), this, &TMainWindow::Stop);
    stopAction_->setShortcut(Qt::SHIFT | Qt::Key_F5);
    stopAction_->setEnabled(false);
    test->addAction(QStringLiteral("&Labor anzeigen"), this, [this] { labor_->show(); });

    QToolBar* bar = addToolBar(QStringLiteral("Test"));
    bar->setObjectName(QStringLiteral("TestToolBar"));
    bar->addAction(runAction_);
    bar->addAction(stopAction_);
}

void TMainWindow::BuildDocks()
{
    addDockWidget(Qt::LeftDockWidgetArea, Dock(QStringLiteral("Befehle"), "PaletteDock", palette_, this));
    addDockWidget(Qt::BottomDockWidgetArea, Dock(QStringLiteral("Protokoll"), "LogDock", log_, this));
    addDockWidget(Qt::RightDockWidgetArea, Dock(QStringLiteral("Variablen"), "VariablesDock", variables_, this));
    log_->setObjectName(QStringLiteral("RunLog"));
    log_->setRootIsDecorated(false);
    log_->setUniformRowHeights(true);  // rows are laid out without measuring each
    log_->setModel(logModel_);
    log_->header()->setStretchLastSection(false);
    log_->header()->setSectionResizeMode(TLogModel::Message, QHeaderView::Stretch);
    connect(log_, &QTreeView::clicked, this, [this](const QModelIndex& index) {
        if (const int line = index.data(TLogModel::kLineRole).toInt(); line > 0) editor_->GoToLine(line);
    });
}

bool TMainWindow::OpenFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        Report(QStringLiteral("Die Datei %1 kann nicht gelesen werden").arg(path));
        return false;
    }
    const TScriptFileText read = DecodeScriptFile(file.readAll());
    editor_->setPlainText(read.text);
    format_ = read.format;
    fileName_ = QFileInfo(path).absoluteFilePath();
    editor_->document()->setModified(false);
    editor_->CheckNow();
    UpdateTitle();
    QStringList recent = recent_;
    recent.removeAll(fileName_);
    recent.prepend(fileName_);
    SetRecentFiles(recent);
    return true;
}

void TMainWindow::SetRecentFiles(const QStringList& files)
{
    recent_ = files.mid(0, kMaxRecentFiles);
    recentMenu_->clear();
    for (const QString& path : recent_) {
        recentMenu_->addAction(QFileInfo(path).fileName(), this, [this, path] {
            if (MayDiscardChanges()) OpenFile(path);
        })->setToolTip(path);
    }
    recentMenu_->setEnabled(!recent_.isEmpty());
}

bool TMainWindow::ConvertOlderLines()
{
    if (session_) return false;
    TConvertPreview preview(editor_->toPlainText(), editHost_.Commands(), this);
    if (preview.exec() != QDialog::Accepted || preview.ChangedLines() == 0) return false;
    // One edit, so one undo brings the older lines back.
    QTextCursor all(editor_->document());
    all.select(QTextCursor::Document);
    all.insertText(preview.Converted());
    editor_->CheckNow();
    return true;
}

bool TMainWindow::SaveFile(const QString& path)
{
    // The file goes back in the encoding and line ending it came in. Characters Windows-1252 lacks
    // make it UTF-8, which dvrun reads as well, rather than be lost.
    TScriptFormat format = format_;
    std::optional<QByteArray> bytes = EncodeScriptFile(editor_->toPlainText(), format);
    QString note;
    if (!bytes) {
        format.encoding = TTextEncoding::Utf8;
        bytes = EncodeScriptFile(editor_->toPlainText(), format);
        note = QStringLiteral("Das Skript enthält Zeichen, die Windows-1252 nicht kennt: gespeichert als UTF-8");
    }
    // Written whole or not at all: a failed save leaves the file as it was.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(*bytes) < 0 || !file.commit()) {
        Report(QStringLiteral("Die Datei %1 kann nicht geschrieben werden").arg(path));
        return false;
    }
    format_ = format;
    fileName_ = QFileInfo(path).absoluteFilePath();
    editor_->document()->setModified(false);
    UpdateTitle();
    if (!note.isEmpty()) Report(note);
    return true;
}

bool TMainWindow::Save() { return fileName_.isEmpty() ? SaveAs() : SaveFile(fileName_); }

bool TMainWindow::SaveAs()
{
    const QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Skript speichern"), ProjectFolder(),
                                                      QStringLiteral("Skripte (*.dvs)"));
    return !path.isEmpty() && SaveFile(path);
}

bool TMainWindow::MayDiscardChanges()
{
    if (!editor_->document()->isModified()) return true;
    QMessageBox ask(QMessageBox::Question, windowTitle(), QStringLiteral("Änderungen speichern?"),
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, this);
    ask.setObjectName(QStringLiteral("SaveChanges"));
    ask.button(QMessageBox::Yes)->setText(QStringLiteral("Ja"));
    ask.button(QMessageBox::No)->setText(QStringLiteral("Nein"));
    ask.button(QMessageBox::Cancel)->setText(QStringLiteral("Abbrechen"));
    ask.setDefaultButton(QMessageBox::Yes);
    switch (ask.exec()) {
    case QMessageBox::Yes: return Save();
    case QMessageBox::No: return true;
    default: return false;
    }
}

void TMainWindow::SetProjectFolder(const QString& folder)
{
    projectFolder_ = folder.isEmpty() ? QString() : QDir::cleanPath(QDir(folder).absolutePath());
    UpdateTitle();
}

QString TMainWindow::ProjectFolder() const
{
    if (!projectFolder_.isEmpty()) return projectFolder_;
    if (!fileName_.isEmpty()) return QFileInfo(fileName_).absolutePath();
    return QDir::currentPath();
}

void TMainWindow::UpdateTitle()
{
    const QString name = fileName_.isEmpty() ? QStringLiteral("unbenannt") : QFileInfo(fileName_).fileName();
    setWindowTitle(QStringLiteral("%1 - dvworkbench").arg(name));
    editHost_.SetProjectFolder(ProjectFolder());
    statusBar()->showMessage(QStringLiteral("PROJEKTPFAD: %1").arg(ProjectFolder()));
}

void TMainWindow::Report(const QString& message) { statusBar()->showMessage(message, 10000); }

void TMainWindow::Run()
{
    if (session_) return;
    logModel_->Clear();
    variables_->clear();
    labor_->Clear();
    lastReport_.reset();
    verdict_->hide();
    const QString name = fileName_.isEmpty() ? QStringLiteral("unbenannt.dvs") : QFileInfo(fileName_).fileName();
    session_ = std::make_unique<TRunSession>(name, ProjectFolder(), &variableNames_);
    connect(session_.get(), &TRunSession::Finished, this, &TMainWindow::OnRunFinished, Qt::QueuedConnection);
    connect(&session_->Services(), &TGuiServices::LaborVisibilityChanged, labor_, &QWidget::setVisible);
    if (!session_->Load(editor_->toPlainText())) {
        OnRunFinished();
        return;
    }
    SetRunning(true);
    session_->Start();
    pollTimer_.start();
}

void TMainWindow::Stop()
{
    if (session_) session_->Stop();
}

void TMainWindow::PollRun()
{
    if (!session_) return;
    editor_->SetRunningLine(session_->RunningLine());
    ShowBatch(session_->TakeBatch());
    session_->RequestVariables();
}

void TMainWindow::ShowBatch(TRunSession::TBatch batch)
{
    if (!batch.log.empty() || batch.droppedLog > 0) {
        // The view follows new rows unless the user has scrolled up to read.
        const QScrollBar* bar = log_->verticalScrollBar();
        const bool follow = bar->value() == bar->maximum();
        logModel_->Append(std::move(batch.log), batch.droppedLog);
        if (follow) log_->scrollToBottom();
    }
    if (batch.status) statusBar()->showMessage(*batch.status);
    for (const TOutputLine& o : batch.output) labor_->Write(o.text, o.fontName, o.size, o.style, o.color);
    if (batch.variables) ShowVariables(FormatVariables(*batch.variables));
}

void TMainWindow::OnRunFinished()
{
    pollTimer_.stop();
    session_->Wait();
    ShowBatch(session_->TakeBatch());
    lastReport_ = session_->Report();
    const QList<TVariableRow> rows = FormatVariables(session_->FinalVariables());
    const bool parsed = lastReport_->exitCode != 2;
    session_.reset();
    editServices_.Install();  // the run's host took the services with it
    if (!parsed) {
        std::deque<TLogLine> errors;
        for (const QString& e : lastReport_->errors) errors.push_back({QTime::currentTime(), 0, QStringLiteral("FEHLER ") + e});
        logModel_->Append(std::move(errors));
    }
    ShowVariables(rows);
    ShowVerdict(*lastReport_);
    SetRunning(false);
    emit RunFinished();
}

void TMainWindow::SetRunning(bool running)
{
    runAction_->setEnabled(!running);
    stopAction_->setEnabled(running);
    editor_->setReadOnly(running);
    palette_->setEnabled(!running);
    if (!running) editor_->SetRunningLine(0);
}

void TMainWindow::ShowVerdict(const host::TRunReport& report)
{
    const bool passed = report.exitCode == 0;
    QString text = passed ? QStringLiteral("Bestanden") : QStringLiteral("Fehlgeschlagen");
    text += QStringLiteral(" (%1 s)").arg(report.seconds, 0, 'f', 2);
    if (!passed) text += '\n' + report.FailureText();
    verdict_->setText(text);
    verdict_->setStyleSheet(passed ? QStringLiteral("background:#c8f0c8;color:#0a400a;font-weight:bold")
                                   : QStringLiteral("background:#f8c8c8;color:#600000;font-weight:bold"));
    verdict_->show();
}

void TMainWindow::ShowVariables(const QList<TVariableRow>& rows)
{
    if (variables_->topLevelItemCount() != rows.size()) {
        variables_->clear();
        for (const TVariableRow& r : rows) new QTreeWidgetItem(variables_, {r.name, r.type, r.value});
        return;
    }
    for (int i = 0; i < rows.size(); ++i) {
        QTreeWidgetItem* item = variables_->topLevelItem(i);
        item->setText(0, rows[i].name);
        item->setText(1, rows[i].type);
        item->setText(2, rows[i].value);
    }
}

bool TMainWindow::ExportJUnit(const QString& path) const
{
    if (!lastReport_) return false;
    const QString name = fileName_.isEmpty() ? QStringLiteral("unbenannt.dvs") : QFileInfo(fileName_).fileName();
    return host::WriteJUnitReport(path, name, *lastReport_);
}

bool TMainWindow::InsertCommand(const QString& commandClass)
{
    if (session_) return false;
    TDVRunEdit* command = editHost_.Commands().ForClass(commandClass);
    if (!command) return false;
    PrepareEdit(editor_->CurrentLine());
    try {
        auto* call = dynamic_cast<TDVThreadRunEdit*>(command);
        const std::optional<QString> text =
            call ? InsertCall(*call) : EditStructure(*command, editor_->CurrentLine(), QString());
        if (!text) return false;
        PlaceNewText(*text);
        return true;
    } catch (const TDravikException& e) {
        Report(e.Message());
        return false;
    }
}

void TMainWindow::PrepareEdit(int line)
{
    // The dialogs' edit boxes offer, and an if condition may name, what is declared at the line:
    // inside a procedure its parameters and locals too.
    editor_->CheckNow();
    const host::TScope scope = editor_->LastCheck().ScopeAt(line);
    editHost_.Program().globals = scope;
    variableNames_.setStringList(Names(scope));
}

void TMainWindow::PlaceNewText(const QString& text)
{
    // On an empty line the new text takes its place; otherwise it goes below. Every line of a
    // block takes the current line's indentation.
    const int line = editor_->CurrentLine();
    const QString current = editor_->LineText(line);
    const QString block = IndentBlock(text, Indentation(current));
    if (current.trimmed().isEmpty()) {
        editor_->ReplaceLine(line, block);
        return;
    }
    QTextCursor cursor(editor_->document()->findBlockByNumber(line - 1));
    cursor.movePosition(QTextCursor::EndOfBlock);
    cursor.insertText('\n' + block);
    editor_->GoToLine(line + 1);
}

bool TMainWindow::EditCurrentLine()
{
    if (session_) return false;
    const int line = editor_->CurrentLine();
    const QString text = editor_->LineText(line);
    const TLineCommand command = CommandOfLine(text, editHost_.Commands());
    if (!command) return false;
    PrepareEdit(line);
    try {
        const std::optional<QString> edited =
            command.call ? EditCall(*command.call, text) : EditStructure(*command.structure, line, text);
        if (!edited) return false;  // cancelled: the line stays as it was
        if (*edited != text) editor_->ReplaceLine(line, *edited);
        return true;
    } catch (const TDravikException& e) {
        Report(e.Message());
        return false;
    }
}

bool TMainWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == editor_->viewport() && event->type() == QEvent::MouseButtonDblClick) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        editor_->setTextCursor(editor_->cursorForPosition(mouse->position().toPoint()));
        if (CommandOfLine(editor_->LineText(editor_->CurrentLine()), editHost_.Commands())) {
            EditCurrentLine();
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void TMainWindow::closeEvent(QCloseEvent* event)
{
    if (!MayDiscardChanges()) {
        event->ignore();
        return;
    }
    if (session_) {
        session_->Stop();
        QEventLoop wait;
        connect(this, &TMainWindow::RunFinished, &wait, &QEventLoop::quit);
        if (session_) wait.exec();
    }
    event->accept();
}

}  // namespace dv::workbench
