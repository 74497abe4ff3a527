#pragma once
// CallNamedPipe: sends one message to a local pipe endpoint and stores the one reply in a string
// variable. Runs on the host's worker thread; stopping the run ends a pending transaction.
#include "commands/system/localpipe.h"
#include "framework/runedit.h"

namespace dv {

class TDVCmdCallNamedPipe : public TDVThreadRunEdit {
public:
    // The parameter texts: Name, Call, and the name of the Result variable.
    struct TFields {
        QString name;
        QString call;
        QString result;
        bool operator==(const TFields&) const = default;
    };

    explicit TDVCmdCallNamedPipe(TDVParser* parser);

    TFields Fields() const;
    void SetFields(const TFields& fields);

    void SetDefaults() override;
    void RunThreaded(TParamList& params) override;

    // One transaction with the given fields; the reply as text. The dialog's Test button uses it.
    QString Transact(const TFields& fields, const TRunControl* stop) const;

    // Tests shorten the connect wait; scripts always get the standard timings.
    void SetConnectTimings(const localpipe::TConnectTimings& timings) { timings_ = timings; }

private:
    localpipe::TConnectTimings timings_;
};

// The message bytes of a text: one byte per character in the Windows-1252 code page.
QByteArray AnsiBytes(const QString& text);
// The reply text of a reply buffer: read up to its first zero byte, from the Windows-1252 code page.
QString AnsiText(const QByteArray& bytes);

}  // namespace dv
