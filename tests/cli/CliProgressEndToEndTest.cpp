// kalvo-cli shows progress on a terminal as one line rewritten in place, and none into a pipe.
#include "support/SilentPty.h"
#include "support/SimProcess.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kalvo::testing;

namespace {

QStringList ReadAllArguments(const QTemporaryDir &dir)
{
    return {QStringLiteral("--simulate"), QStringLiteral("records"), QStringLiteral("read-all"),
            dir.filePath(QStringLiteral("alle.txt"))};
}

} // namespace

TEST(CliProgress, OnATerminalOneLineRisesInPlaceTo100)
{
    SilentPty terminal;
    ASSERT_FALSE(terminal.path().isEmpty()) << "no pseudo-terminal";
    QTemporaryDir dir;
    const RunResult run =
        RunProgram(QStringLiteral("kalvo-cli"), ReadAllArguments(dir), 60, QString(), terminal.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QByteArray err = terminal.Drain();

    const QByteArray last = "\r100 %\n";
    const qsizetype end = err.indexOf(last);
    ASSERT_GE(end, 0) << err.toStdString();
    const qsizetype start = err.lastIndexOf('\n', end) + 1;
    QList<QByteArray> shown = err.mid(start, end + last.size() - 1 - start).split('\r');
    ASSERT_EQ(shown.takeFirst(), QByteArray()); // the line begins with its first "\r"
    QList<int> percents;
    for (const QByteArray &text : std::as_const(shown)) {
        ASSERT_TRUE(text.endsWith(" %")) << text.toStdString();
        percents << text.chopped(2).trimmed().toInt();
    }
    EXPECT_GT(percents.size(), 2) << "14 records give more than a final 100 %";
    for (qsizetype i = 1; i < percents.size(); ++i)
        EXPECT_GT(percents[i], percents[i - 1]) << err.toStdString();
    EXPECT_EQ(percents.constLast(), 100);
    EXPECT_EQ(err.count('%'), percents.size()) << "one progress line only: " << err.toStdString();
}

TEST(CliProgress, IntoAPipeNoProgressAtAll)
{
    QTemporaryDir dir;
    const RunResult run = RunProgram(QStringLiteral("kalvo-cli"), ReadAllArguments(dir));
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_FALSE(run.err.contains(QLatin1Char('%'))) << run.err.toStdString();
    EXPECT_FALSE(run.err.contains(QLatin1Char('\r'))) << run.err.toStdString();
}
