// The file names of an update package, and which display language uses which language files.
#pragma once

#include <QByteArray>
#include <QString>

namespace kalvo::link {

// One of the tester's display languages, by the code "dis?" reports.
struct TesterLanguage {
    int code = 1;
    QString menuEntry;   // the language menu entry, e.g. "english"
    QString name;        // the name the language switch takes, e.g. "englisch"
    QString packageCode; // the two letters of its package files, e.g. "gb"
};

// Codes 0 to 6; any other code is English.
TesterLanguage LanguageForCode(int code);

struct PackageFiles {
    QString system;    // "med.hex"
    QString pictures;  // "bilder.p"
    QString sequences; // "ab" + code + ".p"
    QString help;      // "hlf" + code + ".p"
};

// The package files of a language, by its two-letter package code ("ge", "gb", ...).
PackageFiles PackageFilesFor(const QString &packageCode);

} // namespace kalvo::link
