// Sockets on Windows (Winsock).
#include "Sockets.h"

#include <winsock2.h>

namespace kalvo::platform {

void CutSocket(qintptr socket)
{
    ::shutdown(static_cast<SOCKET>(socket), SD_BOTH);
}

} // namespace kalvo::platform
