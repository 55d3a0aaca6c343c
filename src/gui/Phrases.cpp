// The windows' own short texts (status bar, questions) in the seven languages of the program.
#include "Phrases.h"

#include "link/LanguageTable.h"
#include "link/TextsInLanguage.h"

#include <array>

namespace kalvo::gui {

namespace {
// Columns in the order of link::LanguageColumns(): deutsch, englisch, französisch, italienisch,
// tschechisch, nederlandske, spain.
using Row = LanguageTexts;

const Row &RowOf(Phrase phrase)
{
    static const Row rows[] = {
        {u"nicht verbunden", u"not connected", u"non connecté", u"non connesso", u"nepřipojeno",
         u"niet verbonden", u"no conectado"},
        {u"verbinde …", u"connecting …", u"connexion …", u"connessione …", u"připojování …", u"verbinden …",
         u"conectando …"},
        {u"verbunden: %1, %2", u"connected: %1, %2", u"connecté : %1, %2", u"connesso: %1, %2",
         u"připojeno: %1, %2", u"verbonden: %1, %2", u"conectado: %1, %2"},
        {u"Verbindung verloren", u"line lost", u"liaison perdue", u"connessione persa", u"spojení ztraceno",
         u"verbinding verbroken", u"conexión perdida"},
        {u"%1 …", u"%1 …", u"%1 …", u"%1 …", u"%1 …", u"%1 …", u"%1 …"},
        {u"%1: fertig", u"%1: done", u"%1 : terminé", u"%1: completato", u"%1: hotovo", u"%1: klaar",
         u"%1: hecho"},
        {u"%1: fehlgeschlagen", u"%1: failed", u"%1 : échec", u"%1: non riuscito", u"%1: selhalo",
         u"%1: mislukt", u"%1: falló"},
        {u"Grenzwert gespeichert", u"Limit value stored", u"Valeur limite enregistrée",
         u"Valore limite memorizzato", u"Mezní hodnota uložena", u"Grenswaarde opgeslagen",
         u"Valor límite guardado"},
        {u"Konfiguration gespeichert", u"Configuration stored", u"Configuration enregistrée",
         u"Configurazione memorizzata", u"Konfigurace uložena", u"Configuratie opgeslagen",
         u"Configuración guardada"},
        {u"Uhr gestellt", u"Clock set", u"Horloge réglée", u"Orologio impostato", u"Hodiny nastaveny",
         u"Klok ingesteld", u"Reloj ajustado"},
        {u"Name gespeichert", u"Name stored", u"Nom enregistré", u"Nome memorizzato", u"Název uložen",
         u"Naam opgeslagen", u"Nombre guardado"},
        {u"Modemeinstellungen gespeichert", u"Modem settings stored", u"Réglages du modem enregistrés",
         u"Impostazioni modem memorizzate", u"Nastavení modemu uloženo", u"Modeminstellingen opgeslagen",
         u"Ajustes del módem guardados"},
        {u"Datei gespeichert: %1", u"File saved: %1", u"Fichier enregistré : %1", u"File salvato: %1",
         u"Soubor uložen: %1", u"Bestand opgeslagen: %1", u"Archivo guardado: %1"},
        {u"%1 Protokoll gelesen|%1 Protokolle gelesen", u"%1 record read|%1 records read",
         u"%1 procès-verbal lu|%1 procès-verbaux lus", u"%1 protocollo letto|%1 protocolli letti",
         u"Načten %1 protokol|Načteny %1 protokoly|Načteno %1 protokolů",
         u"%1 protocol gelezen|%1 protocollen gelezen", u"%1 protocolo leído|%1 protocolos leídos"},
        {u"Kalibrierwerte gesichert", u"Calibration values backed up", u"Valeurs d'étalonnage sauvegardées",
         u"Valori di taratura salvati", u"Kalibrační hodnoty zálohovány", u"Kalibratiewaarden opgeslagen",
         u"Valores de calibración guardados"},
        {u"Kalibrierwerte zurückgespeichert", u"Calibration values restored",
         u"Valeurs d'étalonnage restaurées", u"Valori di taratura ripristinati",
         u"Kalibrační hodnoty obnoveny", u"Kalibratiewaarden teruggezet",
         u"Valores de calibración restaurados"},
        {u"Die Datei %1 gibt es schon. Ersetzen?", u"The file %1 already exists. Replace it?",
         u"Le fichier %1 existe déjà. Le remplacer ?", u"Il file %1 esiste già. Sostituirlo?",
         u"Soubor %1 již existuje. Nahradit?", u"Het bestand %1 bestaat al. Vervangen?",
         u"El archivo %1 ya existe. ¿Reemplazarlo?"},
    };
    static_assert(std::size(rows) == static_cast<size_t>(kLastPhrase) + 1);
    return rows[static_cast<int>(phrase)];
}
} // namespace

QString PhraseText(Phrase phrase, const QString &language)
{
    return InLanguage(RowOf(phrase), language);
}

QString CountedPhrase(Phrase phrase, qsizetype count, const QString &language)
{
    return link::CountedText(RowOf(phrase), count, language);
}

QString InLanguage(const LanguageTexts &texts, const QString &language)
{
    return link::InLanguage(texts, language);
}

} // namespace kalvo::gui
