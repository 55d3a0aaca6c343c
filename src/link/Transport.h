// Bytes in and out of one serial line; the Link is its only user.
#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>

namespace kalvo::link {

class Transport {
public:
    virtual ~Transport() = default;
    // Throws PortError(CannotOpen) when the port cannot be opened.
    virtual void open(const QString &name) = 0;
    virtual void close() = 0;
    virtual bool isOpen() const = 0;
    virtual void write(const QByteArray &bytes) = 0;
    // Waits until everything written has left the machine; false when the line has not taken it
    // within `limit` (a stalled line). Throws PortError(Lost) when the device has gone.
    virtual bool drain(std::chrono::milliseconds limit) = 0;
    // Whatever has arrived; waits up to `wait` for the first byte, returns empty when none came.
    // Throws PortError(Lost) when the device has gone.
    virtual QByteArray read(std::chrono::milliseconds wait) = 0;
    // Forget everything received and not yet read.
    virtual void discardInput() = 0;
};

} // namespace kalvo::link
