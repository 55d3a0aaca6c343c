// Calibration backups: the tester's 51 calibration entries to a ".cal" file and back.
#pragma once

#include "Variables.h" // LineSink

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::config {

constexpr int kCalibrationEntries = 51; // 0..50
inline const QString kStoreQuestion = QStringLiteral("speichern??");
inline const QString kCalibrationFilter = QStringLiteral("Ascii file (*.cal)|*.cal|(*.*)|*.*");

// "kal?" + n with the blank of the number conversion: "kal? 0" ... "kal? 50".
QByteArray CalibrationReadCommand(int entry);
// The part of a "kal?" answer after its first ";" and before ".Y": "n:a,b", exactly as the tester
// wrote it. Throws link::FormatError when the answer has no ".Y" or what stands there is not entry
// `entry` with two numbers: such a line could not be restored.
QByteArray CalibrationLine(int entry, const QByteArray &command, const QByteArray &answer);
// Whether `text` is one number as the tester writes calibration values: an optional sign, digits
// with an optional decimal point, an optional exponent; blanks around it are allowed.
bool IsCalibrationValue(const QByteArray &text);

// Reads entries 0..50 into `path` (one line each, CR LF) through a QSaveFile: a time-out, a
// refusal or an unusable answer leaves an existing file as it was; the user is told, and the
// error is passed on. `showLine` sees each line as it comes. Returns the lines.
QList<QByteArray> BackupCalibration(link::Link &link, link::Prompter &prompter, const QString &path,
                                    const LineSink &showLine = {});

// The tester's short designation + ".cal"; trailing blanks dropped, characters no file name may
// hold replaced by "_", "Kalvomer.cal" for an empty designation. A device name of Windows (NUL,
// COM1 ...) gets a "_" behind it ("NUL_.cal"), in this name and the next.
QString DefaultBackupName(const QByteArray &shortDesignation);
// The main form's name from the serial number: blanks removed; six 0xFF (an erased number)
// give "error"; 12 characters or more the first 7, ".", the last 3; otherwise the first 8 + ".cal".
QString SerialBackupName(const QByteArray &serialNumber);
// The names a backup is offered under, the one to preset first: the designation's name, then the
// serial number's; a part the tester did not report (only blanks) gives none, and a name already
// offered is not offered twice.
QStringList CalibrationBackupNames(const QByteArray &shortDesignation, const QByteArray &serialNumber);

enum class RestoreSource {
    ServiceForm, // skips empty lines
    MainForm     // also skips lines with "Optionen" or "Kalvomer" (heading lines)
};

struct CalibrationEntry {
    int line = 0;      // 1-based line in the file
    QByteArray number; // as written after "wer!": Str(n), e.g. " 3"
    QByteArray first;  // between the first ":" and the first ","
    QByteArray second; // after the first ","
};

// The entries of a ".cal" file by the skip rules of `source`. Throws link::FormatError naming the
// file and line for a line that is not "n:a,b" with n from 0 to 50 and two numbers, and when the
// file cannot be read or is far larger than any backup.
QList<CalibrationEntry> ReadCalibrationFile(const QString &path, RestoreSource source);

struct RestoreResult {
    int entriesWritten = 0;
    bool stored = false;       // "kal!pgm" was sent and the tester said it stored
    QList<QByteArray> refused; // the lines of the session the tester refused
};
// Reads the whole file first (nothing is sent for a bad file), then "idn!99", "kal!ein", the two
// "wer!" writes per entry, the "speichern??" question ("kal!pgm" only on OK) and "kal!aus".
// A write the tester refuses (".N" or "Protokoll") does not stop the session, but the question
// then names every refused line first. The question says, in `language`, that the values the
// tester keeps are replaced, and by how many entries of which file; Cancel is its default.
// `showLine` sees every line of the file.
RestoreResult RestoreCalibration(link::Link &link, link::Prompter &prompter, const QString &path,
                                 RestoreSource source, const LineSink &showLine = {},
                                 const QString &language = QString());

} // namespace kalvo::config
