// The serial line on Windows: COM devices and the driver's output queue.
#include "SerialLine.h"

#include <windows.h>

namespace kalvo::platform {

QString StandardPortDevice(int number)
{
    return QStringLiteral("COM%1").arg(number);
}

QString CanonicalPortName(const QString &name)
{
    // COM10 and above can only be opened as \\.\COM10; Qt adds the prefix itself.
    QString canonical = name.trimmed().toUpper();
    if (canonical.startsWith(QLatin1String("\\\\.\\")))
        canonical.remove(0, 4);
    return canonical;
}

std::optional<qint64> BytesLeftToSend(const QSerialPort &port)
{
    // FlushFileBuffers would wait without end on a line that stops taking bytes; the queue can be
    // watched against a deadline instead.
    DWORD errors = 0;
    COMSTAT status{};
    if (!::ClearCommError(port.handle(), &errors, &status))
        return std::nullopt;
    return static_cast<qint64>(status.cbOutQue);
}

} // namespace kalvo::platform
