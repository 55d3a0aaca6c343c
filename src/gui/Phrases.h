// The windows' own short texts (status bar, questions) in the seven languages of the program.
#pragma once

#include <QString>
#include <array>

namespace kalvo::gui {

enum class Phrase {
    NotConnected,
    Connecting,
    Connected, // %1 name, %2 firmware ("Firmware V 1.52")
    LineLost,
    Running, // %1 the operation
    Done,    // %1 the operation
    Failed,  // %1 the operation
    LimitStored,
    ConfigurationStored,
    ClockSet,
    NameStored,
    ModemStored,
    FileSaved,   // %1 the file
    RecordsRead, // %1 how many (CountedPhrase)
    CalibrationBackedUp,
    CalibrationRestored,
    ReplaceFile, // %1 the file
};
constexpr Phrase kLastPhrase = Phrase::ReplaceFile;

// One text in the seven languages, in the order of link::LanguageColumns().
using LanguageTexts = std::array<const char16_t *, 7>;
// The text of `language` (the language table's names: "deutsch", "englisch", ...); German for a
// name it does not know.
QString InLanguage(const LanguageTexts &texts, const QString &language);

// `phrase` in `language` (the language table's names: "deutsch", "englisch", ...); German for
// a name it does not know.
QString PhraseText(Phrase phrase, const QString &language);
// A phrase with a number, in the form the language uses for it ("1 Protokoll gelesen").
QString CountedPhrase(Phrase phrase, qsizetype count, const QString &language);

} // namespace kalvo::gui
