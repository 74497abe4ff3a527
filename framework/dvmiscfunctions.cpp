#include "framework/dvmiscfunctions.h"

#include "framework/services.h"

namespace dv {

QString ToProcDef(const QString& name) { return QStringLiteral("procedure ") + name + ';'; }

TDVSimpleCommand::TDVSimpleCommand(const QString& signature) : TDVFuncRunEdit(signature, QString(), nullptr) {}

TDVShowLaborCommand::TDVShowLaborCommand() : TDVSimpleCommand(ToProcDef(QStringLiteral("ShowLabor"))) {}

void TDVShowLaborCommand::Run(TParamList&) { TestEnvironment().SetLaborVisible(true); }

TDVHideLaborCommand::TDVHideLaborCommand() : TDVSimpleCommand(ToProcDef(QStringLiteral("HideLabor"))) {}

void TDVHideLaborCommand::Run(TParamList&) { TestEnvironment().SetLaborVisible(false); }

}  // namespace dv
