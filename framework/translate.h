#pragma once
// The translation function: every user-visible text passes through it with the German text as key.
#include <QString>
#include <QStringList>

namespace dv {

QString _(const char* german);
QString _(const QString& german);

// Formats a translated text the way the host does: each "%s" / "%d" takes the next argument.
QString Format(const QString& pattern, const QStringList& args);

}  // namespace dv
