// Set files: test specifications kept on the PC, three lines a record, and the commands that store them.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <array>
#include <optional>

namespace kalvo::link {
class Prompter;
}

namespace kalvo::specdb {

// The three lines of one record: what follows "prx!add ", "prx!add &1" and "prx!add &13".
using SetGroup = std::array<QByteArray, 3>;

// The most a set text may hold: ten records of the widest kind.
constexpr qsizetype kMaxSetText = 24000;
inline const QString kSetTextTooLongText = QStringLiteral("nur 10 Datensätze möglich");
inline const QString kSetFileFilter = QStringLiteral("Prüfabläufe (*.set)|*.set");
// The file that remembers which set file was open last.
inline const QString kLastSetFileName = QStringLiteral("prfname.txt");

// The lines of a set text: each ends at CR LF (a lone LF or CR is taken too); a last line without
// a line end counts.
QList<QByteArray> SetLines(const QByteArray &text);
// Every record of a set text, in groups of three lines. Blank lines at the end are no record; a
// last group of fewer than three lines is a FormatError naming `where` and its first line. A
// control character in a record's line (it would go to the tester inside "prx!add ") is a
// FormatError naming the line.
QList<SetGroup> ParseSetText(const QByteArray &text, const QString &where);
// The whole records of a set text, as ParseSetText, but lines behind the last whole record are no
// error: their number goes to `leftOver`, as the tester's own upload leaves them out.
QList<SetGroup> WholeSetGroups(const QByteArray &text, const QString &where, int &leftOver);
// The first record of a set text (its first three lines; more lines are not looked at). Fewer
// than three lines, or a control character in them, is a FormatError naming `where`.
SetGroup FirstSetGroup(const QByteArray &text, const QString &where);
// The set text of records: three lines each, CR LF after every line.
QByteArray SetText(const QList<SetGroup> &groups);

// "prx!add " + line 1, "prx!add &1" + line 2, "prx!add &13" + line 3 (without CR).
std::array<QByteArray, 3> SetCommands(const SetGroup &group);

// The whole of a set file, or nullopt after telling the user why not: it cannot be read, or it
// holds more than kMaxSetText characters ("nur 10 Datensätze möglich").
std::optional<QByteArray> ReadSetFile(const QString &path, link::Prompter &prompter);

} // namespace kalvo::specdb
