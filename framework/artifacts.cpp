#include "framework/artifacts.h"

#include <QDir>
#include <QHash>

#include <mutex>

namespace dv {

namespace {
struct TArtifacts {
    std::mutex lock;
    QString folder;
    QHash<QString, int> counters;
    QStringList attachments;
};
TArtifacts& State()
{
    static TArtifacts state;
    return state;
}
}  // namespace

void SetArtifactsFolder(const QString& folder)
{
    TArtifacts& s = State();
    std::lock_guard guard(s.lock);
    s.folder = folder;
    s.counters.clear();
}

QString ArtifactsFolder()
{
    TArtifacts& s = State();
    std::lock_guard guard(s.lock);
    return s.folder;
}

QString NextArtifactPath(const QString& stem, const QString& extension)
{
    TArtifacts& s = State();
    std::lock_guard guard(s.lock);
    if (s.folder.isEmpty()) return {};
    const int n = ++s.counters[stem];
    return QDir(s.folder).filePath(QStringLiteral("%1-%2.%3").arg(stem).arg(n, 3, 10, QLatin1Char('0')).arg(extension));
}

void RecordAttachment(const QString& path)
{
    TArtifacts& s = State();
    std::lock_guard guard(s.lock);
    s.attachments << path;
}

QStringList Attachments()
{
    TArtifacts& s = State();
    std::lock_guard guard(s.lock);
    return s.attachments;
}

void ClearAttachments()
{
    TArtifacts& s = State();
    std::lock_guard guard(s.lock);
    s.attachments.clear();
}

}  // namespace dv
