// The serial line on Unix: /dev/ttyS devices and the driver's output queue.
#include "SerialLine.h"

#include <sys/ioctl.h>
#include <termios.h>

namespace kalvo::platform {

QString StandardPortDevice(int number)
{
    return QStringLiteral("/dev/ttyS%1").arg(number - 1);
}

QString CanonicalPortName(const QString &name)
{
    return name;
}

std::optional<qint64> BytesLeftToSend(const QSerialPort &port)
{
    // tcdrain would wait without end on a line that stops taking bytes; the queue can be watched
    // against a deadline instead.
    int queued = 0;
    if (::ioctl(port.handle(), TIOCOUTQ, &queued) != 0)
        return std::nullopt;
    return queued;
}

} // namespace kalvo::platform
