// kalvo-cli shows progress on a terminal as a bar rewritten in place, and into a pipe as percentage lines.
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

TEST(CliProgress, OnATerminalOneBarRisesInPlaceTo100)
{
    SilentPty terminal;
    ASSERT_FALSE(terminal.path().isEmpty()) << "no pseudo-terminal";
    QTemporaryDir dir;
    const RunResult run =
        RunProgram(QStringLiteral("kalvo-cli"), ReadAllArguments(dir), 60, QString(), terminal.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QByteArray err = terminal.Drain();

    const QByteArray last = "] 100 %\n";
    const qsizetype end = err.indexOf(last);
    ASSERT_GE(end, 0) << err.toStdString();
    const qsizetype start = err.lastIndexOf('\n', end) + 1;
    QList<QByteArray> shown = err.mid(start, end + last.size() - 1 - start).split('\r');
    ASSERT_EQ(shown.takeFirst(), QByteArray()); // the line begins with its first "\r"
    QList<int> percents;
    for (const QByteArray &text : std::as_const(shown)) {
        ASSERT_TRUE(text.startsWith('[') && text.endsWith(" %")) << text.toStdString();
        const qsizetype close = text.indexOf(']');
        ASSERT_EQ(close, 21) << "a bar of 20 cells: " << text.toStdString();
        const int percent = text.mid(close + 1).chopped(2).trimmed().toInt();
        EXPECT_EQ(text.left(close).count('#'), percent / 5) << text.toStdString();
        percents << percent;
    }
    EXPECT_GT(percents.size(), 2) << "14 records give more than a final 100 %";
    for (qsizetype i = 1; i < percents.size(); ++i)
        EXPECT_GT(percents[i], percents[i - 1]) << err.toStdString();
    EXPECT_EQ(percents.constLast(), 100);
    EXPECT_EQ(err.count('%'), percents.size()) << "one progress line only: " << err.toStdString();
}

TEST(CliProgress, IntoAPipePercentageLinesRiseTo100)
{
    QTemporaryDir dir;
    const RunResult run = RunProgram(QStringLiteral("kalvo-cli"), ReadAllArguments(dir));
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_FALSE(run.err.contains(QLatin1Char('\r'))) << run.err.toStdString();
    QList<int> tenths;
    for (const QString &line : run.err.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (!line.endsWith(QLatin1String(" %")))
            continue;
        bool ok = false;
        tenths << line.chopped(2).toInt(&ok);
        ASSERT_TRUE(ok) << line.toStdString();
    }
    ASSERT_GT(tenths.size(), 2) << run.err.toStdString();
    for (qsizetype i = 0; i < tenths.size(); ++i) {
        EXPECT_EQ(tenths[i] % 10, 0) << run.err.toStdString();
        if (i > 0) {
            EXPECT_GT(tenths[i], tenths[i - 1]) << run.err.toStdString();
        }
    }
    EXPECT_EQ(tenths.constLast(), 100);
}
