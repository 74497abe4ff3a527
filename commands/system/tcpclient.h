#pragma once
// The TCP client of the TCP command: connect, send, read until a sentinel. Every wait is on the
// socket and the run's stop event together, so a stopped run never waits on the network.
#include "commands/system/socketfd.h"

#include <QByteArray>
#include <QString>

namespace dv {

class TRunControl;

namespace tcpclient {

// A reply that grows past this without its sentinel fails instead of eating memory.
inline constexpr qsizetype kReplyLimit = qsizetype{64} * 1024 * 1024;

// Connects over IPv4 without a time-out of its own. Returns an invalid descriptor when the stop
// event came first; raises TDravikException "TCP: ..." naming host and port on failure.
TSocketFd Connect(const QString& host, int port, const TRunControl* stop);

// Sends all bytes; false when the stop event came first. Raises on a failed write.
bool SendAll(int fd, const QByteArray& bytes, const TRunControl* stop);

struct TReply {
    QByteArray bytes;      // everything read, sentinel and what followed it included
    bool stopped = false;  // the stop event ended the read
};

// Reads until the bytes hold sentinel, or, with an empty sentinel, takes only what has already
// arrived. A connection closed while a sentinel is awaited, and a reply longer than limit without
// it, raise TDravikException.
TReply ReadReply(int fd, const QByteArray& sentinel, const TRunControl* stop, qsizetype limit = kReplyLimit);

// The reply cut before the first sentinel; with a sentinel of exactly a line feed, a carriage
// return right before it goes too. Without the sentinel, or with an empty one, the bytes unchanged.
QByteArray CutAtSentinel(const QByteArray& reply, const QByteArray& sentinel);

// The sentinel a parameter text means: an array of character codes written "[13, 10]" or
// "{13}{10}" (codes 0..255, Windows-1252) gives those characters ("[]" none); any other text is
// the sentinel itself.
QString SentinelText(const QString& parameterText);

}  // namespace tcpclient
}  // namespace dv
