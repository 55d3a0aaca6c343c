// The texts of the window "Archiv" for backups, in the program's seven languages.
#include "BackupCaptions.h"

#include "gui/Phrases.h"

namespace kalvo::archive::ui {

QString BackupText(BackupCaption caption, const QString &language)
{
    // Columns: deutsch, englisch, französisch, italienisch, tschechisch, nederlandske, spain.
    static const gui::LanguageTexts kTexts[] = {
        {u"Sicherung", u"Backup", u"Sauvegarde", u"Backup", u"Záloha", u"Back-up", u"Copia de seguridad"},
        {u"Sicherung ...", u"Back up ...", u"Sauvegarder ...", u"Backup ...", u"Zálohovat ...",
         u"Back-up maken ...", u"Copia de seguridad ..."},
        {u"Wiederherstellen ...", u"Restore ...", u"Restaurer ...", u"Ripristina ...", u"Obnovit ...",
         u"Terugzetten ...", u"Restaurar ..."},
        {u"Sicherung %1 geschrieben (Protokolle: %2)", u"Backup %1 written (test records: %2)",
         u"Sauvegarde %1 écrite (procès-verbaux : %2)", u"Backup %1 scritto (verbali: %2)",
         u"Záloha %1 zapsána (protokoly: %2)", u"Back-up %1 geschreven (testrapporten: %2)",
         u"Copia %1 escrita (informes: %2)"},
        {u"Sicherung %1 wiederhergestellt (Protokolle: %2)", u"Backup %1 restored (test records: %2)",
         u"Sauvegarde %1 restaurée (procès-verbaux : %2)", u"Backup %1 ripristinato (verbali: %2)",
         u"Záloha %1 obnovena (protokoly: %2)", u"Back-up %1 teruggezet (testrapporten: %2)",
         u"Copia %1 restaurada (informes: %2)"},
        {u"Die Sicherung %1 in das Archiv %2 übernehmen? Das geht nur in ein leeres Archiv; seine "
         u"Prüfintervalle werden durch die der Sicherung ersetzt.",
         u"Restore the backup %1 into the archive %2? Only an empty archive takes it; its test intervals "
         u"are replaced by those of the backup.",
         u"Restaurer la sauvegarde %1 dans les archives %2 ? Seules des archives vides l'acceptent ; "
         u"leurs intervalles d'essai sont remplacés par ceux de la sauvegarde.",
         u"Ripristinare il backup %1 nell'archivio %2? Solo un archivio vuoto lo accetta; i suoi "
         u"intervalli di prova sono sostituiti da quelli del backup.",
         u"Obnovit zálohu %1 do archivu %2? Přijme ji jen prázdný archiv; jeho intervaly zkoušek "
         u"nahradí intervaly ze zálohy.",
         u"Back-up %1 terugzetten in archief %2? Alleen een leeg archief neemt hem aan; de "
         u"testintervallen worden door die van de back-up vervangen.",
         u"¿Restaurar la copia %1 en el archivo %2? Solo un archivo vacío la acepta; sus intervalos "
         u"de ensayo se sustituyen por los de la copia."},
        {u"Von diesem Archiv gibt es noch keine Sicherung: bitte \"Sicherung ...\" wählen.",
         u"This archive has never been backed up: please choose \"Back up ...\".",
         u"Ces archives n'ont jamais été sauvegardées : veuillez choisir \"Sauvegarder ...\".",
         u"Di questo archivio non esiste ancora un backup: scegliere \"Backup ...\".",
         u"Tento archiv ještě nebyl zálohován: zvolte prosím \"Zálohovat ...\".",
         u"Van dit archief is nog geen back-up gemaakt: kies \"Back-up maken ...\".",
         u"Este archivo aún no tiene copia de seguridad: elija \"Copia de seguridad ...\"."},
        {u"Die letzte Sicherung dieses Archivs ist vom %1, älter als 30 Tage: bitte \"Sicherung ...\" "
         u"wählen.",
         u"The last backup of this archive is from %1, more than 30 days ago: please choose \"Back up "
         u"...\".",
         u"La dernière sauvegarde de ces archives date du %1, il y a plus de 30 jours : veuillez "
         u"choisir \"Sauvegarder ...\".",
         u"L'ultimo backup di questo archivio è del %1, più di 30 giorni fa: scegliere \"Backup ...\".",
         u"Poslední záloha tohoto archivu je z %1, starší než 30 dní: zvolte prosím \"Zálohovat ...\".",
         u"De laatste back-up van dit archief is van %1, ouder dan 30 dagen: kies \"Back-up maken "
         u"...\".",
         u"La última copia de este archivo es del %1, de hace más de 30 días: elija \"Copia de "
         u"seguridad ...\"."},
        {u"Sicherung (*.sqlite)|*.sqlite", u"Backup (*.sqlite)|*.sqlite", u"Sauvegarde (*.sqlite)|*.sqlite",
         u"Backup (*.sqlite)|*.sqlite", u"Záloha (*.sqlite)|*.sqlite", u"Back-up (*.sqlite)|*.sqlite",
         u"Copia (*.sqlite)|*.sqlite"},
    };
    static_assert(std::size(kTexts) == static_cast<size_t>(BackupCaption::FileFilter) + 1);
    return gui::InLanguage(kTexts[static_cast<size_t>(caption)], language);
}

} // namespace kalvo::archive::ui
