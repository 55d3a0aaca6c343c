// kalvo-cli's own usage texts in each language of the language switch.
#include "CliTexts.h"

#include "CliCommand.h"

#include "link/LanguageTable.h"
#include "shell/Settings.h"

#include <array>

namespace kalvo::cli {

namespace {

constexpr size_t kLanguages = 7;
using Row = std::array<const char *, kLanguages>;

// One row per text, one column per language in the order of link::LanguageColumns(): deutsch,
// englisch, französisch, italienisch, tschechisch, nederlandske, spain.
const Row &RowOf(UsageText text)
{
    static const Row kUnknownOption{"unbekannte Option %1",   "unknown option %1", "option inconnue %1",
                                    "opzione sconosciuta %1", "neznámá volba %1",  "onbekende optie %1",
                                    "opción desconocida %1"};
    static const Row kNeedsValue{"%1 braucht einen Wert", "%1 needs a value",    "%1 demande une valeur",
                                 "%1 richiede un valore", "%1 vyžaduje hodnotu", "%1 heeft een waarde nodig",
                                 "%1 necesita un valor"};
    static const Row kTakesNoValue{
        "%1 nimmt keinen Wert", "%1 takes no value",    "%1 ne prend pas de valeur", "%1 non accetta valori",
        "%1 nepřijímá hodnotu", "%1 neemt geen waarde", "%1 no admite valor"};
    static const Row kNoCommand{"kein Befehl angegeben",     "no command given",
                                "aucune commande indiquée",  "nessun comando indicato",
                                "nebyl zadán žádný příkaz",  "geen opdracht opgegeven",
                                "no se indicó ninguna orden"};
    static const Row kUnknownCommand{"unbekannter Befehl %1",  "unknown command %1", "commande inconnue %1",
                                     "comando sconosciuto %1", "neznámý příkaz %1",  "onbekende opdracht %1",
                                     "orden desconocida %1"};
    static const Row kDidYouMean{"meinten Sie %1?",     "did you mean %1?",       "vouliez-vous dire %1 ?",
                                 "forse intendeva %1?", "měli jste na mysli %1?", "bedoelde u %1?",
                                 "¿quiso decir %1?"};
    static const Row kOr{" oder ", " or ", " ou ", " o ", " nebo ", " of ", " o "};
    static const Row kTimeoutSeconds{"--timeout braucht eine Zahl von Sekunden größer 0",
                                     "--timeout needs a number of seconds greater than 0",
                                     "--timeout demande un nombre de secondes supérieur à 0",
                                     "--timeout richiede un numero di secondi maggiore di 0",
                                     "--timeout vyžaduje počet sekund větší než 0",
                                     "--timeout heeft een aantal seconden groter dan 0 nodig",
                                     "--timeout necesita un número de segundos mayor que 0"};
    static const Row kUnknownArgument{"unbekanntes Argument %1", "unknown argument %1",
                                      "argument inconnu %1",     "argomento sconosciuto %1",
                                      "neznámý argument %1",     "onbekend argument %1",
                                      "argumento desconocido %1"};
    static const Row kNotANumber{"%1 muss eine Zahl sein, nicht %2", "%1 must be a number, not %2",
                                 "%1 doit être un nombre, pas %2",   "%1 deve essere un numero, non %2",
                                 "%1 musí být číslo, ne %2",         "%1 moet een getal zijn, niet %2",
                                 "%1 debe ser un número, no %2"};
    switch (text) {
    case UsageText::UnknownOption: return kUnknownOption;
    case UsageText::NeedsValue: return kNeedsValue;
    case UsageText::TakesNoValue: return kTakesNoValue;
    case UsageText::NoCommand: return kNoCommand;
    case UsageText::UnknownCommand: return kUnknownCommand;
    case UsageText::DidYouMean: return kDidYouMean;
    case UsageText::Or: return kOr;
    case UsageText::TimeoutSeconds: return kTimeoutSeconds;
    case UsageText::UnknownArgument: return kUnknownArgument;
    case UsageText::NotANumber: return kNotANumber;
    }
    return kUnknownArgument;
}

} // namespace

QString UsageTextIn(const QString &language, UsageText text)
{
    const auto &columns = link::LanguageColumns();
    static_assert(std::tuple_size_v<std::remove_cvref_t<decltype(columns)>> == kLanguages);
    size_t at = 0;
    for (size_t i = 0; i < columns.size(); ++i)
        if (columns[i].name == language)
            at = i;
    return QString::fromUtf8(RowOf(text)[at]);
}

QString UsageLanguage(const QString &languageOption)
{
    if (link::FindLanguage(languageOption))
        return languageOption;
    return shell::ReadSettings().language.value_or(QStringLiteral("deutsch"));
}

QString UsageError::In(const QString &language) const
{
    if (!kind)
        return text;
    QString result = UsageTextIn(language, *kind);
    for (const QString &arg : args)
        result = result.arg(arg);
    return result;
}

} // namespace kalvo::cli
