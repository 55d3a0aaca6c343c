// The progress of kalvo-cli on stderr: a bar rewritten in place for a person at a terminal, plain
// percentage lines for a log or a script.
#pragma once

#include <QString>

namespace kalvo::cli {

enum class ProgressStyle {
    Bar,         // "\r[########            ]  40 %", one line rewritten as the percentage changes
    Percentages, // "40 %" on a line of its own at every tenth reached, so a log stays short
};

class ProgressLine {
public:
    explicit ProgressLine(ProgressStyle style = ProgressStyle::Bar) : m_style(style) {}

    // What to write for `percent`; nothing when there is nothing new to show. A percentage below the
    // one shown starts a new operation, and so a new line. 100 always ends the line.
    QString Show(int percent);
    // The line end an unfinished bar still needs (the operation ended early, or something else is
    // about to be written); empty when no bar is open. The next percentage starts afresh.
    QString End();

private:
    QString Bar(int percent) const;

    ProgressStyle m_style;
    int m_shown = -1; // the last percentage (bar) or tenth (percentages) written
    bool m_open = false;
};

} // namespace kalvo::cli
