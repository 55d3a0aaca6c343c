// The texts of the window "Archiv" for a device's own data and its history of who did what.
#include "DeviceCaptions.h"

#include "gui/Phrases.h"

namespace kalvo::archive::ui {

namespace {

const gui::LanguageTexts &Row(DeviceCaption caption)
{
    // Columns: deutsch, englisch, französisch, italienisch, tschechisch, nederlandske, spain.
    static const gui::LanguageTexts kTexts[] = {
        {u"Gerätedaten ...", u"Device data ...", u"Données de l'appareil ...", u"Dati dell'apparecchio ...",
         u"Údaje přístroje ...", u"Apparaatgegevens ...", u"Datos del aparato ..."},
        {u"Gerät %1 bei %2", u"Device %1 at %2", u"Appareil %1 chez %2", u"Apparecchio %1 presso %2",
         u"Přístroj %1 u %2", u"Apparaat %1 bij %2", u"Aparato %1 en %2"},
        {u"Kunde:", u"Customer:", u"Client :", u"Cliente:", u"Zákazník:", u"Klant:", u"Cliente:"},
        {u"Typ:", u"Type:", u"Type :", u"Tipo:", u"Typ:", u"Type:", u"Tipo:"},
        {u"leer: %1 (aus dem Protokoll)", u"empty: %1 (from the record)", u"vide : %1 (du procès-verbal)",
         u"vuoto: %1 (dal verbale)", u"prázdné: %1 (z protokolu)", u"leeg: %1 (uit het testrapport)",
         u"vacío: %1 (del informe)"},
        {u"Hersteller:", u"Manufacturer:", u"Fabricant :", u"Produttore:", u"Výrobce:", u"Fabrikant:",
         u"Fabricante:"},
        {u"Standort:", u"Location:", u"Emplacement :", u"Ubicazione:", u"Umístění:", u"Locatie:",
         u"Ubicación:"},
        {u"Bemerkungen:", u"Remarks:", u"Remarques :", u"Note:", u"Poznámky:", u"Opmerkingen:",
         u"Observaciones:"},
        {u"außer Betrieb", u"out of service", u"hors service", u"fuori servizio", u"mimo provoz",
         u"buiten gebruik", u"fuera de servicio"},
        {u"ausgemustert (nicht mehr fällig)", u"retired (no longer due)", u"réformé (plus d'échéance)",
         u"dismesso (non più in scadenza)", u"vyřazeno (už není splatné)", u"afgevoerd (niet meer te testen)",
         u"retirado (ya no vence)"},
        {u"Zuletzt geprüft %1, nächste Prüfung %2, Vorschrift %3",
         u"Last tested %1, next test %2, regulation %3", u"Dernier essai %1, prochain essai %2, norme %3",
         u"Ultima prova %1, prossima prova %2, norma %3",
         u"Naposledy zkoušeno %1, další zkouška %2, předpis %3",
         u"Laatst getest %1, volgende test %2, voorschrift %3",
         u"Último ensayo %1, próximo ensayo %2, norma %3"},
        {u"Wer hat was getan", u"Who did what", u"Qui a fait quoi", u"Chi ha fatto cosa", u"Kdo co udělal",
         u"Wie deed wat", u"Quién hizo qué"},
        {u"Zeitpunkt", u"When", u"Quand", u"Quando", u"Kdy", u"Wanneer", u"Cuándo"},
        {u"Wer", u"Who", u"Qui", u"Chi", u"Kdo", u"Wie", u"Quién"},
        {u"Was", u"What", u"Quoi", u"Cosa", u"Co", u"Wat", u"Qué"},
        {u"Einzelheiten", u"Details", u"Détails", u"Dettagli", u"Podrobnosti", u"Details", u"Detalles"},
        {u"Import %1", u"Import %1", u"Importation %1", u"Importazione %1", u"Import %1", u"Import %1",
         u"Importación %1"},
        {u"%1 neu, %2 schon im Archiv", u"%1 new, %2 already archived", u"%1 nouveaux, %2 déjà archivés",
         u"%1 nuovi, %2 già archiviati", u"%1 nových, %2 už v archivu", u"%1 nieuw, %2 al in het archief",
         u"%1 nuevos, %2 ya archivados"},
        {u"eigenes Intervall (Monate)", u"own interval (months)", u"intervalle propre (mois)",
         u"intervallo proprio (mesi)", u"vlastní interval (měsíce)", u"eigen interval (maanden)",
         u"intervalo propio (meses)"},
        {u"Intervall der Vorschrift %1 (Monate)", u"interval of regulation %1 (months)",
         u"intervalle de la norme %1 (mois)", u"intervallo della norma %1 (mesi)",
         u"interval předpisu %1 (měsíce)", u"interval van voorschrift %1 (maanden)",
         u"intervalo de la norma %1 (meses)"},
        {u"ja", u"yes", u"oui", u"sì", u"ano", u"ja", u"sí"},
        {u"nein", u"no", u"non", u"no", u"ne", u"nee", u"no"},
        {u"wie Vorschrift", u"as regulation", u"selon la norme", u"come norma", u"dle předpisu",
         u"volgens voorschrift", u"según norma"},
        {u"Bitte zuerst ein Protokoll des Geräts wählen.", u"Please choose a record of the device first.",
         u"Veuillez d'abord choisir un procès-verbal de l'appareil.",
         u"Scegliere prima un verbale dell'apparecchio.", u"Nejprve vyberte protokol přístroje.",
         u"Kies eerst een testrapport van het apparaat.", u"Elija primero un informe del aparato."},
    };
    static_assert(std::size(kTexts) == static_cast<size_t>(DeviceCaption::ChooseRecord) + 1);
    return kTexts[static_cast<size_t>(caption)];
}

} // namespace

QString DeviceCaptionText(DeviceCaption caption, const QString &language)
{
    return gui::InLanguage(Row(caption), language);
}

} // namespace kalvo::archive::ui
