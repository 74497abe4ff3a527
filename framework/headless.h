#pragma once
// Interactive commands in a host without a GUI: instead of showing a dialog they take the answer the
// host was given for their procedure (dvrun --answer MeldungsBox=OK), and fail clearly without one.
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace dv {

// True when the application object can show windows.
bool HasGui();
// True when its windows reach a screen a person sees: a GUI application on a platform other than
// offscreen or minimal, which draw pictures only.
bool ShowsWindows();
// Answers as "Procedure=Text"; several for one procedure are taken in order, the last one repeats.
void SetHeadlessAnswers(const QStringList& answers);
// The next answer for a procedure (compared without regard to case), or none. Either way the
// procedure counts as asked.
std::optional<QString> TakeHeadlessAnswer(const QString& procedure);
// The procedures, as given, whose answers no command asked for since SetHeadlessAnswers.
QStringList UnaskedHeadlessAnswers();

// A line for the operator in a host without a GUI (the address of a form): the host's output,
// stdout until the host sets a sink (nullptr: stdout again).
void SetOperatorLineSink(std::function<void(const QString& line)> sink);
void WriteOperatorLine(const QString& line);

}  // namespace dv
