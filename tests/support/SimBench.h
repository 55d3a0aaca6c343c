// A link to the virtual tester on a manual clock, for operation tests: nothing really waits.
#pragma once

#include "link/Link.h"
#include "sim/SimTransport.h"
#include "support/ScriptedPrompter.h"

#include <QByteArray>
#include <QList>

namespace kalvo::testing {

struct SimBench {
    link::ManualClock clock;
    sim::VirtualTester tester{clock};
    sim::SimTransport transport{tester, clock};
    ScriptedPrompter prompter;
    link::Link link{transport, prompter, clock};
    SimBench() { link.OpenPort(QStringLiteral("Simulator")); }

    // The lines the tester received, CR included.
    QList<QByteArray> Lines() const
    {
        QList<QByteArray> lines;
        for (const auto &line : tester.receivedLines())
            lines << line.bytes;
        return lines;
    }
    // A restart without storing: the tester comes back with what it had stored.
    void Restart() { tester.model().Restart(); }
};

} // namespace kalvo::testing
