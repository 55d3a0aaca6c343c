// kalvo-cli's own usage texts in each language of the language switch.
#include "CliTexts.h"

#include "CliCommand.h"

#include "link/LanguageTable.h"
#include "shell/Settings.h"

#include <array>
#include <iterator>

namespace kalvo::cli {

namespace {

constexpr size_t kLanguages = 7;
using Row = std::array<const char *, kLanguages>;

// One row per UsageText, in its order; one column per language in the order of
// link::LanguageColumns(): deutsch, englisch, französisch, italienisch, tschechisch,
// nederlandske, spain.
const Row kRows[] = {
    {"unbekannte Option %1", "unknown option %1", "option inconnue %1", "opzione sconosciuta %1",
     "neznámá volba %1", "onbekende optie %1", "opción desconocida %1"},
    {"%1 braucht einen Wert", "%1 needs a value", "%1 demande une valeur", "%1 richiede un valore",
     "%1 vyžaduje hodnotu", "%1 heeft een waarde nodig", "%1 necesita un valor"},
    {"%1 nimmt keinen Wert", "%1 takes no value", "%1 ne prend pas de valeur", "%1 non accetta valori",
     "%1 nepřijímá hodnotu", "%1 neemt geen waarde", "%1 no admite valor"},
    {"kein Befehl angegeben", "no command given", "aucune commande indiquée", "nessun comando indicato",
     "nebyl zadán žádný příkaz", "geen opdracht opgegeven", "no se indicó ninguna orden"},
    {"unbekannter Befehl %1", "unknown command %1", "commande inconnue %1", "comando sconosciuto %1",
     "neznámý příkaz %1", "onbekende opdracht %1", "orden desconocida %1"},
    {"meinten Sie %1?", "did you mean %1?", "vouliez-vous dire %1 ?", "forse intendeva %1?",
     "měli jste na mysli %1?", "bedoelde u %1?", "¿quiso decir %1?"},
    {" oder ", " or ", " ou ", " o ", " nebo ", " of ", " o "},
    {"--timeout braucht eine Zahl von Sekunden größer 0",
     "--timeout needs a number of seconds greater than 0",
     "--timeout demande un nombre de secondes supérieur à 0",
     "--timeout richiede un numero di secondi maggiore di 0", "--timeout vyžaduje počet sekund větší než 0",
     "--timeout heeft een aantal seconden groter dan 0 nodig",
     "--timeout necesita un número de segundos mayor que 0"},
    {"unbekanntes Argument %1", "unknown argument %1", "argument inconnu %1", "argomento sconosciuto %1",
     "neznámý argument %1", "onbekend argument %1", "argumento desconocido %1"},
    {"%1 muss eine Zahl sein, nicht %2", "%1 must be a number, not %2", "%1 doit être un nombre, pas %2",
     "%1 deve essere un numero, non %2", "%1 musí být číslo, ne %2", "%1 moet een getal zijn, niet %2",
     "%1 debe ser un número, no %2"},
    {"%1 muss zwischen %2 und %3 liegen, nicht %4", "%1 must be between %2 and %3, not %4",
     "%1 doit être entre %2 et %3, pas %4", "%1 deve essere tra %2 e %3, non %4",
     "%1 musí být mezi %2 a %3, ne %4", "%1 moet tussen %2 en %3 liggen, niet %4",
     "%1 debe estar entre %2 y %3, no %4"},
    {"%1 muss einer von %2 sein, nicht %3", "%1 must be one of %2, not %3", "%1 doit être l'un de %2, pas %3",
     "%1 deve essere uno di %2, non %3", "%1 musí být jedno z %2, ne %3", "%1 moet een van %2 zijn, niet %3",
     "%1 debe ser uno de %2, no %3"},
    {"%1 ist keins von %2", "%1 is none of %2", "%1 n'est aucun de %2", "%1 non è nessuno di %2",
     "%1 není žádné z %2", "%1 is geen van %2", "%1 no es ninguno de %2"},
    {"%1 braucht ein Datum wie 2024-03-01 oder 01.03.2024, nicht %2",
     "%1 needs a date such as 2024-03-01 or 01.03.2024, not %2",
     "%1 demande une date comme 2024-03-01 ou 01.03.2024, pas %2",
     "%1 richiede una data come 2024-03-01 o 01.03.2024, non %2",
     "%1 vyžaduje datum jako 2024-03-01 nebo 01.03.2024, ne %2",
     "%1 heeft een datum nodig zoals 2024-03-01 of 01.03.2024, niet %2",
     "%1 necesita una fecha como 2024-03-01 o 01.03.2024, no %2"},
    {"%1 steht nicht in variable.mas", "%1 is not in variable.mas", "%1 ne figure pas dans variable.mas",
     "%1 non è in variable.mas", "%1 není ve variable.mas", "%1 staat niet in variable.mas",
     "%1 no está en variable.mas"},
    {"%1 passt zu keiner Maske (*.hex, b*.p, a*.p, h*.p)", "%1 fits no mask (*.hex, b*.p, a*.p, h*.p)",
     "%1 ne correspond à aucun masque (*.hex, b*.p, a*.p, h*.p)",
     "%1 non corrisponde a nessuna maschera (*.hex, b*.p, a*.p, h*.p)",
     "%1 neodpovídá žádné masce (*.hex, b*.p, a*.p, h*.p)",
     "%1 past bij geen masker (*.hex, b*.p, a*.p, h*.p)",
     "%1 no coincide con ninguna máscara (*.hex, b*.p, a*.p, h*.p)"},
    {"%1 ist kein Verzeichnis", "%1 is not a folder", "%1 n'est pas un dossier", "%1 non è una cartella",
     "%1 není složka", "%1 is geen map", "%1 no es una carpeta"},
    {"erwartet: %1", "expected: %1", "attendu : %1", "atteso: %1", "očekáváno: %1", "verwacht: %1",
     "se esperaba: %1"},
};
static_assert(std::size(kRows) == static_cast<size_t>(UsageText::Expected) + 1, "a row for every UsageText");

} // namespace

QString UsageTextIn(const QString &language, UsageText text)
{
    const auto &columns = link::LanguageColumns();
    static_assert(std::tuple_size_v<std::remove_cvref_t<decltype(columns)>> == kLanguages);
    size_t at = 0;
    for (size_t i = 0; i < columns.size(); ++i)
        if (columns[i].name == language)
            at = i;
    return QString::fromUtf8(kRows[static_cast<size_t>(text)][at]);
}

QString UsageLanguage(const QString &languageOption)
{
    if (link::FindLanguage(languageOption))
        return languageOption;
    return shell::ReadSettings().language.value_or(QStringLiteral("deutsch"));
}

QString UsageError::In(const QString &language) const
{
    QString result = UsageTextIn(language, kind);
    for (const QString &arg : args)
        result = result.arg(arg);
    return result;
}

} // namespace kalvo::cli
