// The settings file "Q417.ini": port, port number, language and the update-without-version-check option.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace kalvo::shell {

inline const QString kSettingsFileName = QStringLiteral("Q417.ini");

struct Settings {
    QString portName = QStringLiteral("COM 1"); // upper-cased as the chooser shows it
    int portNumber = 1;                         // numeric value of line 1; 0 when not a number
    std::optional<QString> language;            // absent when the file has no line 2
    bool updateWithoutVersionCheck = false;     // line 4: non-zero switches it on
    bool fromFile = false;
    // What could not be used as it stands (a number out of range, an oversized file), each with
    // what applies instead: for the user, not an error.
    QStringList warnings;
};
// Port numbers beyond this are no serial port; a number on line 4 beyond this range is no option.
constexpr qint64 kMaxPortNumber = 255;
constexpr qint64 kOptionLimit = 2147483647;
// The values stand in the first five lines; nothing beyond this is read.
constexpr qint64 kMaxSettingsFileSize = 64 * 1024;

// The value of one settings line: the text before the first ";", the whole line when there is
// no ";" or the ";" is its first character.
QByteArray SettingsLineValue(const QByteArray &line);
// Lines 0, 1, 2 and 4 of the settings text; every other line is ignored. A number that is no
// number counts as 0; one out of range keeps the default and adds a warning.
Settings ParseSettings(const QByteArray &text);
// "Q417.ini" from `dir` (the current directory by default); the defaults when it is missing.
// Of a file larger than kMaxSettingsFileSize only that much is read, with a warning.
Settings ReadSettings(const QString &dir = QString());

} // namespace kalvo::shell
