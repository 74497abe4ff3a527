// dvworkbench: write test scripts through the commands' dialogs, run them and read the results.
#include "framework/forms/guiforms.h"
#include "workbench/mainwindow.h"

#include <QApplication>

#include <clocale>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    std::setlocale(LC_NUMERIC, "C");  // numbers in scripts are locale-free
    dv::RegisterForms();
    dv::workbench::TMainWindow window;
    if (argc > 1) window.OpenFile(QString::fromLocal8Bit(argv[1]));
    window.show();
    return app.exec();
}
