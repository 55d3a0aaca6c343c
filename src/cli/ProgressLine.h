// The progress of kalvo-cli on a terminal: one line, rewritten in place as the percentage changes.
#pragma once

#include <QString>

namespace kalvo::cli {

class ProgressLine {
public:
    // What to write for `percent`: "\r 40 %" while the operation runs, "\r100 %\n" when it is
    // complete; nothing when the percentage has not changed. A percentage below the one shown
    // starts a new operation, and so a new line.
    QString Show(int percent);
    // The line end an unfinished line still needs (the operation ended early, or something else
    // is about to be written); empty when no line is open.
    QString End();

private:
    int m_shown = -1;
    bool m_open = false;
};

} // namespace kalvo::cli
