// Renders the pictures of docs/workbench.md offscreen from the real windows, so they stay current:
//   dvworkbench-shots FOLDER
// writes workbench-main.png, workbench-dialog.png and workbench-run.png into FOLDER (made when
// missing). docs/images holds what it wrote; a test runs it on every build.
#include "framework/forms/guiforms.h"
#include "workbench/mainwindow.h"
#include "workbench/scripteditor.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QTimer>

#include <clocale>
#include <cstdio>

namespace {

const char* const kExample = R"(// Spannung des Prüflings messen und prüfen
var Spannung : Number = 4.98
var Antwort : String
var Werte : Array of Number = [4.97, 4.98, 5.01]

Log("Spannung: " + Spannung)
TCP(Host := "localhost", Port := 5000, Send := "MEAS?", Result := Antwort);
Check(Spannung > 4.9 and Spannung < 5.1, "Spannung außerhalb")
Check(Werte[3] < 5, "dritter Wert zu hoch")
)";

bool Save(QWidget& widget, const QString& path)
{
    const bool ok = widget.grab().save(path);
    std::fprintf(ok ? stdout : stderr, "%s %s\n", ok ? "geschrieben" : "nicht geschrieben:", qPrintable(path));
    return ok;
}

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    if (argc != 2) {
        std::fputs("Aufruf: dvworkbench-shots ORDNER\n", stderr);
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    if (!out.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "Der Ordner %s kann nicht angelegt werden\n", argv[1]);
        return 1;
    }
    dv::RegisterForms();
    dv::workbench::TMainWindow window;
    window.resize(1100, 700);
    window.SetProjectFolder(QStringLiteral("/home/pruefer/projekte/netzteil"));  // the same on every machine
    window.show();
    window.Editor().setPlainText(QString::fromUtf8(kExample));
    window.Editor().CheckNow();
    window.Editor().GoToLine(7);
    bool ok = Save(window, out.filePath("workbench-main.png"));

    // The TCP dialog as editing line 7 opens it.
    QTimer::singleShot(300, [&] {
        if (QWidget* dialog = QApplication::activeModalWidget()) {
            ok = Save(*dialog, out.filePath("workbench-dialog.png")) && ok;
            dialog->close();
        }
    });
    window.EditCurrentLine();

    // A finished run: the TCP call has no server to talk to, so the run fails with its log.
    QEventLoop finished;
    QObject::connect(&window, &dv::workbench::TMainWindow::RunFinished, &finished, &QEventLoop::quit);
    window.Run();
    if (window.IsRunning()) finished.exec();
    ok = Save(window, out.filePath("workbench-run.png")) && ok;
    return ok ? 0 : 1;
}
