#pragma once

#include <QtGlobal>

namespace lumaro {

/// A port of the loopback interface that nobody listens on, until somebody does; 0 for none.
quint16 freePort();

} // namespace lumaro
