// What each of the 22 limit boxes measures and each switch position stands for, in the program's
// seven languages.
#include "DefaultLimits.h"

#include "link/LanguageTable.h"

#include <array>

namespace kalvo::specdb {

namespace {

// The column of `language` in the tables below, 0 (German) for a name the program does not know.
size_t ColumnOf(const QString &language)
{
    const std::optional<link::LanguageColumn> column = link::FindLanguage(language);
    return column ? static_cast<size_t>(column->column - 1) : 0;
}

} // namespace

QString SwitchMeaningIn(const QByteArray &switchCode, const QString &language)
{
    // The German texts are the table's (DefaultLimitTable); these are the other six languages'.
    static const std::pair<const char *, std::array<const char16_t *, 6>> kMeanings[] = {
        {"00", {u"general", u"général", u"generale", u"obecné", u"algemeen", u"general"}},
        {"05",
         {u"Mains 115 V (reference voltage up to 150 V)",
          u"Réseau 115 V (tension de référence jusqu'à 150 V)",
          u"Rete 115 V (tensione di riferimento fino a 150 V)", u"Síť 115 V (referenční napětí do 150 V)",
          u"Net 115 V (referentiespanning tot 150 V)", u"Red 115 V (tensión de referencia hasta 150 V)"}},
        {"01",
         {u"without earthed accessible parts, mineral insulation, mobile X-ray unit with protective "
          u"conductor",
          u"sans parties accessibles mises à la terre, isolation minérale, appareil de radiologie mobile "
          u"avec "
          u"conducteur de protection",
          u"senza parti accessibili collegate a terra, isolamento minerale, apparecchio radiologico mobile "
          u"con "
          u"conduttore di protezione",
          u"bez uzemněných přístupných částí, minerální izolace, pojízdný rentgen s ochranným vodičem",
          u"zonder geaarde aanraakbare delen, minerale isolatie, mobiel röntgenapparaat met "
          u"beschermingsleider",
          u"sin partes accesibles puestas a tierra, aislamiento mineral, equipo de rayos X móvil con "
          u"conductor de protección"}},
        {"02",
         {u"permanently connected with protective conductor",
          u"raccordé à demeure avec conducteur de protection",
          u"installato in modo fisso con conduttore di protezione", u"pevně připojený s ochranným vodičem",
          u"vast aangesloten met beschermingsleider",
          u"conectado de forma permanente con conductor de protección"}},
        {"20",
         {u"mobile X-ray unit without additional protective conductor",
          u"appareil de radiologie mobile sans conducteur de protection supplémentaire",
          u"apparecchio radiologico mobile senza conduttore di protezione supplementare",
          u"pojízdný rentgen bez dodatečného ochranného vodiče",
          u"mobiel röntgenapparaat zonder extra beschermingsleider",
          u"equipo de rayos X móvil sin conductor de protección adicional"}},
        {"Menue",
         {u"chosen on the tester, general values", u"choix sur l'appareil, valeurs générales",
          u"scelta sullo strumento, valori generali", u"volba na přístroji, obecné hodnoty",
          u"keuze op het testapparaat, algemene waarden", u"selección en el equipo, valores generales"}},
    };
    const size_t column = ColumnOf(language);
    if (column == 0)
        return SwitchMeaning(switchCode);
    for (const auto &[code, meanings] : kMeanings) {
        if (switchCode == code)
            return QString::fromUtf16(meanings[column - 1]);
    }
    return {};
}

QString BoxMeaning(int box, const QString &language)
{
    // Columns: deutsch, englisch, französisch, italienisch, tschechisch, nederlandske, spain.
    static const std::array<const char16_t *, 7> kMeanings[kLimitBoxes] = {
        {u"Schutzleiterwiderstand", u"Protective conductor resistance",
         u"Résistance du conducteur de protection", u"Resistenza del conduttore di protezione",
         u"Odpor ochranného vodiče", u"Beschermingsleiderweerstand",
         u"Resistencia del conductor de protección"},
        {u"Kurzschlussprüfung L-N, Mindestwiderstand", u"Short-circuit test L-N, minimum resistance",
         u"Essai de court-circuit L-N, résistance minimale", u"Prova di cortocircuito L-N, resistenza minima",
         u"Zkouška zkratu L-N, minimální odpor", u"Kortsluittest L-N, minimale weerstand",
         u"Prueba de cortocircuito L-N, resistencia mínima"},
        {u"Isolationswiderstand", u"Insulation resistance", u"Résistance d'isolement",
         u"Resistenza di isolamento", u"Izolační odpor", u"Isolatieweerstand", u"Resistencia de aislamiento"},
        {u"Messspannung der Isolationsmessung", u"Test voltage of the insulation measurement",
         u"Tension d'essai de la mesure d'isolement", u"Tensione di prova della misura di isolamento",
         u"Zkušební napětí měření izolace", u"Meetspanning van de isolatiemeting",
         u"Tensión de ensayo de la medición de aislamiento"},
        {u"Schutzleiterstrom / Berührungsstrom", u"Protective conductor current / touch current",
         u"Courant du conducteur de protection / courant de contact",
         u"Corrente nel conduttore di protezione / corrente di contatto",
         u"Proud ochranným vodičem / dotykový proud", u"Beschermingsleiderstroom / aanraakstroom",
         u"Corriente del conductor de protección / corriente de contacto"},
        {u"Schutzkleinspannung", u"Safety extra-low voltage", u"Très basse tension de sécurité",
         u"Bassissima tensione di sicurezza", u"Bezpečné malé napětí", u"Veiligheidslaagspanning",
         u"Muy baja tensión de seguridad"},
        {u"Schutzkleinspannung", u"Safety extra-low voltage", u"Très basse tension de sécurité",
         u"Bassissima tensione di sicurezza", u"Bezpečné malé napětí", u"Veiligheidslaagspanning",
         u"Muy baja tensión de seguridad"},
        {u"Ersatz-Ableitstrom", u"Alternative leakage current", u"Courant de fuite de substitution",
         u"Corrente di dispersione con metodo alternativo", u"Náhradní unikající proud",
         u"Vervangende lekstroom", u"Corriente de fuga sustitutiva"},
        {u"Patientenableitstrom, Netzspannung am Anwendungsteil",
         u"Patient leakage current, mains voltage on the applied part",
         u"Courant de fuite patient, tension réseau sur la partie appliquée",
         u"Corrente di dispersione nel paziente, tensione di rete sulla parte applicata",
         u"Unikající proud pacientem, síťové napětí na příložné části",
         u"Patiëntlekstroom, netspanning op het toegepaste deel",
         u"Corriente de fuga del paciente, tensión de red en la parte aplicable"},
        {u"Erdableitstrom, Normalzustand", u"Earth leakage current, normal condition",
         u"Courant de fuite à la terre, condition normale",
         u"Corrente di dispersione verso terra, condizione normale",
         u"Unikající proud do země, normální stav", u"Aardlekstroom, normale toestand",
         u"Corriente de fuga a tierra, condición normal"},
        {u"Erdableitstrom, erster Fehler", u"Earth leakage current, single fault condition",
         u"Courant de fuite à la terre, premier défaut", u"Corrente di dispersione verso terra, primo guasto",
         u"Unikající proud do země, stav jedné poruchy", u"Aardlekstroom, eerste fout",
         u"Corriente de fuga a tierra, primer defecto"},
        {u"Gehäuse-/Berührungsstrom, Normalzustand", u"Enclosure/touch current, normal condition",
         u"Courant de l'enveloppe / de contact, condition normale",
         u"Corrente dell'involucro/di contatto, condizione normale",
         u"Proud krytem / dotykový proud, normální stav", u"Behuizings-/aanraakstroom, normale toestand",
         u"Corriente de la envolvente / de contacto, condición normal"},
        {u"Gehäuse-/Berührungsstrom, erster Fehler", u"Enclosure/touch current, single fault condition",
         u"Courant de l'enveloppe / de contact, premier défaut",
         u"Corrente dell'involucro/di contatto, primo guasto",
         u"Proud krytem / dotykový proud, stav jedné poruchy", u"Behuizings-/aanraakstroom, eerste fout",
         u"Corriente de la envolvente / de contacto, primer defecto"},
        {u"Patientenableitstrom AC, Normalzustand", u"Patient leakage current AC, normal condition",
         u"Courant de fuite patient AC, condition normale",
         u"Corrente di dispersione nel paziente AC, condizione normale",
         u"Unikající proud pacientem AC, normální stav", u"Patiëntlekstroom AC, normale toestand",
         u"Corriente de fuga del paciente CA, condición normal"},
        {u"Patientenableitstrom AC, erster Fehler", u"Patient leakage current AC, single fault condition",
         u"Courant de fuite patient AC, premier défaut",
         u"Corrente di dispersione nel paziente AC, primo guasto",
         u"Unikající proud pacientem AC, stav jedné poruchy", u"Patiëntlekstroom AC, eerste fout",
         u"Corriente de fuga del paciente CA, primer defecto"},
        {u"Patientenableitstrom DC, Normalzustand", u"Patient leakage current DC, normal condition",
         u"Courant de fuite patient DC, condition normale",
         u"Corrente di dispersione nel paziente DC, condizione normale",
         u"Unikající proud pacientem DC, normální stav", u"Patiëntlekstroom DC, normale toestand",
         u"Corriente de fuga del paciente CC, condición normal"},
        {u"Patientenableitstrom DC, erster Fehler", u"Patient leakage current DC, single fault condition",
         u"Courant de fuite patient DC, premier défaut",
         u"Corrente di dispersione nel paziente DC, primo guasto",
         u"Unikající proud pacientem DC, stav jedné poruchy", u"Patiëntlekstroom DC, eerste fout",
         u"Corriente de fuga del paciente CC, primer defecto"},
        {u"Patientenhilfsstrom AC, Normalzustand", u"Patient auxiliary current AC, normal condition",
         u"Courant auxiliaire patient AC, condition normale",
         u"Corrente ausiliaria nel paziente AC, condizione normale",
         u"Pomocný proud pacientem AC, normální stav", u"Patiënthulpstroom AC, normale toestand",
         u"Corriente auxiliar del paciente CA, condición normal"},
        {u"Patientenhilfsstrom AC, erster Fehler", u"Patient auxiliary current AC, single fault condition",
         u"Courant auxiliaire patient AC, premier défaut",
         u"Corrente ausiliaria nel paziente AC, primo guasto",
         u"Pomocný proud pacientem AC, stav jedné poruchy", u"Patiënthulpstroom AC, eerste fout",
         u"Corriente auxiliar del paciente CA, primer defecto"},
        {u"Patientenhilfsstrom DC, Normalzustand", u"Patient auxiliary current DC, normal condition",
         u"Courant auxiliaire patient DC, condition normale",
         u"Corrente ausiliaria nel paziente DC, condizione normale",
         u"Pomocný proud pacientem DC, normální stav", u"Patiënthulpstroom DC, normale toestand",
         u"Corriente auxiliar del paciente CC, condición normal"},
        {u"Patientenhilfsstrom DC, erster Fehler", u"Patient auxiliary current DC, single fault condition",
         u"Courant auxiliaire patient DC, premier défaut",
         u"Corrente ausiliaria nel paziente DC, primo guasto",
         u"Pomocný proud pacientem DC, stav jedné poruchy", u"Patiënthulpstroom DC, eerste fout",
         u"Corriente auxiliar del paciente CC, primer defecto"},
        {u"Hochspannungsprüfung", u"High-voltage test", u"Essai haute tension", u"Prova ad alta tensione",
         u"Zkouška vysokým napětím", u"Hoogspanningstest", u"Ensayo de alta tensión"},
    };
    if (box < 1 || box > kLimitBoxes)
        return {};
    return QString::fromUtf16(kMeanings[box - 1][ColumnOf(language)]);
}

} // namespace kalvo::specdb
