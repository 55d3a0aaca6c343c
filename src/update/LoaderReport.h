// What an update loader reports after a file, collected from the line with a deadline per phase.
#pragma once

#include "link/Clock.h"

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
        Found, // the mark has come
        Ended  // the tester closed its report (DC1 after its first character) without the mark
    };
    // Reads until `mark` stands in what was collected, or the report has ended without it. After
    // the link's time-out the port is closed and link::Timeout thrown with `waitingFor` (what
    // did not come) and the advice to repeat the update. More than kMaxReportBytes is a
    // link::FormatError.
    Outcome WaitFor(const QByteArray &mark, const QString &waitingFor);
    // Reads until DC1 stands at or after the second byte: a DC1 in front is left over from before.
    void WaitForEnd(const QString &waitingFor);

    // Forgets what was collected.
    void Clear() { m_bytes.clear(); }
    // Forgets what was collected up to and including the first `mark`, keeping what followed it.
    void DropThrough(const QByteArray &mark);
    const QByteArray &bytes() const { return m_bytes; }
    // What came, for a message: escaped, a long report shortened.
    QString Shown() const;

private:
    bool Ended() const;
    // Reads once more before `deadline`; throws as WaitFor says.
    void ReadMore(link::Duration deadline, const QString &waitingFor);

    link::Link &m_link;
    QByteArray m_bytes;
};

// The sentence every failed transfer ends with.
QString RepeatUpdateText();

} // namespace kalvo::update
