// The texts of the database window and its editor in the program's seven languages.
#pragma once

#include <QString>

namespace kalvo::specdb::ui {

enum class DbCaption {
    ReadStore,     // readDB
    StoreInTester, // MP
    DeleteAll,     // ClearDB
    SaveAndStore,  // speichern
    LoadSetFiles,  // laden
    OpenSetFile,   // oeffnen
    Close,         // PrfAbbrechen
    StoreSetFiles, // what MP does with the file lists shown
    StoreRecord,   // what MP does with the editor's record
    DeleteRecord,  // the right mouse button on an entry
    Regulation,
    ProtectionClass,
    ClassEntry, // %1 the class in Roman numerals
    Type,
    TypeNone,
    AppliedParts,
    SwitchPosition,
    InsulatedParts,
    SingleFaultsOpen,
    SingleFaults,
    SingleFault0,
    Limits,
    LooserThanRegulation,
    SetFile,
};

// `caption` in `language` (the language table's names); German for a name it does not know.
QString DbText(DbCaption caption, const QString &language);

} // namespace kalvo::specdb::ui
