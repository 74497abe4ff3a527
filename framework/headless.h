#pragma once
// Interactive commands in a host without a GUI: instead of showing a dialog they take the answer the
// host was given for their procedure (dvrun --answer MeldungsBox=OK), and fail clearly without one.
#include <QString>
#include <QStringList>

#include <optional>

namespace dv {

// True when the application object can show windows.
bool HasGui();
// Answers as "Procedure=Text"; several for one procedure are taken in order, the last one repeats.
void SetHeadlessAnswers(const QStringList& answers);
// The next answer for a procedure (compared without regard to case), or none.
std::optional<QString> TakeHeadlessAnswer(const QString& procedure);

}  // namespace dv
