// A tester on the far end of a serial line: takes bytes, answers lines, paced and with faults on demand.
#pragma once

#include "AnswerStyle.h"
#include "FaultPlan.h"
#include "TesterModel.h"
#include "UpdateLoader.h"
#include "link/Clock.h"

#include <QByteArray>
#include <QList>
#include <deque>
#include <optional>

namespace kalvo::sim {

class VirtualTester {
public:
    struct ReceivedLine {
        // As received, CR included; a lone EOT after "rst!0" is a line of its own, a firmware line
        // is one with its CR or LF, a package stream one (its first UpdateLoader::kKeptBytes).
        QByteArray bytes;
        link::Duration at;    // when its last byte arrived
        bool exchange = true; // a command line with its answer; not what a loader or a restart took
    };

    explicit VirtualTester(link::Clock &clock);

    // Bytes from the host. They arrive one after the other at the line rate, starting now or
    // when the bytes fed before them have arrived; each line is answered once its CR is in.
    void feed(const QByteArray &bytes);
    // When the last byte fed so far has arrived (now or earlier when the line is idle).
    link::Duration inputDoneAt() const { return m_inputFree; }

    // Answer bytes on their way to the host, each with the time it can be read.
    bool hasOutput() const { return !m_output.empty(); }
    link::Duration nextOutputAt() const { return m_output.front().at; }
    // When something happens next on the tester's side: the next answer byte arrives, or a package
    // stream ends because the line has been idle. Nothing pending: nullopt.
    std::optional<link::Duration> nextEventAt() const;
    // Takes the bytes that have arrived by `until`.
    QByteArray takeOutput(link::Duration until);
    // Drops the bytes that have arrived by `until`; those still on the wire keep coming.
    void dropOutput(link::Duration until);
    // The update loader that takes the line's bytes, if one is running.
    std::optional<UpdateLoader::Kind> loader() const;

    // Bytes the tester sends of its own accord (the remote display), leaving from now on.
    void pushDisplay(const QByteArray &bytes);

    // 10 bits a byte: 9600 baud is 960 bytes a second; 0 sends everything at once.
    void setBaud(int baud) { m_baud = baud; }
    int baud() const { return m_baud; }
    link::Duration byteTime() const;
    // How long a restart keeps the tester from answering; lines that come meanwhile wait.
    void setRestartDelay(link::Duration delay) { m_restartDelay = delay; }

    // Odd: every answer in another form the reading rules still take, cut into bursts.
    void setStyle(AnswerStyle style)
    {
        m_style = style;
        m_model.records().setOddParts(style == AnswerStyle::Odd);
    }
    AnswerStyle style() const { return m_style; }

    FaultPlan &faults() { return m_faults; }
    TesterModel &model() { return m_model; }
    const TesterModel &model() const { return m_model; }
    link::Clock &clock() { return m_clock; }

    const QList<ReceivedLine> &receivedLines() const { return m_received; }
    // Lines answered (or meant to be) so far, wake-up lines included; the count "@N" refers to.
    int exchanges() const { return m_exchanges; }
    bool vanished() const { return m_vanished; }
    int restarts() const { return m_restarts; }

private:
    struct OutByte {
        char byte;
        link::Duration at;
    };

    void Receive(char byte, link::Duration at);
    // The package's stream ends when the line has been idle: at `until`, if that is late enough.
    void EndIdlePackage(link::Duration until);
    // Sends what a loader step asks for, from `at` on, and restarts or leaves the loader.
    void Apply(const UpdateLoader::Step &step, link::Duration at);
    void Restart(link::Duration at);
    void HandleLine(const QByteArray &line, link::Duration at);
    // Queues `bytes` to leave no earlier than `earliest`; returns when the last one arrives.
    link::Duration Send(const QByteArray &bytes, link::Duration earliest);
    // An answer to a line: in one burst, or in the odd style's bursts.
    link::Duration SendAnswer(const QByteArray &answer, link::Duration earliest);
    QByteArray Garbage() const;

    link::Clock &m_clock;
    TesterModel m_model;
    FaultPlan m_faults;
    int m_baud = 0;
    AnswerStyle m_style = AnswerStyle::Plain;
    link::Duration m_restartDelay{};

    QByteArray m_line;
    bool m_restartArmed = false;
    std::optional<UpdateLoader> m_loader;
    link::Duration m_loaderByteAt{}; // when the loader's last byte arrived
    link::Duration m_busyUntil{};
    link::Duration m_inputFree{};
    link::Duration m_outputFree{};
    std::deque<OutByte> m_output;
    QList<ReceivedLine> m_received;
    int m_exchanges = 0;
    int m_restarts = 0;
    bool m_vanished = false;
};

} // namespace kalvo::sim
