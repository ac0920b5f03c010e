#pragma once

#include <QtGlobal>

namespace lumaro {

/// Whether this very process made the TCP connection that comes from `peerPort` to its own
/// `localPort`, both on 127.0.0.1. As the kernel tells it in proc(5); any thread.
bool isOwnLoopbackPeer(quint16 localPort, quint16 peerPort);

} // namespace lumaro
