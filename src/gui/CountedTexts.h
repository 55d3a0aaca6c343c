// Texts with a number in them, in the form each language uses for that number.
#pragma once

#include "Phrases.h"

namespace kalvo::gui {

// Each language's cell holds its forms separated by "|", each with "%1" for the number:
// "one|other" ("%1 Protokoll|%1 Protokolle"), or for Czech "one|few|many" (1; 2 to 4; 0 and 5 on).
// A cell with one form serves every number.
QString CountedText(const LanguageTexts &forms, qsizetype count, const QString &language);

} // namespace kalvo::gui
