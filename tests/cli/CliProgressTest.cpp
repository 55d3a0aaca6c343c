// kalvo-cli's progress: one line rewritten in place on a terminal, nothing at all for a script.
#include "cli/CliPrompter.h"
#include "cli/ProgressLine.h"

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

TEST(ProgressLine, RewritesOneLineWhenThePercentageChangesAndEndsItAt100)
{
    const struct {
        const char *name;
        const char *script;
        QByteArray written;
    } cases[] = {
        {"rising to 100", "0 10 10 40 100", "\r  0 %\r 10 %\r 40 %\r100 %\n"},
        {"every change, not only tens", "1 2 3 end", "\r  1 %\r  2 %\r  3 %\n"},
        {"a repeated 100 adds nothing", "50 100 100", "\r 50 %\r100 %\n"},
        {"a lower percentage is the next operation's line", "30 60 10 100",
         "\r 30 %\r 60 %\n\r 10 %\r100 %\n"},
        {"after a complete one the next begins afresh", "100 20 100", "\r100 %\n\r 20 %\r100 %\n"},
        {"an operation ended early", "40 end end", "\r 40 %\n"},
        {"the same percentage after an end is a new line", "40 end 40 100", "\r 40 %\n\r 40 %\r100 %\n"},
        {"nothing open, nothing to end", "end", ""},
        {"out of range is held to 0..100", "-5 150", "\r  0 %\r100 %\n"},
    };
    for (const auto &c : cases) {
        ProgressLine line;
        EXPECT_EQ(Play(line, c.script), c.written) << c.name;
    }
}

TEST(CliPrompter, ProgressOnlyWhenShownAndMessagesAlwaysOnALineOfTheirOwn)
{
    const struct {
        bool showProgress;
        QByteArray written;
    } cases[] = {
        {true, "\r 20 %\r 50 %\nKein Kalvomer gefunden\n\r 70 %\n"},
        {false, "Kein Kalvomer gefunden\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.showProgress);
        const std::unique_ptr<FILE, int (*)(FILE *)> file(std::tmpfile(), &std::fclose);
        ASSERT_TRUE(file);
        {
            CliPrompter prompter(false, c.showProgress, file.get());
            prompter.progress(20);
            prompter.progress(50);
            prompter.message(QStringLiteral("Kein Kalvomer gefunden"), kalvo::link::Prompter::Icon::Warning);
            prompter.progress(70); // still open when the prompter goes: it ends the line
        }
        EXPECT_EQ(Contents(file.get()), c.written);
    }
}
