// The texts of the database window and its editor in the program's seven languages.
#include "DatabaseCaptions.h"

#include "gui/Phrases.h"

namespace kalvo::specdb::ui {

QString DbText(DbCaption caption, const QString &language)
{
    // Columns: deutsch, englisch, französisch, italienisch, tschechisch, nederlandske, spain.
    static const gui::LanguageTexts kTexts[] = {
        {u"Datenbank lesen", u"Read database", u"Lire la base", u"Leggi database", u"Načíst databázi",
         u"Database lezen", u"Leer base de datos"},
        {u"Im Kalvomer speichern", u"Store in Kalvomer", u"Enregistrer dans le Kalvomer",
         u"Salva nel Kalvomer", u"Uložit do přístroje", u"In Kalvomer opslaan", u"Guardar en el Kalvomer"},
        {u"Alle löschen", u"Delete all", u"Tout supprimer", u"Elimina tutti", u"Smazat vše", u"Alles wissen",
         u"Borrar todo"},
        {u"Speichern", u"Save", u"Enregistrer", u"Salva", u"Uložit", u"Opslaan", u"Guardar"},
        {u"Laden", u"Load", u"Charger", u"Carica", u"Nahrát", u"Laden", u"Cargar"},
        {u"Öffnen", u"Open", u"Ouvrir", u"Apri", u"Otevřít", u"Openen", u"Abrir"},
        {u"Schließen", u"Close", u"Fermer", u"Chiudi", u"Zavřít", u"Sluiten", u"Cerrar"},
        {u"Prüfabläufe speichern", u"Store test sequences", u"Enregistrer les séquences",
         u"Salva sequenze di prova", u"Uložit zkušební postupy", u"Testprocedures opslaan",
         u"Guardar secuencias de ensayo"},
        {u"Prüfablauf speichern", u"Store test sequence", u"Enregistrer la séquence",
         u"Salva sequenza di prova", u"Uložit zkušební postup", u"Testprocedure opslaan",
         u"Guardar secuencia de ensayo"},
        {u"Datensatz löschen", u"Delete record", u"Supprimer l'enregistrement", u"Elimina record",
         u"Smazat záznam", u"Record wissen", u"Borrar registro"},
        {u"Vorschrift", u"Regulation", u"Norme", u"Norma", u"Předpis", u"Voorschrift", u"Norma"},
        {u"Schutzklasse", u"Protection class", u"Classe de protection", u"Classe di protezione",
         u"Třída ochrany", u"Beschermingsklasse", u"Clase de protección"},
        {u"SK %1", u"Class %1", u"Classe %1", u"Classe %1", u"Třída %1", u"Klasse %1", u"Clase %1"},
        {u"Typ", u"Type", u"Type", u"Tipo", u"Typ", u"Type", u"Tipo"},
        {u"ohne", u"none", u"aucun", u"nessuno", u"žádný", u"geen", u"ninguno"},
        {u"Anwendungsteile", u"Applied parts", u"Parties appliquées", u"Parti applicate", u"Příložné části",
         u"Toegepaste delen", u"Partes aplicables"},
        {u"Schalterstellung", u"Switch position", u"Position du commutateur", u"Posizione del selettore",
         u"Poloha přepínače", u"Schakelaarstand", u"Posición del conmutador"},
        {u"Anwendungsteile isoliert", u"Applied parts insulated", u"Parties appliquées isolées",
         u"Parti applicate isolate", u"Příložné části izolované", u"Toegepaste delen geïsoleerd",
         u"Partes aplicables aisladas"},
        {u"Einzelfehler ...", u"Single faults ...", u"Défauts uniques ...", u"Guasti singoli ...",
         u"Jednotlivé poruchy ...", u"Enkelvoudige fouten ...", u"Fallos únicos ..."},
        {u"Einzelfehler", u"Single faults", u"Défauts uniques", u"Guasti singoli", u"Jednotlivé poruchy",
         u"Enkelvoudige fouten", u"Fallos únicos"},
        {u"Einzelfehler 0", u"Single fault 0", u"Défaut unique 0", u"Guasto singolo 0", u"Porucha 0",
         u"Enkelvoudige fout 0", u"Fallo único 0"},
        {u"Grenzwerte", u"Limit values", u"Valeurs limites", u"Valori limite", u"Mezní hodnoty",
         u"Grenswaarden", u"Valores límite"},
        {u"Schwächer, als die Vorschrift verlangt", u"Looser than the regulation requires",
         u"Moins sévère que ne l'exige la norme", u"Meno severo di quanto richiede la norma",
         u"Mírnější, než předpis vyžaduje", u"Ruimer dan het voorschrift eist",
         u"Menos estricto de lo que exige la norma"},
        {u"Prüfablaufdatei", u"Test sequence file", u"Fichier de séquences", u"File di sequenze",
         u"Soubor zkušebních postupů", u"Testprocedurebestand", u"Archivo de secuencias"},
    };
    static_assert(std::size(kTexts) == static_cast<size_t>(DbCaption::SetFile) + 1);
    return gui::InLanguage(kTexts[static_cast<size_t>(caption)], language);
}

} // namespace kalvo::specdb::ui
