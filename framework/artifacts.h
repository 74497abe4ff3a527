#pragma once
// The artifacts folder of a run (dvrun --artifacts DIR): pictures that commands leave for the
// people who did not watch, and the list of them that the JUnit report attaches to the test case.
#include <QString>
#include <QStringList>

namespace dv {

// Empty: no pictures are written.
void SetArtifactsFolder(const QString& folder);
QString ArtifactsFolder();
// DIR/<stem>-NNN.<extension>, numbered from 001 per stem in the order of the calls; empty when no
// folder is set.
QString NextArtifactPath(const QString& stem, const QString& extension);
// A picture written into the folder, for the report.
void RecordAttachment(const QString& path);
QStringList Attachments();
void ClearAttachments();

}  // namespace dv
