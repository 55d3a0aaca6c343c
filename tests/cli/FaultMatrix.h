// The fault matrix: kalvo-cli against kalvo-sim with one spoiled answer at a time, judged by the rules
// for refusals, bad answers and bounds.
#pragma once

#include "support/SimProcess.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <functional>

namespace kalvo::testing::matrix {

// A file that is there before a run: the command writes it (an old file) or reads it.
struct KeptFile {
    QString name; // in the run's working folder, or beside the program with the prefix "bin/"
    QByteArray before;
    // The line (as logged) whose answer completes this file within a longer command: a fault
    // after it may leave the file as the clean run wrote it (the accessory's log.tmp is complete
    // once its stream has come, before the record file is stored).
    QString completeAfter = {};
};

// One kalvo-cli command of the matrix.
struct MatrixCommand {
    QString id; // in test names: letters, digits and "_"
    QStringList simArguments;
    QStringList arguments;
    QList<KeptFile> files;
    bool changesTester = false; // a write session: nothing may be stored after a refused or bad answer
    bool repeatable = true;     // the same output and lines every run (not the clock)
    // Its file traces the record parts as the tester cut them: an answer style that cuts them
    // elsewhere writes other lines there, though the records are the same.
    bool tracesParts = false;
    // What the command found out, from its output: what two runs must agree on.
    std::function<QString(const QString &out)> results;
};

const QList<MatrixCommand> &MatrixCommands();

// What one run did.
struct Outcome {
    RunResult run;
    QStringList sent;      // the lines the tester received, escaped as kalvo-sim logs them ("dis?\\r")
    QList<bool> exchanges; // per line of `sent`: a command line that was answered (not loader bytes)
    QMap<QString, QByteArray> files;
    double seconds = 0;
    QString port;          // the pseudo-terminal the tester was on
    QString failedToStart; // kalvo-sim did not come up
};

// Runs the command against a fresh kalvo-sim with `simExtra` (faults, style) on top of its own
// arguments, with --timeout 1 and a guard that kills it after 30 s.
Outcome RunMatrixCommand(const MatrixCommand &command, const QStringList &simExtra,
                         const QString &programFolder);

// An exchange of the command's sequence that a fault is put on.
struct Position {
    QString label; // first, middle, last, store
    int exchange;  // the "@N" of the fault: the line's number among the tester's exchanges, from 1
    int index;     // the line's place in the tester's log, from 0 (loader bytes are logged too)
    QString line;  // as logged, e.g. "kal? 3\\r"
};

// First, middle and last command line of a clean run's log (the wake-up lines are not commands, and
// what a loader takes is no exchange), and the store line and the line that opens the first loader
// where they are none of those.
QList<Position> FaultPositions(const Outcome &clean);

// The log index of the first bytes an update loader took, from log index `from` on; -1 for none.
int FirstLoaderBytes(const Outcome &outcome, int from = 0);

// Every fault kind of kalvo-sim, each run at every position.
const QStringList &FaultKinds();

// Whether a logged line stores what was changed ("kal!pgm", "cfg!pgm").
bool IsStoreLine(const QString &logged);

// The broken expectations of a run with `fault` (a kind name) at `position`; empty when it kept
// every rule. `clean` is the run without faults.
QStringList Judge(const MatrixCommand &command, const QString &fault, const Position &position,
                  const Outcome &clean, const Outcome &run);
// The broken expectations of a run that must do what the clean run did (no fault, or an answer
// style that the reading rules take).
QStringList JudgeSameAsClean(const MatrixCommand &command, const Outcome &clean, const Outcome &run);

} // namespace kalvo::testing::matrix
