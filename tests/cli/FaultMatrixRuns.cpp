// The fault matrix's runs: one command against a fresh kalvo-sim, and where in its sequence faults go.
#include "cli/FaultMatrix.h"
#include "support/TestFiles.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <algorithm>

namespace kalvo::testing::matrix {

namespace {

// Far beyond any run of the matrix (the longest takes a few seconds): past it, the run hangs.
constexpr int kGuardSeconds = 30;

bool IsWakeUpLine(const QString &logged)
{
    return logged == QLatin1String("\\r") || logged == QLatin1String("\\x04\\r") ||
           logged == QLatin1String("\\x07\\r");
}

} // namespace

int FirstLoaderBytes(const Outcome &outcome, int from)
{
    for (int i = std::max(from, 0); i < outcome.sent.size(); ++i) {
        // The lone EOT behind "rst!0" restarts the tester; it is no loader's.
        if (!outcome.exchanges.value(i, true) && outcome.sent[i] != QLatin1String("\\x04"))
            return i;
    }
    return -1;
}

Outcome RunMatrixCommand(const MatrixCommand &command, const QStringList &simExtra,
                         const QString &programFolder)
{
    Outcome outcome;
    SimProcess sim(QStringList{QStringLiteral("--baud"), QStringLiteral("0")} + command.simArguments +
                   simExtra);
    if (!sim.started()) {
        outcome.failedToStart = QStringLiteral("kalvo-sim did not start: %1")
                                    .arg(QString::fromLocal8Bit(sim.process().readAllStandardError()));
        return outcome;
    }
    outcome.port = sim.pty();
    QTemporaryDir work;
    const auto pathOf = [&](const QString &name) {
        return name.startsWith(QLatin1String("bin/")) ? QDir(programFolder).filePath(name.mid(4))
                                                      : work.filePath(name);
    };
    for (const KeptFile &file : command.files)
        WriteFile(pathOf(file.name), file.before);
    QElapsedTimer timer;
    timer.start();
    outcome.run =
        RunCli(sim, QStringList{QStringLiteral("--timeout"), QStringLiteral("1")} + command.arguments,
               work.path(), kGuardSeconds);
    outcome.seconds = static_cast<double>(timer.elapsed()) / 1000.0;
    // The client's last bytes (the EOT after a restart, say) may still be in the terminal.
    sim.Stop();
    for (const ReceivedLine &line : sim.ReceivedLines()) {
        outcome.sent << line.bytes;
        outcome.exchanges << line.exchange;
    }
    for (const KeptFile &file : command.files)
        outcome.files.insert(file.name, ReadFile(pathOf(file.name)));
    return outcome;
}

QList<Position> FaultPositions(const Outcome &clean)
{
    const QStringList &cleanLines = clean.sent;
    QList<int> commands;   // log indexes of the command lines
    QList<int> exchangeAt; // per log index: its exchange number, 0 for none
    int exchange = 0;
    for (int i = 0; i < cleanLines.size(); ++i) {
        const bool answered = clean.exchanges.value(i, true);
        exchangeAt << (answered ? ++exchange : 0);
        if (answered && !IsWakeUpLine(cleanLines[i]))
            commands << i;
    }
    if (commands.isEmpty())
        return {};
    QList<std::pair<QString, int>> picks{{QStringLiteral("first"), commands.first()},
                                         {QStringLiteral("middle"), commands[commands.size() / 2]},
                                         {QStringLiteral("last"), commands.last()}};
    const auto store =
        std::find_if(commands.begin(), commands.end(), [&](int i) { return IsStoreLine(cleanLines[i]); });
    if (store != commands.end())
        picks.append({QStringLiteral("store"), *store});
    // The line that opens the first loader: the last command before the bytes a loader took.
    const int loaderBytes = FirstLoaderBytes(clean);
    if (loaderBytes > 0 && exchangeAt[loaderBytes - 1] > 0)
        picks.append({QStringLiteral("announce"), loaderBytes - 1});
    QList<Position> positions;
    for (const auto &[label, index] : picks) {
        const bool taken = std::any_of(positions.begin(), positions.end(),
                                       [index = index](const Position &p) { return p.index == index; });
        if (!taken)
            positions.append({label, exchangeAt[index], index, cleanLines[index]});
    }
    std::sort(positions.begin(), positions.end(),
              [](const Position &a, const Position &b) { return a.exchange < b.exchange; });
    return positions;
}

} // namespace kalvo::testing::matrix
