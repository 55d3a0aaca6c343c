// The texts of the window "Archiv" for backups, in the program's seven languages.
#pragma once

#include <QString>

namespace kalvo::archive::ui {

enum class BackupCaption {
    Menu,
    Backup,
    Restore,
    Written,         // %1 the file, %2 how many records
    Restored,        // %1 the file, %2 how many records
    RestoreQuestion, // %1 the file, %2 the archive
    NoneYet,
    TooOld, // %1 the date of the last backup
    FileFilter,
};

// `caption` in `language` (the language table's names); German for a name it does not know.
QString BackupText(BackupCaption caption, const QString &language);

} // namespace kalvo::archive::ui
