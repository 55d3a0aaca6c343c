// Sockets of libraries kalvo uses (the database client's), by their native descriptor.
#pragma once

#include <QtGlobal>

namespace kalvo::platform {

// Ends both directions of the socket: a read blocked on it returns at once, and so does every
// later one. The descriptor stays its owner's to close.
void CutSocket(qintptr socket);

} // namespace kalvo::platform
