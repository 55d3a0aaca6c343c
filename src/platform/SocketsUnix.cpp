// Sockets on Unix.
#include "Sockets.h"

#include <sys/socket.h>

namespace kalvo::platform {

void CutSocket(qintptr socket)
{
    ::shutdown(static_cast<int>(socket), SHUT_RDWR);
}

} // namespace kalvo::platform
