#pragma once
// TCP: connects to a host and port, sends a text and stores the reply up to a sentinel in a string
// variable. Runs on the host's worker thread; stopping the run ends the read with what has arrived.
#include "commands/system/tcpclient.h"
#include "framework/runedit.h"

namespace dv {

class TDVCmdTCP : public TDVThreadRunEdit {
public:
    // The parameter texts: Host, Port, Send, Sentinel, and the name of the Result variable.
    struct TFields {
        QString host;
        QString port;
        QString send;
        QString sentinel;
        QString result;
        bool operator==(const TFields&) const = default;
    };

    explicit TDVCmdTCP(TDVParser* parser);

    TFields Fields() const;
    void SetFields(const TFields& fields);

    // A new call waits for a line: the sentinel starts as the signature's default "[10]".
    void SetDefaults() override;
    void RunThreaded(TParamList& params) override;

    // Tests lower the guard against endless replies; scripts always get tcpclient::kReplyLimit.
    void SetReplyLimit(qsizetype bytes) { replyLimit_ = bytes; }

private:
    qsizetype replyLimit_ = tcpclient::kReplyLimit;
};

// The port of a Port text: a whole number 1..65535; raises TDravikException naming the text.
int TcpPort(const QString& text);

}  // namespace dv
