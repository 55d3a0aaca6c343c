// Link benchmarks: exchange time against the wire time of its bytes, and CPU used while waiting.
#include "QuietPrompter.h"
#include "link/Errors.h"
#include "link/Link.h"
#include "link/SerialTransport.h"
#include "link/TextRules.h"
#include "platform/ProcessUsage.h"
#include "platform/PseudoTerminal.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

#include <chrono>
#include <cstdio>

using namespace kalvo::link;

namespace {

double WireSeconds(qsizetype bytes, int baud)
{
    return bytes * 10.0 / baud;
}

// (a) One exchange against kalvo-sim paced at 9600 baud, over a real pty and QSerialPort.
void ExchangeAgainstWire(const QString &simPath)
{
    QProcess sim;
    sim.start(simPath, {QStringLiteral("--baud"), QStringLiteral("9600")});
    if (!sim.waitForStarted() || !sim.waitForReadyRead(10000)) {
        std::printf("exchange: kalvo-sim did not start\n");
        return;
    }
    const QString pty = QString::fromLocal8Bit(sim.readLine()).trimmed();
    SerialTransport transport;
    kalvo::bench::QuietPrompter prompter;
    Link link(transport, prompter);
    link.OpenPort(pty);
    for (const QByteArray command : {QByteArray("var?D3"), QByteArray("ver?"), QByteArray("idn?")}) {
        constexpr int kRounds = 20;
        double worst = 0, sum = 0;
        qsizetype bytes = 0;
        for (int i = 0; i < kRounds; ++i) {
            const auto start = std::chrono::steady_clock::now();
            const QByteArray answer = link.Exchange(command);
            const double elapsed =
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
            bytes = command.size() + 1 + answer.size();
            const double ratio = elapsed / WireSeconds(bytes, 9600);
            sum += ratio;
            worst = std::max(worst, ratio);
        }
        std::printf("exchange %-8s %3lld bytes on the wire (%.1f ms at 9600 baud): elapsed/wire mean %.3f, "
                    "worst %.3f\n",
                    command.constData(), static_cast<long long>(bytes), WireSeconds(bytes, 9600) * 1000,
                    sum / kRounds, worst);
    }
    link.ClosePort();
    sim.terminate();
    sim.waitForFinished();
}

// (b) CPU time while waiting for an answer that never comes.
void WaitForSilence(double seconds)
{
    QString error;
    const auto pty = kalvo::platform::PseudoTerminal::Open(&error);
    if (!pty) {
        std::printf("wait: no pseudo-terminal (%s)\n", qPrintable(error));
        return;
    }
    const QString path = pty->slavePath();

    SerialTransport transport;
    kalvo::bench::QuietPrompter prompter;
    Link link(transport, prompter);
    link.setTimeout(FromSeconds(seconds));
    link.OpenPort(path);
    const double cpuBefore = kalvo::platform::CpuSeconds();
    const auto start = std::chrono::steady_clock::now();
    try {
        link.Exchange("dis?");
    } catch (const Timeout &) {
    }
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double cpu = kalvo::platform::CpuSeconds() - cpuBefore;
    std::printf(
        "wait for an answer that never comes: %.2f s elapsed, %.4f CPU seconds (%.3f %% of one core)\n", wall,
        cpu, 100 * cpu / wall);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QString simPath =
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("kalvo-sim"));
    ExchangeAgainstWire(simPath);
    WaitForSilence(5.0);
    return 0;
}
