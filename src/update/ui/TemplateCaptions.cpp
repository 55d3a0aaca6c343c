// The texts of the print-template entries in the program's seven languages.
#include "TemplateCaptions.h"

#include "gui/Phrases.h"

namespace kalvo::update::ui {

QString TemplateCaptionText(TemplateCaption caption, const QString &language)
{
    // Columns: deutsch, englisch, französisch, italienisch, tschechisch, nederlandske, spain.
    static const gui::LanguageTexts rows[] = {
        {u"Vorlage (0 bis 4):", u"Template (0 to 4):", u"Modèle (0 à 4) :", u"Modello (da 0 a 4):",
         u"Šablona (0 až 4):", u"Sjabloon (0 t/m 4):", u"Plantilla (0 a 4):"},
        {u"Vorlage %1 gibt es nicht: der Kalvomer hat die Vorlagen 0 bis 4.",
         u"There is no template %1: the Kalvomer has templates 0 to 4.",
         u"Le modèle %1 n'existe pas : le Kalvomer a les modèles 0 à 4.",
         u"Il modello %1 non esiste: il Kalvomer ha i modelli da 0 a 4.",
         u"Šablona %1 neexistuje: Kalvomer má šablony 0 až 4.",
         u"Sjabloon %1 bestaat niet: de Kalvomer heeft sjablonen 0 t/m 4.",
         u"La plantilla %1 no existe: el Kalvomer tiene las plantillas 0 a 4."},
        {u"Vorlage %1 im Kalvomer wird durch %2 ersetzt. Speichern?",
         u"Template %1 in the Kalvomer is replaced by %2. Store?",
         u"Le modèle %1 du Kalvomer est remplacé par %2. Enregistrer ?",
         u"Il modello %1 nel Kalvomer viene sostituito da %2. Salvare?",
         u"Šablona %1 v přístroji Kalvomer bude nahrazena souborem %2. Uložit?",
         u"Sjabloon %1 in de Kalvomer wordt vervangen door %2. Opslaan?",
         u"La plantilla %1 del Kalvomer se sustituye por %2. ¿Guardar?"},
    };
    static_assert(std::size(rows) == static_cast<size_t>(TemplateCaption::ReplaceInTester) + 1);
    return gui::InLanguage(rows[static_cast<int>(caption)], language);
}

} // namespace kalvo::update::ui
