// The question before the main window closes while the tester is being updated.
#include "CloseQuestion.h"

#include "gui/Phrases.h"

#include <QMessageBox>
#include <QPushButton>

namespace kalvo::app {

namespace {
const gui::LanguageTexts kQuestion = {
    u"Der Kalvomer wird gerade aktualisiert. Wird kalvo jetzt beendet, bricht die Übertragung ab und "
    u"der Kalvomer bleibt ohne vollständigen Inhalt; das Update muss danach wiederholt werden.\n\n"
    u"Trotzdem beenden?",
    u"The Kalvomer is being updated. If kalvo ends now, the transfer stops and the Kalvomer is left "
    u"without complete contents; the update must then be repeated.\n\nQuit anyway?",
    u"Le Kalvomer est en cours de mise à jour. Si kalvo se ferme maintenant, le transfert s'interrompt "
    u"et le Kalvomer reste sans contenu complet ; la mise à jour devra être refaite.\n\n"
    u"Quitter quand même ?",
    u"Il Kalvomer è in fase di aggiornamento. Se kalvo viene chiuso ora, il trasferimento si interrompe "
    u"e il Kalvomer resta senza contenuto completo; l'aggiornamento dovrà essere ripetuto.\n\n"
    u"Chiudere comunque?",
    u"Kalvomer se právě aktualizuje. Pokud se kalvo nyní ukončí, přenos se přeruší a Kalvomer zůstane "
    u"bez úplného obsahu; aktualizaci bude nutné zopakovat.\n\nPřesto ukončit?",
    u"De Kalvomer wordt bijgewerkt. Als kalvo nu stopt, breekt de overdracht af en blijft de Kalvomer "
    u"zonder volledige inhoud; de update moet daarna worden herhaald.\n\nToch afsluiten?",
    u"El Kalvomer se está actualizando. Si kalvo se cierra ahora, la transferencia se interrumpe y el "
    u"Kalvomer queda sin contenido completo; habrá que repetir la actualización.\n\n"
    u"¿Cerrar de todos modos?"};
const gui::LanguageTexts kQuit = {u"Beenden", u"Quit",      u"Quitter", u"Chiudi",
                                  u"Ukončit", u"Afsluiten", u"Cerrar"};
const gui::LanguageTexts kKeepRunning = {
    u"Weiterlaufen lassen", u"Keep running",    u"Continuer", u"Continua",
    u"Nechat běžet",        u"Laten doorlopen", u"Seguir"};
} // namespace

bool CloseDuringTransfer(QWidget *owner, const QString &title, const QString &language)
{
    QMessageBox box(QMessageBox::Warning, title, gui::InLanguage(kQuestion, language),
                    QMessageBox::Ok | QMessageBox::Cancel, owner);
    box.button(QMessageBox::Ok)->setText(gui::InLanguage(kQuit, language));
    box.button(QMessageBox::Cancel)->setText(gui::InLanguage(kKeepRunning, language));
    // Enter and Escape both leave the update running: ending it is a deliberate click.
    box.setDefaultButton(QMessageBox::Cancel);
    box.setEscapeButton(QMessageBox::Cancel);
    return box.exec() == QMessageBox::Ok;
}

} // namespace kalvo::app
