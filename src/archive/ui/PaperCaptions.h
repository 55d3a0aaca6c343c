// The texts of the window "Archiv" for signed reports and test labels, in the program's seven
// languages.
#pragma once

#include <QString>

namespace kalvo::archive::ui {

enum class PaperCaption {
    SignedPdf,
    LabelsPdf,
    ReportSettings,
    Company,
    Address,
    Logo,
    Choose,
    Inspector,
    AskInspector,
    LabelsTitle,
    Sheet,
    FirstFree,
    SignedSaved, // %1 how many, %2 the file (CountedPaperCaption)
    LabelsSaved, // %1 how many, %2 the file (CountedPaperCaption)
};

// `caption` in `language` (the language table's names); German for a name it does not know.
QString PaperCaptionText(PaperCaption caption, const QString &language);
QString CountedPaperCaption(PaperCaption caption, qsizetype count, const QString &language);

} // namespace kalvo::archive::ui
