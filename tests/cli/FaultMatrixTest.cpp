// The fault matrix over a real pseudo-terminal: every device command of kalvo-cli against kalvo-sim
// with each fault at the first, a middle, the last and the store exchange, and once against the odd
// answer style; a table of the runs goes to the test log.
#include "cli/FaultMatrix.h"
#include "support/ProgramFolder.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <ostream>

namespace kalvo::testing::matrix {

// Names the command in gtest's messages instead of dumping its bytes.
void PrintTo(const MatrixCommand &command, std::ostream *os)
{
    *os << command.id.toStdString();
}

} // namespace kalvo::testing::matrix

using namespace kalvo::testing;
using namespace kalvo::testing::matrix;

namespace {

class Table {
public:
    explicit Table(const QString &title) : m_title(title) {}
    void Add(const QString &command, const QString &fault, const QString &position, const Outcome &run,
             const QStringList &broken)
    {
        const QString exit = run.run.hung      ? QStringLiteral("hung")
                             : run.run.crashed ? QStringLiteral("crash")
                                               : QString::number(run.run.exitCode);
        m_rows << QStringLiteral("%1 %2 %3 %4 %5  %6")
                      .arg(command, -18)
                      .arg(fault, -13)
                      .arg(position, -34)
                      .arg(exit, 5)
                      .arg(QStringLiteral("%1s").arg(run.seconds, 0, 'f', 1), 6)
                      .arg(broken.isEmpty() ? QStringLiteral("ok")
                                            : QStringLiteral("FAIL: ") + broken.join(QStringLiteral("; ")));
        m_failing += broken.isEmpty() ? 0 : 1;
    }
    ~Table()
    {
        std::printf("\n%s: %lld runs, %d failing\n%-18s %-13s %-34s %5s %6s  %s\n", qPrintable(m_title),
                    static_cast<long long>(m_rows.size()), m_failing, "command", "fault", "position", "exit",
                    "time", "verdict");
        for (const QString &row : std::as_const(m_rows))
            std::printf("%s\n", qPrintable(row));
        std::fflush(stdout);
    }

private:
    QString m_title;
    QStringList m_rows;
    int m_failing = 0;
};

std::string Describe(const Outcome &run)
{
    return "\n  stdout: " +
           run.run.out.left(300).trimmed().replace(QLatin1Char('\n'), QStringLiteral(" / ")).toStdString() +
           "\n  stderr: " +
           run.run.err.trimmed().replace(QLatin1Char('\n'), QStringLiteral("\n          ")).toStdString() +
           "\n  sent: " + run.sent.mid(0, 12).join(QLatin1Char(' ')).toStdString() +
           (run.sent.size() > 12 ? " ..." : "");
}

class FaultMatrixBase : public ::testing::TestWithParam<MatrixCommand> {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_folder.ready()) << m_folder.error().toStdString();
        m_clean = RunMatrixCommand(GetParam(), {}, m_folder.path());
        // Without a good clean run there is nothing to judge the others by.
        ASSERT_EQ(m_clean.run.exitCode, 0) << "the clean run failed" << Describe(m_clean);
        for (const KeptFile &file : GetParam().files)
            ASSERT_FALSE(m_clean.files.value(file.name).isEmpty()) << file.name.toStdString();
    }

    ProgramFolder m_folder;
    Outcome m_clean;
};

class FaultMatrix : public FaultMatrixBase {};
class OddStyle : public FaultMatrixBase {};

} // namespace

TEST_P(FaultMatrix, EveryFaultAtEveryPositionKeepsTheRules)
{
    const MatrixCommand &command = GetParam();
    const QList<Position> positions = FaultPositions(m_clean);
    ASSERT_FALSE(positions.isEmpty()) << "the clean run sent no command";
    Table table(QStringLiteral("fault matrix, ") + command.id);
    for (const QString &fault : FaultKinds()) {
        for (const Position &position : positions) {
            const QString where =
                QStringLiteral("%1 #%2 %3").arg(position.label).arg(position.exchange).arg(position.line);
            const Outcome run = RunMatrixCommand(
                command,
                {QStringLiteral("--fault"), QStringLiteral("%1@%2x1").arg(fault).arg(position.exchange)},
                m_folder.path());
            const QStringList broken = Judge(command, fault, position, m_clean, run);
            table.Add(command.id, fault, where, run, broken);
            EXPECT_TRUE(broken.isEmpty())
                << command.id.toStdString() << ", " << fault.toStdString() << " at " << where.toStdString()
                << ": " << broken.join(QStringLiteral("; ")).toStdString() << Describe(run);
        }
    }
}

TEST_P(OddStyle, EveryCommandDoesWhatItDoesAgainstThePlainStyle)
{
    const MatrixCommand &command = GetParam();
    const Outcome odd =
        RunMatrixCommand(command, {QStringLiteral("--style"), QStringLiteral("odd")}, m_folder.path());
    const QStringList broken = JudgeSameAsClean(command, m_clean, odd);
    Table(QStringLiteral("odd style, ") + command.id)
        .Add(command.id, QStringLiteral("-"), QStringLiteral("--style odd"), odd, broken);
    EXPECT_TRUE(broken.isEmpty()) << command.id.toStdString() << ": "
                                  << broken.join(QStringLiteral("; ")).toStdString()
                                  << "\n  clean output: " << m_clean.run.out.toStdString()
                                  << "\n  odd output:   " << odd.run.out.toStdString() << Describe(odd)
                                  << "\n  clean run sent: "
                                  << m_clean.sent.join(QLatin1Char(' ')).left(600).toStdString();
}

namespace {
std::string CommandId(const ::testing::TestParamInfo<MatrixCommand> &info)
{
    return info.param.id.toStdString();
}
} // namespace

INSTANTIATE_TEST_SUITE_P(Commands, FaultMatrix, ::testing::ValuesIn(MatrixCommands()), CommandId);
INSTANTIATE_TEST_SUITE_P(Commands, OddStyle, ::testing::ValuesIn(MatrixCommands()), CommandId);
