// The real serial line: 9600 baud, 8 data bits, no parity, one stop bit, no flow control.
#include "SerialTransport.h"

#include "Errors.h"
#include "PortNames.h"
#include "PortProblem.h"
#include "platform/SerialLine.h"

#include <algorithm>
#include <thread>

namespace kalvo::link {

SerialTransport::SerialTransport() = default;
SerialTransport::~SerialTransport() = default;

void SerialTransport::open(const QString &name)
{
    close();
    m_port = std::make_unique<QSerialPort>();
    m_port->setPortName(SystemPortName(name));
    if (!m_port->open(QIODevice::ReadWrite)) {
        const auto error = m_port->error();
        const PortAccess access = DescribePortAccess(name, SystemPortName(name), m_port->errorString(),
                                                     error == QSerialPort::PermissionError,
                                                     error == QSerialPort::DeviceNotFoundError);
        m_port.reset();
        throw PortError(PortError::Kind::CannotOpen, PortOpenMessage(access));
    }
    // DC1 ends every answer and must never be taken as XON.
    m_port->setBaudRate(QSerialPort::Baud9600);
    m_port->setDataBits(QSerialPort::Data8);
    m_port->setParity(QSerialPort::NoParity);
    m_port->setStopBits(QSerialPort::OneStop);
    m_port->setFlowControl(QSerialPort::NoFlowControl);
    m_port->clear();
}

void SerialTransport::close()
{
    if (m_port && m_port->isOpen())
        m_port->close();
    m_port.reset();
}

bool SerialTransport::isOpen() const
{
    return m_port && m_port->isOpen();
}

void SerialTransport::CheckLost()
{
    const auto error = m_port->error();
    if (error == QSerialPort::ResourceError || error == QSerialPort::ReadError ||
        error == QSerialPort::WriteError) {
        const QString text = QStringLiteral("Verbindung über %1 unterbrochen: %2")
                                 .arg(m_port->portName(), m_port->errorString());
        close();
        throw PortError(PortError::Kind::Lost, text);
    }
}

void SerialTransport::write(const QByteArray &bytes)
{
    if (!isOpen())
        return;
    m_port->write(bytes);
    CheckLost();
}

bool SerialTransport::drain(std::chrono::milliseconds limit)
{
    using namespace std::chrono;
    if (!isOpen())
        return true;
    const auto deadline = steady_clock::now() + limit;
    const auto left = [deadline] { return duration_cast<milliseconds>(deadline - steady_clock::now()); };
    // Qt's buffer first; "written" there only means handed to the system.
    while (m_port->bytesToWrite() > 0) {
        const milliseconds remaining = left();
        if (remaining <= milliseconds::zero())
            return false;
        if (!m_port->waitForBytesWritten(static_cast<int>(std::min(remaining, milliseconds(1000)).count())))
            CheckLost();
    }
    // Then the driver's queue, until the last byte has left the line.
    for (;;) {
        const std::optional<qint64> queued = platform::BytesLeftToSend(*m_port);
        if (!queued || *queued <= 0)
            return true;
        if (left() <= milliseconds::zero())
            return false;
        // At 9600 baud one byte takes a little over a millisecond; a look at least every 20 ms.
        std::this_thread::sleep_for(microseconds(1042) * std::min<qint64>(*queued, 19));
    }
}

QByteArray SerialTransport::read(std::chrono::milliseconds wait)
{
    if (!isOpen())
        return {};
    if (m_port->bytesAvailable() == 0) {
        m_port->waitForReadyRead(static_cast<int>(wait.count()));
        CheckLost();
    }
    return m_port->readAll();
}

void SerialTransport::discardInput()
{
    if (!isOpen())
        return;
    m_port->clear(QSerialPort::Input);
    m_port->readAll();
}

} // namespace kalvo::link
