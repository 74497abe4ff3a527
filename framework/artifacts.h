#pragma once
// Files a run leaves for a person to look at (pictures of what a command compared): the host
// names the folder (dvrun --artifacts), commands write there and name what they wrote, the host
// attaches those files to the run's report.
#include <QString>
#include <QStringList>

namespace dv {

// Empty: no artifacts are written.
void SetArtifactsFolder(const QString& folder);
QString ArtifactsFolder();
// A free file name "<stem>-NNN.<suffix>" in the folder, numbered from 001; empty when no folder
// is set.
QString NextArtifactPath(const QString& stem, const QString& suffix);
void AddArtifact(const QString& path);
QStringList Artifacts();

}  // namespace dv
