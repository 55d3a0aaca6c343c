// The texts of the window "Archiv" for signed reports and test labels.
#include "PaperCaptions.h"

#include "gui/Phrases.h"
#include "link/TextsInLanguage.h"

namespace kalvo::archive::ui {

namespace {

const gui::LanguageTexts &Row(PaperCaption caption)
{
    // Columns: deutsch, englisch, französisch, italienisch, tschechisch, nederlandske, spain.
    static const gui::LanguageTexts kTexts[] = {
        {u"Prüfprotokoll (signiert) PDF ...", u"Signed test report PDF ...", u"Procès-verbal signé PDF ...",
         u"Verbale firmato PDF ...", u"Podepsaný protokol PDF ...", u"Ondertekend testrapport PDF ...",
         u"Informe firmado PDF ..."},
        {u"Prüfetiketten PDF ...", u"Test labels PDF ...", u"Étiquettes d'essai PDF ...",
         u"Etichette di prova PDF ...", u"Zkušební štítky PDF ...", u"Keuringsetiketten PDF ...",
         u"Etiquetas de ensayo PDF ..."},
        {u"Bericht-Einstellungen", u"Report settings", u"Paramètres du rapport", u"Impostazioni del rapporto",
         u"Nastavení zprávy", u"Rapportinstellingen", u"Ajustes del informe"},
        {u"Firma:", u"Company:", u"Entreprise :", u"Ditta:", u"Firma:", u"Bedrijf:", u"Empresa:"},
        {u"Anschrift:", u"Address:", u"Adresse :", u"Indirizzo:", u"Adresa:", u"Adres:", u"Dirección:"},
        {u"Logo (PNG, JPEG):", u"Logo (PNG, JPEG):", u"Logo (PNG, JPEG) :", u"Logo (PNG, JPEG):",
         u"Logo (PNG, JPEG):", u"Logo (PNG, JPEG):", u"Logotipo (PNG, JPEG):"},
        {u"Auswählen ...", u"Choose ...", u"Choisir ...", u"Scegli ...", u"Vybrat ...", u"Kiezen ...",
         u"Elegir ..."},
        {u"Prüfer:", u"Inspector:", u"Contrôleur :", u"Ispettore:", u"Zkoušející:", u"Keurder:",
         u"Inspector:"},
        {u"Name des Prüfers, der die Protokolle unterschreibt:",
         u"Name of the inspector who signs the reports:", u"Nom du contrôleur qui signe les procès-verbaux :",
         u"Nome dell'ispettore che firma i verbali:", u"Jméno zkoušejícího, který protokoly podepisuje:",
         u"Naam van de keurder die de rapporten ondertekent:",
         u"Nombre del inspector que firma los informes:"},
        {u"Prüfetiketten", u"Test labels", u"Étiquettes d'essai", u"Etichette di prova", u"Zkušební štítky",
         u"Keuringsetiketten", u"Etiquetas de ensayo"},
        {u"Etiketten:", u"Labels:", u"Étiquettes :", u"Etichette:", u"Štítky:", u"Etiketten:", u"Etiquetas:"},
        {u"erstes freies Etikett:", u"first free label:", u"première étiquette libre :",
         u"prima etichetta libera:", u"první volný štítek:", u"eerste vrije etiket:",
         u"primera etiqueta libre:"},
        {u"%1 Prüfprotokoll -> %2|%1 Prüfprotokolle -> %2", u"%1 signed report -> %2|%1 signed reports -> %2",
         u"%1 procès-verbal -> %2|%1 procès-verbaux -> %2", u"%1 verbale -> %2|%1 verbali -> %2",
         u"%1 protokol -> %2|%1 protokoly -> %2|%1 protokolů -> %2", u"%1 rapport -> %2|%1 rapporten -> %2",
         u"%1 informe -> %2|%1 informes -> %2"},
        {u"%1 Etikett -> %2|%1 Etiketten -> %2", u"%1 label -> %2|%1 labels -> %2",
         u"%1 étiquette -> %2|%1 étiquettes -> %2", u"%1 etichetta -> %2|%1 etichette -> %2",
         u"%1 štítek -> %2|%1 štítky -> %2|%1 štítků -> %2", u"%1 etiket -> %2|%1 etiketten -> %2",
         u"%1 etiqueta -> %2|%1 etiquetas -> %2"},
    };
    static_assert(std::size(kTexts) == static_cast<size_t>(PaperCaption::LabelsSaved) + 1);
    return kTexts[static_cast<size_t>(caption)];
}

} // namespace

QString PaperCaptionText(PaperCaption caption, const QString &language)
{
    return gui::InLanguage(Row(caption), language);
}

QString CountedPaperCaption(PaperCaption caption, qsizetype count, const QString &language)
{
    return link::CountedText(Row(caption), count, language);
}

} // namespace kalvo::archive::ui
