// The real serial line: 9600 baud, 8 data bits, no parity, one stop bit, no flow control.
#pragma once

#include "Transport.h"

#include <QSerialPort>
#include <memory>

namespace kalvo::link {

class SerialTransport final : public Transport {
public:
    SerialTransport();
    ~SerialTransport() override;

    void open(const QString &name) override;
    void close() override;
    bool isOpen() const override;
    void write(const QByteArray &bytes) override;
    bool drain(std::chrono::milliseconds limit) override;
    QByteArray read(std::chrono::milliseconds wait) override;
    void discardInput() override;

private:
    void CheckLost();

    // Created on first use, so that it lives on the thread that runs the device work.
    std::unique_ptr<QSerialPort> m_port;
};

} // namespace kalvo::link
