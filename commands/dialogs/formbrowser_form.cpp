#include "commands/dialogs/formbrowser_form.h"

#include "framework/translate.h"

#include <QCoreApplication>
#include <QUrl>
#include <QWebEngineView>

namespace dv {

namespace {
// Qt WebEngine shares its OpenGL contexts with the application's, which must be said before the
// application object exists; a static initialiser of this unit runs early enough.
[[maybe_unused]] const bool g_sharedContexts = [] {
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    return true;
}();
}  // namespace

std::unique_ptr<QWidget> CreateFormBrowser(const QString& url, bool fullscreen)
{
    auto view = std::make_unique<QWebEngineView>();
    view->setObjectName(QStringLiteral("FormBrowser"));
    view->setWindowTitle(_("Formular"));
    view->load(QUrl(url));
    if (fullscreen) {
        view->showFullScreen();
    } else {
        view->resize(900, 700);
        view->show();
    }
    return view;
}

}  // namespace dv
