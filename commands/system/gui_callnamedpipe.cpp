#include "commands/system/gui_callnamedpipe.h"

#include "framework/services.h"
#include "framework/typeconversion.h"

namespace dv {

namespace {
const QString kName = QStringLiteral("Name");
const QString kCall = QStringLiteral("Call");
const QString kResult = QStringLiteral("Result");
}  // namespace

TDVCmdCallNamedPipe::TDVCmdCallNamedPipe(TDVParser* parser)
    : TDVThreadRunEdit("TDVCmdCallNamedPipe", parser)
{
}

TDVCmdCallNamedPipe::TFields TDVCmdCallNamedPipe::Fields() const
{
    return {BoundField(kName), BoundField(kCall), BoundField(kResult)};
}

void TDVCmdCallNamedPipe::SetFields(const TFields& fields)
{
    SetBoundField(kName, fields.name);
    SetBoundField(kCall, fields.call);
    SetBoundField(kResult, fields.result);
}

void TDVCmdCallNamedPipe::SetDefaults() { SetFields({}); }

void TDVCmdCallNamedPipe::RunThreaded(TParamList& params)
{
    SetParams(params);
    const TFields fields = Fields();
    const QString reply = Transact(fields, &TestEnvironment().GetRunControl());
    VarAccess().SetVariable(fields.result, std::make_unique<TStringValue>(reply));
}

QString TDVCmdCallNamedPipe::Transact(const TFields& fields, const TRunControl* stop) const
{
    const QString path = localpipe::EndpointPath(localpipe::EndpointName(fields.name));
    return AnsiText(localpipe::Transact(path, AnsiBytes(fields.call), stop, timings_));
}

QByteArray AnsiBytes(const QString& text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (QChar c : text) bytes.append(static_cast<char>(Ord1252(c)));
    return bytes;
}

QString AnsiText(const QByteArray& bytes)
{
    QString text;
    for (char b : bytes) {
        if (b == '\0') break;
        text += Chr1252(static_cast<unsigned char>(b));
    }
    return text;
}

}  // namespace dv
