// dvformbrowser URL [--fullscreen]: shows one HTML form of FormShow until its parent closes it.
#include <QApplication>
#include <QUrl>
#include <QWebEngineView>

#include <csignal>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <sys/prctl.h>

int main(int argc, char** argv)
{
    // The window belongs to the run that opened it and never outlives it.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // the web engine handles SIGTERM itself
    const char* parent = std::getenv("DV_FORM_PARENT");
    if (parent && std::to_string(::getppid()) != parent) return 0;  // the run ended before we got here
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    const QStringList args = QApplication::arguments();
    if (args.size() < 2) {
        std::fputs("Aufruf: dvformbrowser URL [--fullscreen]\n", stderr);
        return 2;
    }
    QWebEngineView view;
    view.setObjectName(QStringLiteral("FormBrowser"));
    view.setWindowTitle(QStringLiteral("Formular"));
    view.load(QUrl(args[1]));
    if (args.contains(QStringLiteral("--fullscreen"))) {
        view.showFullScreen();
    } else {
        view.resize(900, 700);
        view.show();
    }
    return app.exec();
}
