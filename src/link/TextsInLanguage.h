// Texts of the program's own that come in the seven languages of the language table, and counted
// texts with a number that read right in each of them ("1 Prüfprotokoll", "3 protokoly", "5 protokolů").
#pragma once

#include <QString>
#include <array>

namespace kalvo::link {

// One text in the seven languages, in the order of LanguageColumns().
using LanguageTexts = std::array<const char16_t *, 7>;

// The text of `language` (the language table's names: "deutsch", "englisch", ...); German for a
// name it does not know.
QString InLanguage(const LanguageTexts &texts, const QString &language);

// A text with a number in it, in the form `language` uses for `count`. Each language's cell holds
// its forms separated by "|", each with "%1" for the number: "one|other" ("%1 Protokoll|%1
// Protokolle"; French counts 0 like 1), or for Czech "one|few|many" (1; 2 to 4; 0 and 5 on). A
// cell with one form serves every number.
QString CountedText(const LanguageTexts &forms, qsizetype count, const QString &language);

} // namespace kalvo::link
