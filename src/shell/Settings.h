// The settings file "Q417.ini": port, port number, language and the update-without-version-check option.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace kalvo::shell {

inline const QString kSettingsFileName = QStringLiteral("Q417.ini");

struct Settings {
    QString portName = QStringLiteral("COM 1"); // upper-cased as the chooser shows it
    int portNumber = 1;                         // numeric value of line 1; 0 when not a number
    std::optional<QString> language;            // absent when the file has no line 2
    bool updateWithoutVersionCheck = false;     // line 4: non-zero switches it on
    bool fromFile = false;
};

// The value of one settings line: the text before the first ";", the whole line when there is
// no ";" or the ";" is its first character.
QByteArray SettingsLineValue(const QByteArray &line);
// Lines 0, 1, 2 and 4 of the settings text; every other line is ignored.
Settings ParseSettings(const QByteArray &text);
// "Q417.ini" from `dir` (the current directory by default); the defaults when it is missing.
Settings ReadSettings(const QString &dir = QString());

} // namespace kalvo::shell
