#include "framework/runedit.h"

#include "framework/catalogue.h"
#include "framework/editorform.h"
#include "framework/exceptions.h"
#include "framework/translate.h"

#include <stdexcept>

namespace dv {

TDVRunEdit::TDVRunEdit(QString formClass) : formClass_(std::move(formClass)) {}

TDVRunEdit::~TDVRunEdit() = default;

bool TDVRunEdit::EditCommand(int, int, QString&, QString&) { return false; }

void TDVRunEdit::RunCommand(const QString&, TParamList&) {}

QString TDVRunEdit::RecodeScript(const QString& script, TDVScriptImporter*) { return script; }

void TDVRunEdit::SetDefaults() {}

void TDVRunEdit::PostEdit() {}

QString TDVRunEdit::GetDescription(const QString& name) { return name; }

TDVEditorForm& TDVRunEdit::Form()
{
    if (!form_) form_ = CreateEditorForm(formClass_, *this);
    return *form_;
}

TDVThreadRunEdit::TDVThreadRunEdit(QString signature, QString formClass, TDVParser* parser)
    : TDVRunEdit(std::move(formClass)),
      signatureText_(std::move(signature)),
      signature_(ParseSignature(signatureText_)),
      parser_(parser)
{
    for (const TDVParamDecl& p : signature_.params) boundFields_.emplace_back(p.name, QString());
}

namespace {
const TCatalogueRow& RowOf(const char* commandClass)
{
    const TCatalogueRow* row = FindCommandClass(QLatin1String(commandClass));
    if (!row) throw std::logic_error(std::string("not in the catalogue: ") + commandClass);
    return *row;
}
}  // namespace

TDVThreadRunEdit::TDVThreadRunEdit(const char* commandClass, TDVParser* parser)
    : TDVThreadRunEdit(QString::fromLatin1(RowOf(commandClass).signature), QString::fromLatin1(RowOf(commandClass).dialogClass),
                       parser)
{
}

TDVThreadRunEdit::~TDVThreadRunEdit() = default;

void TDVThreadRunEdit::RunCommand(const QString&, TParamList& params) { RunThreaded(params); }

QString TDVThreadRunEdit::GetID() { return signature_.name; }

bool TDVThreadRunEdit::CheckParams(const TParamList& params)
{
    for (const TDVParamDecl& p : signature_.params) {
        if (!p.hasDefault && !params.Contains(p.name)) return false;
    }
    return true;
}

void TDVThreadRunEdit::RunThreaded(TParamList&)
{
    throw TDravikException(Format(_("Der Befehl %s hat keinen Ablauf"), {signature_.name}));
}

bool TDVThreadRunEdit::Edit(TParamList& params)
{
    TDVEditorForm& form = Form();
    SetParams(params);
    if (!form.ShowModal()) return false;
    params.Clear();
    ReadParams(params);
    return true;
}

void TDVThreadRunEdit::SetParams(const TParamList& params)
{
    for (auto& [name, text] : boundFields_) text = params.GetString(name);
}

void TDVThreadRunEdit::ReadParams(TParamList& params)
{
    for (const auto& [name, text] : boundFields_) params.AddString(name, text);
}

bool TDVThreadRunEdit::DecodeScript(const QString&, TParamList&, TDVScriptImporter*) { return false; }

void TDVThreadRunEdit::ParseCommandLine(const QString&, QString&, TParamList&) {}

void TDVThreadRunEdit::V3ParamHandling(QString&) {}

void TDVThreadRunEdit::SetClientData(void*&) {}

QString TDVThreadRunEdit::GetDescription(const QString& name, const TParamList& params)
{
    QStringList texts;
    for (const QString& n : params.Names()) texts << params.GetString(n);
    return name + '(' + texts.join(QStringLiteral(", ")) + ')';
}

void TDVThreadRunEdit::AddDefaults(TParamList& params) const
{
    for (const TDVParamDecl& p : signature_.params) {
        if (p.hasDefault && !params.Contains(p.name)) params.AddString(p.name, p.defaultText);
    }
}

void TDVThreadRunEdit::EvaluateParams(TParamList&) const {}

QString TDVThreadRunEdit::BoundField(const QString& name) const
{
    for (const auto& [n, text] : boundFields_) {
        if (n == name) return text;
    }
    return {};
}

void TDVThreadRunEdit::SetBoundField(const QString& name, const QString& text)
{
    for (auto& [n, t] : boundFields_) {
        if (n == name) t = text;
    }
}

void TDVFuncRunEdit::RunCommand(const QString&, TParamList& params) { Run(params); }

void TDVFuncRunEdit::RunThreaded(TParamList& params) { Run(params); }

void TDVFuncRunEdit::Run(TParamList&)
{
    throw TDravikException(Format(_("Der Befehl %s hat keinen Ablauf"), {Signature().name}));
}

QString TDVFuncRunEdit::OnEditorTest()
{
    TParamList params;
    ReadParams(params);
    Run(params);
    return {};
}

}  // namespace dv
