// The captions of the update menu in the program's seven languages.
#include "UpdateCaptions.h"

#include "gui/Phrases.h"

namespace kalvo::update::ui {

QString UpdateCaptionText(UpdateCaption caption, const QString &language)
{
    static const gui::LanguageTexts rows[] = {
        {u"Update", u"Update", u"Mise à jour", u"Aggiornamento", u"Aktualizace", u"Update", u"Actualización"},
        {u"Prüfabläufe", u"Test sequences", u"Séquences de test", u"Sequenze di prova", u"Zkušební postupy",
         u"Testprocedures", u"Secuencias de prueba"},
        {u"Bilder", u"Pictures", u"Images", u"Immagini", u"Obrázky", u"Afbeeldingen", u"Imágenes"},
        {u"Hilfe", u"Help", u"Aide", u"Guida", u"Nápověda", u"Help", u"Ayuda"},
        {u"System", u"System", u"Système", u"Sistema", u"Systém", u"Systeem", u"Sistema"},
        {u"Sprachpaket", u"Language package", u"Pack de langue", u"Pacchetto lingua", u"Jazykový balíček",
         u"Taalpakket", u"Paquete de idioma"},
        {u"manuelles Update", u"Manual update", u"Mise à jour manuelle", u"Aggiornamento manuale",
         u"Ruční aktualizace", u"Handmatige update", u"Actualización manual"},
    };
    return gui::InLanguage(rows[static_cast<int>(caption)], language);
}

} // namespace kalvo::update::ui
