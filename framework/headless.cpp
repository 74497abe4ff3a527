#include "framework/headless.h"

#include <QGuiApplication>

#include <map>
#include <mutex>

namespace dv {

namespace {
std::mutex g_mutex;
std::map<QString, QStringList> g_answers;  // lower-case procedure -> answers still to give
}  // namespace

bool HasGui() { return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr; }

void SetHeadlessAnswers(const QStringList& answers)
{
    std::lock_guard lock(g_mutex);
    g_answers.clear();
    for (const QString& a : answers) {
        const qsizetype eq = a.indexOf('=');
        if (eq > 0) g_answers[a.left(eq).trimmed().toLower()] << a.mid(eq + 1);
    }
}

std::optional<QString> TakeHeadlessAnswer(const QString& procedure)
{
    std::lock_guard lock(g_mutex);
    const auto it = g_answers.find(procedure.toLower());
    if (it == g_answers.end() || it->second.isEmpty()) return std::nullopt;
    if (it->second.size() == 1) return it->second.front();
    return it->second.takeFirst();
}

}  // namespace dv
