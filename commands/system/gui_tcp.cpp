#include "commands/system/gui_tcp.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/services.h"
#include "framework/translate.h"

#include <cmath>

namespace dv {

namespace {
const QString kHost = QStringLiteral("Host");
const QString kPort = QStringLiteral("Port");
const QString kSend = QStringLiteral("Send");
const QString kSentinel = QStringLiteral("Sentinel");
const QString kResult = QStringLiteral("Result");
}  // namespace

TDVCmdTCP::TDVCmdTCP(TDVParser* parser)
    : TDVThreadRunEdit("TDVCmdTCP", parser)
{
}

TDVCmdTCP::TFields TDVCmdTCP::Fields() const
{
    return {BoundField(kHost), BoundField(kPort), BoundField(kSend), BoundField(kSentinel), BoundField(kResult)};
}

void TDVCmdTCP::SetFields(const TFields& fields)
{
    SetBoundField(kHost, fields.host);
    SetBoundField(kPort, fields.port);
    SetBoundField(kSend, fields.send);
    SetBoundField(kSentinel, fields.sentinel);
    SetBoundField(kResult, fields.result);
}

void TDVCmdTCP::SetDefaults()
{
    const TDVParamDecl* sentinel = Signature().Find(kSentinel);
    TFields fields;
    fields.sentinel = sentinel ? sentinel->defaultText : QString();
    SetFields(fields);
}

void TDVCmdTCP::RunThreaded(TParamList& params)
{
    SetParams(params);
    const TFields fields = Fields();
    const int port = TcpPort(fields.port);
    const TRunControl* stop = &TestEnvironment().GetRunControl();
    const QByteArray sentinel = tcpclient::SentinelText(fields.sentinel).toUtf8();

    const TSocketFd fd = tcpclient::Connect(fields.host, port, stop);
    if (!fd.Valid()) return;  // stopped before the connection stood: nothing was asked, nothing to store
    tcpclient::TReply reply;
    if (tcpclient::SendAll(fd.Get(), fields.send.toUtf8(), stop)) {
        reply = tcpclient::ReadReply(fd.Get(), sentinel, stop, replyLimit_);
    } else {
        reply.stopped = true;
    }
    // A stopped read keeps the reply as it stands; a finished one ends before the sentinel.
    const QByteArray text = reply.stopped ? reply.bytes : tcpclient::CutAtSentinel(reply.bytes, sentinel);
    VarAccess().SetVariable(fields.result, std::make_unique<TStringValue>(QString::fromUtf8(text)));
}

int TcpPort(const QString& text)
{
    bool ok = false;
    const double value = KzP(text.trimmed()).toDouble(&ok);
    if (!ok || value != std::floor(value) || value < 1 || value > 65535) {
        throw TDravikException(Format(_("TCP: Ungültiger Port \"%s\" (erlaubt sind ganze Zahlen von 1 bis 65535)."), {text}));
    }
    return static_cast<int>(value);
}

}  // namespace dv
