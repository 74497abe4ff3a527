#include "framework/artifacts.h"

#include <QDir>
#include <QFileInfo>

#include <mutex>

namespace dv {

namespace {
std::mutex g_mutex;
QString g_folder;
QStringList g_artifacts;
}  // namespace

void SetArtifactsFolder(const QString& folder)
{
    std::lock_guard lock(g_mutex);
    g_folder = folder;
    g_artifacts.clear();
}

QString ArtifactsFolder()
{
    std::lock_guard lock(g_mutex);
    return g_folder;
}

QString NextArtifactPath(const QString& stem, const QString& suffix)
{
    std::lock_guard lock(g_mutex);
    if (g_folder.isEmpty()) return {};
    const QDir dir(g_folder);
    for (int n = 1;; ++n) {
        const QString path = dir.filePath(QStringLiteral("%1-%2.%3").arg(stem).arg(n, 3, 10, QChar('0')).arg(suffix));
        if (!QFileInfo::exists(path) && !g_artifacts.contains(path)) return path;
    }
}

void AddArtifact(const QString& path)
{
    std::lock_guard lock(g_mutex);
    g_artifacts << path;
}

QStringList Artifacts()
{
    std::lock_guard lock(g_mutex);
    return g_artifacts;
}

}  // namespace dv
