// The tester's four update loaders: what it does with the raw bytes that follow "kal!updN".
#pragma once

#include "AnswerStyle.h"
#include "FaultPlan.h"
#include "TesterModel.h"
#include "link/Clock.h"

#include <QByteArray>
#include <QList>
#include <optional>

namespace kalvo::sim {

class UpdateLoader {
public:
    // By the announce command, "kal!upd0" to "kal!upd3".
    enum class Kind { Firmware = 0, Sequences = 1, Help = 2, Pictures = 3 };

    // Bytes the tester sends, `after` the moment of the step that produced them.
    struct Piece {
        QByteArray bytes;
        link::Duration after{};
    };
    struct Step {
        QList<Piece> send;
        bool ended = false;   // the loader is done: what follows are command lines again
        bool restart = false; // the tester restarts as the loader ends
        bool notMine = false; // the byte is no part of a load: it and what follows are command input
        QByteArray received;  // a finished line or stream, for the received-line record
    };

    // A package has come whole once the line has been idle this long after its last byte.
    static constexpr link::Duration kIdleEnd = std::chrono::milliseconds(300);
    // The erase report follows the firmware's last "!" this much later, so that it arrives apart.
    static constexpr link::Duration kReportGap = std::chrono::milliseconds(50);
    // From the erase report to the programming report.
    static constexpr link::Duration kEraseTime = std::chrono::milliseconds(400);
    // With the fault `ResetHalfway` the firmware loader restarts after this many lines.
    static constexpr int kFirmwareHalfwayLines = 5;
    // The most of a package that is kept; more is counted but not held.
    static constexpr qsizetype kKeptBytes = 1024 * 1024;

    // In the odd style the report carries a DC1 inside: the firmware loader closes a word of its
    // own before its erase report, a package loader closes its erase report; the DC1 after the
    // programming report still ends it.
    UpdateLoader(Kind kind, std::optional<FaultKind> fault, TesterModel &model,
                 AnswerStyle style = AnswerStyle::Plain);

    Kind kind() const { return m_kind; }
    // One byte from the line.
    Step Take(char byte);
    // Whether the loader waits for the line to fall idle (a package that has begun).
    bool EndsWhenIdle() const { return m_kind != Kind::Firmware && m_count > 0; }
    // The line has been idle for kIdleEnd: the package is complete.
    Step End();

private:
    Step TakeFirmware(char byte);
    Step FirmwareLine(const QByteArray &received);
    Step TakePackage(char byte);
    Step Restart(const QByteArray &received) const;
    Step Refuse(const QByteArray &reason) const;
    // The erase report, the programming report and DC1, as the fault leaves them; `start` is when
    // the erase report leaves.
    QList<Piece> Report(link::Duration start) const;
    bool Has(FaultKind kind) const { return m_fault == kind; }

    Kind m_kind;
    std::optional<FaultKind> m_fault;
    AnswerStyle m_style;
    TesterModel &m_model;
    QByteArray m_line; // the firmware line so far
    int m_lines = 0;   // firmware lines taken, the bad one included
    qsizetype m_count = 0;
    QByteArray m_kept;        // the package's first kKeptBytes
    qsizetype m_halfway = -1; // where ResetHalfway strikes in a package, once its size is read
};

} // namespace kalvo::sim
