// kalvo-cli's progress: a bar rewritten in place on a terminal, percentage lines for a log.
#include "cli/CliPrompter.h"
#include "cli/ProgressLine.h"

#include <QRegularExpression>
#include <QStringList>

#include <cstdio>
#include <memory>

#include <gtest/gtest.h>

using namespace kalvo::cli;

namespace {

// Plays `script` ("20 50 end 100": percentages, and "end" for End()) and returns what was written.
QByteArray Play(ProgressLine &line, const char *script)
{
    QString written;
    for (const QString &word : QString::fromLatin1(script).split(QLatin1Char(' '), Qt::SkipEmptyParts))
        written += word == QLatin1String("end") ? line.End() : line.Show(word.toInt());
    return written.toLatin1();
}

// The bars of `written` each shortened to "|40", so a table can show when a line is rewritten.
QByteArray ShortBars(const QByteArray &written)
{
    static const QRegularExpression bar(QStringLiteral("\\r\\[[# ]{20}\\] *(\\d+) %"));
    return QString::fromLatin1(written).replace(bar, QStringLiteral("|\\1")).toLatin1();
}

// Everything written to `file` so far.
QByteArray Contents(FILE *file)
{
    std::fflush(file);
    std::rewind(file);
    QByteArray bytes;
    char buffer[256];
    for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, file)) > 0;)
        bytes.append(buffer, static_cast<qsizetype>(n));
    return bytes;
}

} // namespace

TEST(ProgressLine, ABarShowsOneCellForEvery5PerCentAndItsPercentage)
{
    ProgressLine line(ProgressStyle::Bar);
    EXPECT_EQ(line.Show(0), QStringLiteral("\r[                    ]   0 %"));
    EXPECT_EQ(line.Show(4), QStringLiteral("\r[                    ]   4 %"));
    EXPECT_EQ(line.Show(5), QStringLiteral("\r[#                   ]   5 %"));
    EXPECT_EQ(line.Show(42), QStringLiteral("\r[########            ]  42 %"));
    EXPECT_EQ(line.Show(99), QStringLiteral("\r[################### ]  99 %"));
    EXPECT_EQ(line.Show(100), QStringLiteral("\r[####################] 100 %\n"));
}

TEST(ProgressLine, ABarIsRewrittenWhenThePercentageChangesAndEndedAt100)
{
    const struct {
        const char *name;
        const char *script;
        QByteArray written; // each bar shortened to "|percentage"
    } cases[] = {
        {"rising to 100", "0 10 10 40 100", "|0|10|40|100\n"},
        {"every change, not only tens", "1 2 3 end", "|1|2|3\n"},
        {"a repeated 100 adds nothing", "50 100 100", "|50|100\n"},
        {"a lower percentage is the next operation's line", "30 60 10 100", "|30|60\n|10|100\n"},
        {"after a complete one the next begins afresh", "100 20 100", "|100\n|20|100\n"},
        {"an operation ended early", "40 end end", "|40\n"},
        {"the same percentage after an end is a new line", "40 end 40 100", "|40\n|40|100\n"},
        {"nothing open, nothing to end", "end", ""},
        {"out of range is held to 0..100", "-5 150", "|0|100\n"},
    };
    for (const auto &c : cases) {
        ProgressLine line(ProgressStyle::Bar);
        EXPECT_EQ(ShortBars(Play(line, c.script)), c.written) << c.name;
    }
}

TEST(ProgressLine, ALogGetsALineAtEveryTenthReached)
{
    const struct {
        const char *name;
        const char *script;
        QByteArray written;
    } cases[] = {
        {"small steps, one line a tenth", "0 3 9 10 14 27 100", "0 %\n10 %\n20 %\n100 %\n"},
        {"a jump names only where it landed", "5 95", "0 %\n90 %\n"},
        {"a repeated 100 adds nothing", "100 100", "100 %\n"},
        {"a lower tenth is the next operation", "30 60 10 100", "30 %\n60 %\n10 %\n100 %\n"},
        {"an end writes nothing and the next starts afresh", "40 end 40", "40 %\n40 %\n"},
        {"out of range is held to 0..100", "-5 150", "0 %\n100 %\n"},
    };
    for (const auto &c : cases) {
        ProgressLine line(ProgressStyle::Percentages);
        EXPECT_EQ(Play(line, c.script), c.written) << c.name;
    }
}

TEST(CliPrompter, MessagesAlwaysStartALineOfTheirOwn)
{
    const struct {
        ProgressStyle style;
        QByteArray written;
    } cases[] = {
        {ProgressStyle::Bar, "|20|50\nKein Kalvomer gefunden\n|70\n"},
        {ProgressStyle::Percentages, "20 %\n50 %\nKein Kalvomer gefunden\n70 %\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(static_cast<int>(c.style));
        const std::unique_ptr<FILE, int (*)(FILE *)> file(std::tmpfile(), &std::fclose);
        ASSERT_TRUE(file);
        {
            CliPrompter prompter(false, c.style, file.get());
            prompter.progress(20);
            prompter.progress(50);
            prompter.message(QStringLiteral("Kein Kalvomer gefunden"), kalvo::link::Prompter::Icon::Warning);
            prompter.progress(70); // still open when the prompter goes: it ends the line
        }
        EXPECT_EQ(ShortBars(Contents(file.get())), c.written);
    }
}
