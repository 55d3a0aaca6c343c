// The texts of the print-template entries in the program's seven languages.
#pragma once

#include <QString>

namespace kalvo::update::ui {

enum class TemplateCaption {
    NumberLabel,     // the label of the template number entry
    NoSuchTemplate,  // %1 the number typed
    ReplaceInTester, // %1 the slot, %2 the file
};

// `caption` in `language` (the language table's names); German for a name it does not know.
QString TemplateCaptionText(TemplateCaption caption, const QString &language);

} // namespace kalvo::update::ui
