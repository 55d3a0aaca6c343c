// What a run of the fault matrix must do, from the rules for refusals, bad answers and bounds.
#include "cli/FaultMatrix.h"

#include <QRegularExpression>

namespace kalvo::testing::matrix {

namespace {

// What the program does with the answer to a line.
enum class LineKind {
    Unexamined, // collected and not looked at ("mes!0", "kal!aus")
    Retried,    // asked again until it holds what is needed ("dis?", up to five times)
    Read,       // a value is read from it
    Setting,    // a setting, done when ".Y" is in the answer
    Store,      // "kal!pgm", "cfg!pgm": stored only on ".Y" without ".N"
    Kept,       // kept whole as it came (a print template: "prn?" + k); only a refusal is judged
};

QString CommandLine(const QString &logged)
{
    return logged.endsWith(QLatin1String("\\r")) ? logged.chopped(2) : logged;
}

LineKind KindOf(const QString &logged)
{
    const QString line = CommandLine(logged).toLower();
    // "rst!0" only asks for a restart: whatever a restarting tester answers changes nothing.
    if (line == QLatin1String("mes!0") || line == QLatin1String("kal!aus") || line == QLatin1String("rst!0"))
        return LineKind::Unexamined;
    if (line == QLatin1String("dis?"))
        return LineKind::Retried;
    if (line.startsWith(QLatin1String("prn?")) && line.size() > 4)
        return LineKind::Kept;
    if (IsStoreLine(logged))
        return LineKind::Store;
    if (line.size() > 3 && line[3] == QLatin1Char('!'))
        return LineKind::Setting;
    return LineKind::Read;
}

// How a message names a command: the line up to its first value ("wer! 3", "str!122", "idn!1").
QString CommandName(const QString &logged)
{
    static const QRegularExpression value(QStringLiteral("[,<+]"));
    const QString line = CommandLine(logged);
    const qsizetype cut = line.indexOf(value);
    return (cut < 0 ? line : line.left(cut)).trimmed();
}

struct Expectation {
    QList<int> exitCodes;
    QStringList messages;    // unless the run exits 0, stderr holds one of these
    bool sameLines = false;  // the tester receives what it received in the clean run
    bool otherFiles = false; // a run that exits 0 may write other files than the clean run
};

// Whether the line comes before the clean run's store line.
bool BeforeStore(const Position &position, const QStringList &cleanLines)
{
    for (int i = position.index + 1; i < cleanLines.size(); ++i) {
        if (IsStoreLine(cleanLines[i]))
            return true;
    }
    return false;
}

Expectation Expect(const MatrixCommand &command, const QString &fault, const Position &position,
                   const Outcome &clean, const Outcome &run)
{
    // A refusal or a bad answer is told by naming the command, the refusal or the store that failed;
    // where the rule only looks for a mark, by the words for its absence.
    QStringList whatWentWrong{CommandName(position.line), QStringLiteral("31995"),
                              QStringLiteral("abgelehnt"), QStringLiteral("nicht gespeichert"),
                              QStringLiteral("Grenzwerteingabe falsch")};
    const QString line = CommandLine(position.line).toLower();
    if (line == QLatin1String("prx?"))
        whatWentWrong << QStringLiteral("No Protokol"); // no ".Y": no current record
    if (line == QLatin1String("idn?"))
        whatWentWrong << QStringLiteral("Kein KYM gefunden"); // no "QRT4027": no accessory
    if (fault == QLatin1String("silence") || fault == QLatin1String("noterminator") ||
        fault == QLatin1String("cutoff"))
        return {{3}, {QStringLiteral("Kein Kalvomer gefunden")}};
    // A vanished line is a lost port: the time-out's words, or words naming the port (a serial
    // port's name goes without "/dev/").
    if (fault == QLatin1String("vanish")) {
        QString port = run.port;
        port.remove(QRegularExpression(QStringLiteral("^/dev/")));
        return {{3}, {QStringLiteral("Kein Kalvomer gefunden"), port}};
    }
    // protStore asks "idn?" only to choose between copying log.tmp and writing the table of the
    // records just read: an answer without "QRT4027" is a tester without the accessory, and the
    // table is the file it writes then.
    if (command.id == QLatin1String("kym_read") && line == QLatin1String("idn?") && position.exchange > 1 &&
        fault != QLatin1String("refuse"))
        return {{0, 1}, whatWentWrong, false, true};
    // ".Nx" without "Protokoll" is no refusal the link reports; to a line whose answer is not
    // looked at it may pass, unless a write session would store after it; "dis?" is asked again.
    if (fault == QLatin1String("refusestore") && KindOf(position.line) == LineKind::Unexamined &&
        !(command.changesTester && BeforeStore(position, clean.sent)))
        return {{0, 1}, whatWentWrong};
    if (fault == QLatin1String("refusestore") && KindOf(position.line) == LineKind::Retried)
        return {{0}, {}};
    if (fault == QLatin1String("refuse") || fault == QLatin1String("refusestore"))
        return {{1}, whatWentWrong};
    // Behind the terminator nothing counts: the run is the clean one.
    if (fault == QLatin1String("trailingjunk"))
        return {{0}, {}, true};
    switch (KindOf(position.line)) {
    case LineKind::Retried: return {{0}, {}};
    // Whatever came is the template: the file then holds it, or, when another template was
    // spoiled, is the clean run's.
    case LineKind::Kept: return {{0}, {}, false, true};
    case LineKind::Unexamined:
        // Not looked at; but in a write session, a tester that answers nonsense gets nothing stored.
        if (command.changesTester && BeforeStore(position, clean.sent))
            return {{1}, whatWentWrong};
        return {{0, 1}, whatWentWrong};
    default: return {{1}, whatWentWrong};
    }
}

QString Codes(const QList<int> &codes)
{
    QStringList texts;
    for (int code : codes)
        texts << QString::number(code);
    return texts.join(QStringLiteral(" or "));
}

// Whether the fault hits a line after the one that completes `file` in the clean run.
bool AfterCompletion(const KeptFile &file, const Position *position, const Outcome &clean)
{
    if (!position || file.completeAfter.isEmpty())
        return false;
    const qsizetype completed = clean.sent.indexOf(file.completeAfter);
    return completed >= 0 && completed < position->index;
}

QStringList Check(const MatrixCommand &command, const Expectation &expected, const Outcome &clean,
                  const Outcome &run, const Position *position = nullptr)
{
    if (!run.failedToStart.isEmpty())
        return {run.failedToStart};
    if (run.run.hung)
        return {QStringLiteral("hung: killed after its guard time")};
    QStringList broken;
    const int exit = run.run.exitCode;
    if (run.run.crashed)
        broken << QStringLiteral("crashed (ended by a signal)");
    else if (!expected.exitCodes.contains(exit))
        broken << QStringLiteral("exit %1, expected %2").arg(exit).arg(Codes(expected.exitCodes));
    if (exit != 0 && !expected.messages.isEmpty() &&
        std::none_of(expected.messages.begin(), expected.messages.end(), [&](const QString &m) {
            return !m.isEmpty() && run.run.err.contains(m, Qt::CaseInsensitive);
        }))
        broken << QStringLiteral("stderr does not say what went wrong (none of: %1)")
                      .arg(expected.messages.join(QStringLiteral(" | ")));
    for (const KeptFile &file : command.files) {
        const QByteArray after = run.files.value(file.name);
        if (exit == 0 && after != clean.files.value(file.name) && !expected.otherFiles)
            broken << QStringLiteral("%1 is not what the clean run wrote").arg(file.name);
        else if (exit != 0 && after != file.before &&
                 !(AfterCompletion(file, position, clean) && after == clean.files.value(file.name)))
            broken << QStringLiteral("%1 changed although the run failed").arg(file.name);
    }
    if (exit == 0 && command.repeatable && command.results(run.run.out) != command.results(clean.run.out))
        broken << QStringLiteral("its output is not the clean run's");
    if (expected.sameLines && command.repeatable && run.sent != clean.sent)
        broken << QStringLiteral("the tester received other lines than in the clean run");
    return broken;
}

} // namespace

const QStringList &FaultKinds()
{
    static const QStringList kinds{QStringLiteral("silence"), QStringLiteral("noterminator"),
                                   QStringLiteral("refuse"),  QStringLiteral("refusestore"),
                                   QStringLiteral("garbage"), QStringLiteral("cutoff"),
                                   QStringLiteral("vanish"),  QStringLiteral("trailingjunk")};
    return kinds;
}

bool IsStoreLine(const QString &logged)
{
    return logged.compare(QLatin1String("kal!pgm\\r"), Qt::CaseInsensitive) == 0 ||
           logged.compare(QLatin1String("cfg!pgm\\r"), Qt::CaseInsensitive) == 0;
}

QStringList Judge(const MatrixCommand &command, const QString &fault, const Position &position,
                  const Outcome &clean, const Outcome &run)
{
    QStringList broken = Check(command, Expect(command, fault, position, clean, run), clean, run, &position);
    // Nothing is stored after a refused or spoiled answer in a session that changes the tester; the
    // identification before a naming is no part of its session, and a spoiled "dis?" is asked again
    // anyway, but a refused one ends the identification.
    if (command.changesTester && fault != QLatin1String("trailingjunk") &&
        (KindOf(position.line) != LineKind::Retried || fault == QLatin1String("refuse"))) {
        for (int i = position.index + 1; i < run.sent.size(); ++i) {
            if (IsStoreLine(run.sent[i]))
                broken << QStringLiteral("sent %1 after the spoiled answer").arg(CommandLine(run.sent[i]));
        }
        // Nor does a loader get flash contents after it.
        if (FirstLoaderBytes(run, position.index + 1) >= 0)
            broken << QStringLiteral("a loader got bytes after the spoiled answer");
    }
    return broken;
}

QStringList JudgeSameAsClean(const MatrixCommand &command, const Outcome &clean, const Outcome &run)
{
    return Check(command, {{0}, {}, true, command.tracesParts}, clean, run);
}

} // namespace kalvo::testing::matrix
