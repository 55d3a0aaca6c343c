// The texts of the window "Archiv" for a device's own data and its history of who did what, in the
// program's seven languages.
#pragma once

#include <QString>

namespace kalvo::archive::ui {

enum class DeviceCaption {
    Button, // the window's button that opens the dialog
    Title,  // %1 the ID-Nr, %2 the customer
    Customer,
    Type,
    TypeHint, // %1 the type its records name
    Manufacturer,
    Location,
    Remarks,
    OutOfService,
    Retired,
    LastAndNext, // %1 last test, %2 next test, %3 the regulation
    HistoryTitle,
    ColumnWhen,
    ColumnWho,
    ColumnWhat,
    ColumnDetails,
    Import,        // %1 the import's number
    ImportDetails, // %1 new records, %2 records known already
    Interval,      // a change of the device's own interval
    RegulationInterval,
    Yes,
    No,
    NoOwnInterval,
    ChooseRecord,
};

// `caption` in `language` (the language table's names); German for a name it does not know.
QString DeviceCaptionText(DeviceCaption caption, const QString &language);

} // namespace kalvo::archive::ui
