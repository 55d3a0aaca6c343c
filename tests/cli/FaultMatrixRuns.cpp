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
    outcome.sent = sim.ReceivedBytes();
    for (const KeptFile &file : command.files)
        outcome.files.insert(file.name, ReadFile(pathOf(file.name)));
    return outcome;
}

QList<Position> FaultPositions(const QStringList &cleanLines)
{
    QList<int> commands;
    for (int i = 0; i < cleanLines.size(); ++i) {
        if (!IsWakeUpLine(cleanLines[i]))
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
    QList<Position> positions;
    for (const auto &[label, index] : picks) {
        const bool taken =
            std::any_of(positions.begin(), positions.end(),
                        [index = index](const Position &p) { return p.exchange == index + 1; });
        if (!taken)
            positions.append({label, index + 1, cleanLines[index]});
    }
    std::sort(positions.begin(), positions.end(),
              [](const Position &a, const Position &b) { return a.exchange < b.exchange; });
    return positions;
}

} // namespace kalvo::testing::matrix
