// What an update loader reports after a file, collected from the line with a deadline per phase.
#pragma once

#include "link/Clock.h"
#include "link/Errors.h"

#include <QByteArray>
#include <QString>

namespace kalvo::link {
class Link;
}

namespace kalvo::update {

// A report is a few dozen bytes; a tester that sends far more is not taken at its word.
constexpr qsizetype kMaxReportBytes = 1024 * 1024;

class LoaderReport {
public:
    explicit LoaderReport(link::Link &link) : m_link(link) {}

    enum class Outcome {
        Found,    // the mark has come
        Ended,    // the tester closed its report (DC1 after its first character) without the mark
        Refused,  // the report is a refusal ("Protokoll" and ".N"), closed by DC1
        TimedOut, // the link's time-out passed without the mark
    };
    // For a line's acknowledgement: reads until `mark` stands in what was collected, or the
    // report has ended without it. After the link's time-out link::Timeout is thrown with
    // `waitingFor` (what did not come) and the advice to repeat the update; the port stays open,
    // so that the run can still restart the tester. More than kMaxReportBytes is a
    // link::FormatError.
    Outcome WaitFor(const QByteArray &mark, const QString &waitingFor);
    // For a word of the erase or programming report: reads until `mark` has come, the report is a
    // refusal, or the time-out has passed. A DC1 in between ends nothing: a tester may close
    // each part of its report, or send one before it, while it is still at work.
    Outcome WaitForWord(const QByteArray &mark);
    // Reads until DC1 stands at or after the second byte, and after the byte at `from`: a DC1 in
    // front is left over from before or closed an earlier part of the report. Throws as WaitFor.
    void WaitForEnd(qsizetype from, const QString &waitingFor);
    // The time-out of a phase that waited for `waitingFor`.
    link::Timeout TimedOut(const QString &waitingFor) const;

    // Forgets what was collected.
    void Clear() { m_bytes.clear(); }
    // Forgets what was collected up to and including the first `mark`, keeping what followed it.
    void DropThrough(const QByteArray &mark);
    const QByteArray &bytes() const { return m_bytes; }
    // What came, for a message: escaped, a long report shortened.
    QString Shown() const;

private:
    bool Ended(qsizetype from = 1) const;
    bool Refusal() const;
    // Reads once more before `deadline`; false when it has passed. Throws link::FormatError when
    // the report grows beyond kMaxReportBytes.
    bool ReadMore(link::Duration deadline, const QString &waitingFor);

    link::Link &m_link;
    QByteArray m_bytes;
};

// The sentence every failed transfer ends with.
QString RepeatUpdateText();

} // namespace kalvo::update
