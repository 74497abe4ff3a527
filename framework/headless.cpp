#include "framework/headless.h"

#include <QGuiApplication>

#include <cstdio>
#include <map>
#include <mutex>
#include <set>

namespace dv {

namespace {
std::mutex g_mutex;
std::map<QString, QStringList> g_answers;  // lower-case procedure -> answers still to give
std::map<QString, QString> g_spelling;     // lower-case procedure -> as given
std::set<QString> g_asked;                 // lower-case procedures
std::function<void(const QString&)> g_lineSink;
}  // namespace

bool HasGui() { return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr; }

bool ShowsWindows()
{
    if (!HasGui()) return false;
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

void SetHeadlessAnswers(const QStringList& answers)
{
    std::lock_guard lock(g_mutex);
    g_answers.clear();
    g_spelling.clear();
    g_asked.clear();
    for (const QString& a : answers) {
        const qsizetype eq = a.indexOf('=');
        if (eq <= 0) continue;
        const QString procedure = a.left(eq).trimmed();
        g_answers[procedure.toLower()] << a.mid(eq + 1);
        g_spelling.try_emplace(procedure.toLower(), procedure);
    }
}

std::optional<QString> TakeHeadlessAnswer(const QString& procedure)
{
    std::lock_guard lock(g_mutex);
    g_asked.insert(procedure.toLower());
    const auto it = g_answers.find(procedure.toLower());
    if (it == g_answers.end() || it->second.isEmpty()) return std::nullopt;
    if (it->second.size() == 1) return it->second.front();
    return it->second.takeFirst();
}

QStringList UnaskedHeadlessAnswers()
{
    std::lock_guard lock(g_mutex);
    QStringList unasked;
    for (const auto& [key, spelling] : g_spelling) {
        if (!g_asked.contains(key)) unasked << spelling;
    }
    return unasked;
}

void SetOperatorLineSink(std::function<void(const QString& line)> sink)
{
    std::lock_guard lock(g_mutex);
    g_lineSink = std::move(sink);
}

void WriteOperatorLine(const QString& line)
{
    std::function<void(const QString&)> sink;
    {
        std::lock_guard lock(g_mutex);
        sink = g_lineSink;
    }
    if (sink) {
        sink(line);
        return;
    }
    std::fputs((line + '\n').toUtf8().constData(), stdout);
    std::fflush(stdout);
}

}  // namespace dv
