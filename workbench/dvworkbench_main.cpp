// dvworkbench: write test scripts through the commands' dialogs, run them and read the results.
#include "framework/forms/guiforms.h"
#include "workbench/mainwindow.h"

#include <QApplication>
#include <QSettings>

#include <clocale>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("dvcommands"));
    QApplication::setApplicationName(QStringLiteral("dvworkbench"));
    std::setlocale(LC_NUMERIC, "C");  // numbers in scripts are locale-free
    dv::RegisterForms();
    dv::workbench::TMainWindow window;
    QSettings settings;
    window.SetRecentFiles(settings.value(QStringLiteral("recentFiles")).toStringList());
    if (argc > 1) window.OpenFile(QString::fromLocal8Bit(argv[1]));
    window.show();
    const int code = app.exec();
    settings.setValue(QStringLiteral("recentFiles"), window.RecentFiles());
    return code;
}
