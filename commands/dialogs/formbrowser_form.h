#pragma once
// The browser window of FormShow, kept in a unit of its own: Qt WebEngine is only ever started here,
// and only when a display exists.
#include <QString>
#include <QWidget>

#include <memory>

namespace dv {

std::unique_ptr<QWidget> CreateFormBrowser(const QString& url, bool fullscreen);

}  // namespace dv
