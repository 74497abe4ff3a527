#pragma once
// Local message endpoints that stand in for named pipes: one Unix-domain SOCK_SEQPACKET socket per
// name in one directory, so one write is one message, as in a pipe's message mode. A client does one
// request/reply transaction per connection; servers listen with ListenEndpoint.
#include "commands/system/socketfd.h"

#include <QByteArray>
#include <QString>

namespace dv {

class TRunControl;

namespace localpipe {

// The reply buffer: a longer reply fails, as a message too long for the caller's buffer does.
inline constexpr int kReplyBufferSize = 4097;

struct TConnectTimings {
    int retryWaitMs = 50;       // wait between two tries while the endpoint is busy or missing
    int connectLimitMs = 5000;  // give up once this much time has passed since the first try
};

// The directory of all endpoints: $XDG_RUNTIME_DIR/dvpipe, or /tmp/dvpipe-<uid> without one.
QString EndpointDirectory();

// The endpoint name of a pipe name: "demo" and "\\.\pipe\demo" both name the local endpoint
// "demo". Any other name beginning with a backslash (another computer, another namespace), an empty
// name, or one that cannot be a file name raises TDVRuntimeException "CallNamedPipe: ...".
QString EndpointName(const QString& pipeName);
// The socket path of an endpoint name; raises when the path would be too long for a socket.
QString EndpointPath(const QString& endpointName);

// Connects to the endpoint, retrying while it is busy or not there yet, sends message as one packet
// and returns the one reply packet. The stop event ends a pending transaction with an empty reply;
// during the connect tries it ends them with the last failure. Failures raise TDVRuntimeException
// "CallNamedPipe: " + the reason.
QByteArray Transact(const QString& endpointPath, const QByteArray& message, const TRunControl* stop,
                    const TConnectTimings& timings = {});

// Server side: creates the endpoint directory (mode 0700) when needed, replaces an endpoint file left
// by a server that has ended, and listens on it. A name already served by a running server raises
// TDravikException, as does any system failure.
TSocketFd ListenEndpoint(const QString& endpointName, int backlog = 16);

}  // namespace localpipe
}  // namespace dv
