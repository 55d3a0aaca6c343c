// Texts of the program's own that come in the seven languages of the language table, and counted
// nouns that read right in each of them ("1 Prüfprotokoll", "3 protokoly", "5 protokolů").
#pragma once

#include <QString>
#include <array>

namespace kalvo::link {

// One text in the seven languages, in the order of LanguageColumns().
using LanguageTexts = std::array<const char16_t *, 7>;

// The text of `language` (the language table's names: "deutsch", "englisch", ...); German for a
// name it does not know.
QString InLanguage(const LanguageTexts &texts, const QString &language);

// `count` and the noun in the form the number takes. Each language's cell holds the forms
// separated by "|": singular and plural, and for Czech singular, 2 to 4, and 5 or more.
QString CountedNoun(int count, const LanguageTexts &forms, const QString &language);

} // namespace kalvo::link
