// Update benchmarks: a package stream and a firmware transfer against the virtual tester paced at
// 9600 baud behind a USB adapter whose drain returns only at its next poll, as elapsed time over
// wire time, and the CPU time used while a transfer waits.
#include "QuietPrompter.h"
#include "link/Errors.h"
#include "link/Link.h"
#include "link/PortNames.h"
#include "platform/ProcessUsage.h"
#include "sim/SimTransport.h"
#include "sim/VirtualTester.h"
#include "update/HexFile.h"
#include "update/Transfers.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>

using namespace kalvo;
using link::Duration;

namespace {

constexpr int kBaud = 9600;

double Seconds(Duration d)
{
    return link::ToSeconds(d);
}

long long Milliseconds(Duration d)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(d).count();
}

// The virtual tester's transport, noting when the phases of a transfer end: the last drain (the
// stream has left) and the last read that brought a "!" (the last firmware line is acknowledged).
class PhaseClock final : public link::Transport {
public:
    explicit PhaseClock(link::Transport &inner) : m_inner(inner) {}
    void open(const QString &name) override { m_inner.open(name); }
    void close() override { m_inner.close(); }
    bool isOpen() const override { return m_inner.isOpen(); }
    void write(const QByteArray &bytes) override { m_inner.write(bytes); }
    bool drain(std::chrono::milliseconds limit) override
    {
        const bool drained = m_inner.drain(limit);
        lastDrain = link::SteadyClock::instance().now();
        return drained;
    }
    QByteArray read(std::chrono::milliseconds wait) override
    {
        QByteArray bytes = m_inner.read(wait);
        if (bytes.contains('!'))
            lastAcknowledgement = link::SteadyClock::instance().now();
        return bytes;
    }
    void discardInput() override { m_inner.discardInput(); }

    Duration lastDrain{};
    Duration lastAcknowledgement{};

private:
    link::Transport &m_inner;
};

// One virtual tester on the wall clock, paced, behind an adapter that polls every `poll`.
struct Line {
    explicit Line(Duration poll)
    {
        tester.setBaud(kBaud);
        transport.setAdapterPoll(poll);
        link.OpenPort(link::kSimulatorPortName);
    }
    Duration ByteTime() const { return tester.byteTime(); }

    sim::VirtualTester tester{link::SteadyClock::instance()};
    sim::SimTransport transport{tester, link::SteadyClock::instance()};
    PhaseClock phases{transport};
    bench::QuietPrompter prompter;
    link::Link link{phases, prompter};
};

QByteArray Bytes(qsizetype size)
{
    QByteArray bytes(size, '\0');
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = static_cast<char>((i * 131 + 7) & 0xFF);
    return bytes;
}

// A package as the loaders take one: 0x89, a size, kind byte 0, the body, the trailer.
QByteArray Package(qsizetype size)
{
    QByteArray bytes = QByteArray("\x89\xFF\xFF", 3) + QByteArray(6, '\0');
    bytes += Bytes(size - bytes.size() - 13) + QByteArray(2, '\0') + "AS 1.40r4\r\n";
    return bytes;
}

// Intel HEX data records of 16 bytes, about `size` bytes of text, and the end record.
QByteArray HexText(qsizetype size)
{
    QByteArray text;
    for (int address = 0; text.size() < size; address += 16) {
        QByteArray record;
        record += char(16);
        record += char((address >> 8) & 0xFF);
        record += char(address & 0xFF);
        record += char(0);
        record += Bytes(16 + address % 7).right(16);
        int sum = 0;
        for (char c : record)
            sum += static_cast<unsigned char>(c);
        record += char((0x100 - (sum & 0xFF)) & 0xFF);
        text += ':' + record.toHex().toUpper() + "\r\n";
    }
    return text + ":00000001FF\r\n";
}

QString WriteTemporary(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        std::printf("cannot write %s\n", qPrintable(path));
    return path;
}

void PackageStream(const QTemporaryDir &dir, qsizetype size, Duration poll)
{
    const QByteArray package = Package(size);
    const QString path = WriteTemporary(dir, QStringLiteral("bilder.p"), package);
    Line line(poll);
    line.link.Exchange("kal!ein");
    line.link.Exchange("kal!upd3");
    const double cpuBefore = platform::CpuSeconds();
    const Duration start = link::SteadyClock::instance().now();
    update::SendPackageFile(line.link, line.prompter, path);
    const double whole = Seconds(link::SteadyClock::instance().now() - start);
    const double cpu = platform::CpuSeconds() - cpuBefore;
    const double stream = Seconds(line.phases.lastDrain - start);
    const double wire = Seconds(package.size() * line.ByteTime());
    std::printf(
        "package stream %lld bytes, drain at a %2lld ms poll: stream %.2f s, wire %.2f s, elapsed/wire "
        "%.3f (with the tester's erase and programming %.2f s; %.3f CPU s)\n",
        static_cast<long long>(package.size()), Milliseconds(poll), stream, wire, stream / wire, whole, cpu);
}

void FirmwareLines(const QTemporaryDir &dir, qsizetype size, Duration poll)
{
    const QString path = WriteTemporary(dir, QStringLiteral("med.hex"), HexText(size));
    const update::HexFile hex = update::HexFile::Read(path);
    hex.Check();
    qsizetype lineBytes = 0;
    for (const QByteArray &text : hex.lines())
        lineBytes += text.size() + 1;
    Line line(poll);
    line.link.Exchange("kal!ein");
    line.link.Exchange("kal!upd0");
    const Duration start = link::SteadyClock::instance().now();
    update::SendHexFile(line.link, line.prompter, hex);
    const double lines = Seconds(line.phases.lastAcknowledgement - start);
    // The lines out and one "!" back for each.
    const double wire = Seconds((lineBytes + hex.lines().size()) * line.ByteTime());
    std::printf("firmware %lld lines (%lld bytes), drain at a %2lld ms poll: lines %.2f s, lines and "
                "acknowledgements on the wire %.2f s, elapsed/wire %.3f\n",
                static_cast<long long>(hex.lines().size()), static_cast<long long>(lineBytes),
                Milliseconds(poll), lines, wire, lines / wire);
}

// A firmware loader that never acknowledges: the transfer waits its whole time-out.
void CpuWhileWaiting(const QTemporaryDir &dir, double seconds)
{
    const QString path = WriteTemporary(dir, QStringLiteral("med.hex"), HexText(2000));
    Line line(std::chrono::milliseconds(16));
    line.tester.faults().add(QStringLiteral("noack"));
    line.link.setTimeout(link::FromSeconds(seconds));
    line.link.Exchange("kal!ein");
    line.link.Exchange("kal!upd0");
    const double cpuBefore = platform::CpuSeconds();
    const Duration start = link::SteadyClock::instance().now();
    try {
        update::SendHexFile(line.link, line.prompter, update::HexFile::Read(path));
    } catch (const link::Timeout &) {
    }
    const double wall = Seconds(link::SteadyClock::instance().now() - start);
    const double cpu = platform::CpuSeconds() - cpuBefore;
    std::printf("firmware line never acknowledged: %.2f s elapsed, %.4f CPU seconds (%.3f %% of one core)\n",
                wall, cpu, 100 * cpu / wall);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    // The package size in KB; smaller for a quick look (the firmware text is half of it).
    const qsizetype kilobytes = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 60;
    QTemporaryDir dir;
    for (const int poll : {0, 1, 4, 16})
        PackageStream(dir, kilobytes * 1000, std::chrono::milliseconds(poll));
    for (const int poll : {0, 16})
        FirmwareLines(dir, kilobytes * 500, std::chrono::milliseconds(poll));
    CpuWhileWaiting(dir, 5.0);
    return 0;
}
