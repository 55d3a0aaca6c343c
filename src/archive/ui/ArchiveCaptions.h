// The texts of the window "Archiv" in the program's seven languages.
#pragma once

#include <QString>

namespace kalvo::archive::ui {

enum class Caption {
    Title,
    DeviceId,
    Type,
    Customer,
    Text,
    Verdict,
    Regulation,
    All,
    Passed,
    Failed,
    From,
    To,
    DueBefore,
    Search,
    History,
    Records,      // %1 how many (CountedCaption)
    NoDatedTest,  // %1 the device
    DeviceStatus, // %1 the device, %2 last test, %3 next test, %4 months
    ReportsSaved, // %1 how many, %2 the file (CountedCaption)
    RecordsSaved, // %1 how many, %2 the file (CountedCaption)
    ColumnNumber,
    ColumnTestDate,
    ColumnNextTest,
    IntervalsTitle,
    Interval,
    Months,
    OwnInterval, // %1 the device
    Busy,
    SettingsTitle,
    KeepRead,
    Address,
    AddressHint,
    RecordCustomer, // part of the customer field a record carries (Customer: the archive's)
    CustomerOfRead, // the question after a read
};

// `caption` in `language` (the language table's names); German for a name it does not know.
QString CaptionText(Caption caption, const QString &language);
// A caption with a number, in the form the language uses for it ("1 Protokoll", "2 Protokolle").
QString CountedCaption(Caption caption, qsizetype count, const QString &language);

} // namespace kalvo::archive::ui
