// Update benchmarks: a package stream and a firmware transfer against a line paced at 9600 baud
// whose drain returns only at a USB adapter's poll, as elapsed time over wire time, and the CPU
// time used while a transfer waits for the tester.
#include "QuietPrompter.h"
#include "link/Link.h"
#include "update/HexFile.h"
#include "update/Transfers.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <deque>
#include <sys/resource.h>
#include <thread>

using namespace kalvo;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kBaud = 9600;
const Clock::duration kByteTime = std::chrono::microseconds(10'000'000 / kBaud); // 10 bits a byte
const QByteArray kPackageReport = "\r\nErasing ...\r\n... Programming\r\n\x11";
const QByteArray kFirmwareReport = "\r\nErasing ...\r\n\x11";

double CpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

double Seconds(Clock::duration d)
{
    return std::chrono::duration<double>(d).count();
}

// A tester at the end of a line of kBaud, behind an adapter whose drain returns only at its next
// poll. It acknowledges each firmware line with "!" once its CR has arrived and reports after the
// end record; a package it reports on once `packageBytes` have arrived, `erasePause` later. Time
// passes on the wall clock: every wait sleeps.
class PacedTester final : public link::Transport {
public:
    PacedTester(Clock::duration poll, qsizetype packageBytes, Clock::duration erasePause = {})
        : m_poll(poll), m_packageBytes(packageBytes), m_erasePause(erasePause)
    {}

    void open(const QString &) override { m_open = true; }
    void close() override { m_open = false; }
    bool isOpen() const override { return m_open; }

    void write(const QByteArray &bytes) override
    {
        const Clock::time_point start = std::max(Clock::now(), m_lineFreeAt);
        for (qsizetype i = 0; i < bytes.size(); ++i)
            Receive(bytes[i], start + (i + 1) * kByteTime);
        m_lineFreeAt = start + bytes.size() * kByteTime;
    }

    bool drain(std::chrono::milliseconds limit) override
    {
        Clock::time_point done = m_lineFreeAt;
        if (m_poll > Clock::duration::zero()) {
            const auto polls = (done - m_origin + m_poll - Clock::duration(1)) / m_poll;
            done = m_origin + polls * m_poll;
        }
        if (done - Clock::now() > limit) {
            std::this_thread::sleep_for(limit);
            return false;
        }
        std::this_thread::sleep_until(done);
        return true;
    }

    QByteArray read(std::chrono::milliseconds wait) override
    {
        const Clock::time_point deadline = Clock::now() + wait;
        for (;;) {
            QByteArray due = TakeDue();
            if (!due.isEmpty())
                return due;
            if (m_arrivals.empty() || m_arrivals.front().first > deadline) {
                std::this_thread::sleep_until(deadline);
                return {};
            }
            std::this_thread::sleep_until(m_arrivals.front().first);
        }
    }

    void discardInput() override { TakeDue(); }

private:
    // One byte reaches the tester at `at`.
    void Receive(char byte, Clock::time_point at)
    {
        if (m_packageBytes > 0) {
            if (++m_received == m_packageBytes)
                Send(kPackageReport, at + m_erasePause);
            return;
        }
        m_line += byte;
        if (byte != '\r')
            return;
        Send("!", at);
        if (m_line.startsWith(":00000001"))
            Send(kFirmwareReport, at + kByteTime + m_erasePause);
        m_line.clear();
    }
    // The tester starts sending `bytes` at `start`; they arrive when the last one is through.
    void Send(const QByteArray &bytes, Clock::time_point start)
    {
        m_arrivals.emplace_back(start + bytes.size() * kByteTime, bytes);
    }
    QByteArray TakeDue()
    {
        QByteArray due;
        while (!m_arrivals.empty() && m_arrivals.front().first <= Clock::now()) {
            due += m_arrivals.front().second;
            m_arrivals.pop_front();
        }
        return due;
    }

    Clock::duration m_poll;
    qsizetype m_packageBytes;
    Clock::duration m_erasePause;
    Clock::time_point m_origin = Clock::now();
    Clock::time_point m_lineFreeAt = Clock::now();
    std::deque<std::pair<Clock::time_point, QByteArray>> m_arrivals;
    qsizetype m_received = 0;
    QByteArray m_line;
    bool m_open = true;
};

QByteArray PackageBytes(qsizetype size)
{
    QByteArray bytes(size, '\0');
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = static_cast<char>((i * 131 + 7) & 0xFF);
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
        record += PackageBytes(16 + address % 7).right(16);
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

void PackageStream(const QTemporaryDir &dir, qsizetype size, Clock::duration poll)
{
    const QString path = WriteTemporary(dir, QStringLiteral("bilder.p"), PackageBytes(size));
    PacedTester tester(poll, size);
    bench::QuietPrompter prompter;
    link::Link link(tester, prompter);
    const auto start = Clock::now();
    update::SendPackageFile(link, prompter, path);
    const double elapsed = Seconds(Clock::now() - start);
    const double wire = Seconds((size + kPackageReport.size()) * kByteTime);
    std::printf("package stream %lld bytes, drain at a %2lld ms poll: %.2f s elapsed, %.2f s on the wire, "
                "elapsed/wire %.3f\n",
                static_cast<long long>(size),
                static_cast<long long>(std::chrono::duration_cast<std::chrono::milliseconds>(poll).count()),
                elapsed, wire, elapsed / wire);
}

void FirmwareLines(const QTemporaryDir &dir, qsizetype size, Clock::duration poll)
{
    const QString path = WriteTemporary(dir, QStringLiteral("med.hex"), HexText(size));
    const update::HexFile hex = update::HexFile::Read(path);
    hex.Check();
    qsizetype lineBytes = 0;
    for (const QByteArray &line : hex.lines())
        lineBytes += line.size() + 1;
    PacedTester tester(poll, 0);
    bench::QuietPrompter prompter;
    link::Link link(tester, prompter);
    const auto start = Clock::now();
    update::SendHexFile(link, prompter, hex);
    const double elapsed = Seconds(Clock::now() - start);
    // The lines out, one "!" back for each, the end report.
    const double wire = Seconds((lineBytes + hex.lines().size() + kFirmwareReport.size()) * kByteTime);
    std::printf("firmware %lld lines (%lld bytes), drain at a %2lld ms poll: %.2f s elapsed, %.2f s of lines "
                "and acknowledgements, elapsed/wire %.3f\n",
                static_cast<long long>(hex.lines().size()), static_cast<long long>(lineBytes),
                static_cast<long long>(std::chrono::duration_cast<std::chrono::milliseconds>(poll).count()),
                elapsed, wire, elapsed / wire);
}

void CpuWhileErasing(const QTemporaryDir &dir, Clock::duration erasePause)
{
    constexpr qsizetype kSize = 2000;
    const QString path = WriteTemporary(dir, QStringLiteral("abge.p"), PackageBytes(kSize));
    PacedTester tester(std::chrono::milliseconds(16), kSize, erasePause);
    bench::QuietPrompter prompter;
    link::Link link(tester, prompter);
    const double cpuBefore = CpuSeconds();
    const auto start = Clock::now();
    update::SendPackageFile(link, prompter, path);
    const double wall = Seconds(Clock::now() - start);
    const double cpu = CpuSeconds() - cpuBefore;
    std::printf(
        "package of %lld bytes and a %.0f s erase: %.2f s elapsed, %.4f CPU seconds (%.3f %% of one core)\n",
        static_cast<long long>(kSize), Seconds(erasePause), wall, cpu, 100 * cpu / wall);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    // The package size in KB; smaller for a quick look (the lines of firmware are half of it).
    const qsizetype kilobytes = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 60;
    QTemporaryDir dir;
    for (const int poll : {0, 1, 4, 16})
        PackageStream(dir, kilobytes * 1000, std::chrono::milliseconds(poll));
    for (const int poll : {0, 16})
        FirmwareLines(dir, kilobytes * 500, std::chrono::milliseconds(poll));
    CpuWhileErasing(dir, std::chrono::seconds(5));
    return 0;
}
