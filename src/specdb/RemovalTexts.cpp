// What a deletion from the tester's store takes away, in the seven languages of the program.
#include "RemovalTexts.h"

#include "link/TextsInLanguage.h"

#include <QStringList>

namespace kalvo::specdb {

namespace {

// Columns: deutsch, englisch, französisch, italienisch, tschechisch, nederlandske, spain.
const link::LanguageTexts kTestRecords = {
    u"%1 Prüfprotokoll|%1 Prüfprotokolle",
    u"%1 test record|%1 test records",
    u"%1 procès-verbal d'essai|%1 procès-verbaux d'essai",
    u"%1 verbale di prova|%1 verbali di prova",
    u"%1 zkušební protokol|%1 zkušební protokoly|%1 zkušebních protokolů",
    u"%1 testrapport|%1 testrapporten",
    u"%1 informe de prueba|%1 informes de prueba"};
const link::LanguageTexts kSpecifications = {u"%1 Prüfablauf|%1 Prüfabläufe",
                                             u"%1 test sequence|%1 test sequences",
                                             u"%1 séquence de test|%1 séquences de test",
                                             u"%1 sequenza di prova|%1 sequenze di prova",
                                             u"%1 zkušební postup|%1 zkušební postupy|%1 zkušebních postupů",
                                             u"%1 testprocedure|%1 testprocedures",
                                             u"%1 secuencia de prueba|%1 secuencias de prueba"};
const link::LanguageTexts kAnd = {u" und ", u" and ", u" et ", u" e ", u" a ", u" en ", u" y "};
const link::LanguageTexts kLoss = {
    u"Im Kalvomer werden gelöscht: %1.",       u"To be deleted in the Kalvomer: %1.",
    u"Seront effacés dans le Kalvomer : %1.",  u"Verranno cancellati nel Kalvomer: %1.",
    u"V přístroji Kalvomer bude smazáno: %1.", u"In de Kalvomer worden gewist: %1.",
    u"Se borrarán en el Kalvomer: %1."};

const link::LanguageTexts &RowOf(RemovalText text)
{
    static const link::LanguageTexts rows[] = {
        {u"Die Prüfprotokolle werden vorher aus dem Kalvomer gelesen und ins Archiv übernommen.",
         u"The test records are read from the Kalvomer first and kept in the archive.",
         u"Les procès-verbaux sont d'abord lus dans le Kalvomer et conservés dans l'archive.",
         u"I verbali vengono prima letti dal Kalvomer e conservati nell'archivio.",
         u"Zkušební protokoly se nejprve načtou z přístroje Kalvomer a uloží do archivu.",
         u"De testrapporten worden eerst uit de Kalvomer gelezen en in het archief bewaard.",
         u"Los informes se leen primero del Kalvomer y se guardan en el archivo."},
        {u"Das Archiv ist ausgeschaltet: Prüfprotokolle, die nicht in einer Datei gesichert sind, gehen "
         u"verloren.",
         u"The archive is switched off: test records not saved in a file are lost.",
         u"L'archive est désactivée : les procès-verbaux non enregistrés dans un fichier seront perdus.",
         u"L'archivio è disattivato: i verbali non salvati in un file andranno persi.",
         u"Archiv je vypnutý: zkušební protokoly, které nejsou uloženy v souboru, budou ztraceny.",
         u"Het archief is uitgeschakeld: testrapporten die niet in een bestand zijn opgeslagen, gaan "
         u"verloren.",
         u"El archivo está desactivado: los informes que no estén guardados en un fichero se perderán."},
        {u"Die Prüfprotokolle konnten nicht aus dem Kalvomer gelesen werden. Es wurde nichts gelöscht.",
         u"The test records could not be read from the Kalvomer. Nothing was deleted.",
         u"Les procès-verbaux n'ont pas pu être lus dans le Kalvomer. Rien n'a été effacé.",
         u"Non è stato possibile leggere i verbali dal Kalvomer. Non è stato cancellato nulla.",
         u"Zkušební protokoly nebylo možné z přístroje Kalvomer načíst. Nic nebylo smazáno.",
         u"De testrapporten konden niet uit de Kalvomer worden gelezen. Er is niets gewist.",
         u"No se pudieron leer los informes del Kalvomer. No se ha borrado nada."},
        {u"Die Prüfprotokolle konnten nicht ins Archiv übernommen werden. Es wurde nichts gelöscht.\n%1",
         u"The test records could not be kept in the archive. Nothing was deleted.\n%1",
         u"Les procès-verbaux n'ont pas pu être conservés dans l'archive. Rien n'a été effacé.\n%1",
         u"Non è stato possibile conservare i verbali nell'archivio. Non è stato cancellato nulla.\n%1",
         u"Zkušební protokoly nebylo možné uložit do archivu. Nic nebylo smazáno.\n%1",
         u"De testrapporten konden niet in het archief worden bewaard. Er is niets gewist.\n%1",
         u"No se pudieron guardar los informes en el archivo. No se ha borrado nada.\n%1"},
        {u"Einträge im Kalvomer: jetzt %1, beim Lesen %2. Es wurde nichts gelöscht; bitte die Datenbank neu "
         u"lesen.",
         u"Entries in the Kalvomer: now %1, when read %2. Nothing was deleted; please read the database "
         u"again.",
         u"Entrées dans le Kalvomer : maintenant %1, à la lecture %2. Rien n'a été effacé ; veuillez relire "
         u"la "
         u"base de données.",
         u"Voci nel Kalvomer: ora %1, alla lettura %2. Non è stato cancellato nulla; rileggere il database.",
         u"Záznamy v přístroji Kalvomer: nyní %1, při načtení %2. Nic nebylo smazáno; načtěte databázi "
         u"znovu.",
         u"Items in de Kalvomer: nu %1, bij het lezen %2. Er is niets gewist; lees de database opnieuw.",
         u"Entradas en el Kalvomer: ahora %1, al leer %2. No se ha borrado nada; vuelva a leer la base de "
         u"datos."},
    };
    static_assert(std::size(rows) == static_cast<size_t>(RemovalText::StoreChanged) + 1);
    return rows[static_cast<int>(text)];
}

} // namespace

QString RemovalTextIn(RemovalText text, const QString &language)
{
    return link::InLanguage(RowOf(text), language);
}

QString LossInTester(int testRecords, int specifications, const QString &language)
{
    QStringList parts;
    if (testRecords > 0)
        parts << link::CountedText(kTestRecords, testRecords, language);
    if (specifications > 0)
        parts << link::CountedText(kSpecifications, specifications, language);
    return link::InLanguage(kLoss, language).arg(parts.join(link::InLanguage(kAnd, language)));
}

} // namespace kalvo::specdb
