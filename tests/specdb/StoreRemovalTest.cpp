// Deleting records: the questions and what they say is lost, the order from the top, and deletions
// the tester does not take.
#include "specdb/StoreRemoval.h"

#include "link/LanguageTable.h"
#include "link/LinkFixture.h"

#include <gtest/gtest.h>

using namespace kalvo;
using namespace kalvo::specdb;
using kalvo::testing::ScriptedLink;

TEST(Removal, AllRecordsGoFromTheHighestNumberDown)
{
    ScriptedLink s;
    const link::LanguageTable texts;
    s.prompter.confirmAnswers.push_back(true);
    for (const char *command : {"prx!del 3", "prx!del 2", "prx!del 1"})
        s.transport.Expect(QByteArray(command) + '\r').Reply(QByteArray(command) + ".Y\r\n\x11");
    EXPECT_EQ(DeleteAllRecords(s.link, s.prompter, texts, Removal{3, {}, {}}), RemovalStatus::Deleted);
    EXPECT_TRUE(s.transport.allExpectationsMet());
    EXPECT_EQ(s.prompter.calls,
              QStringList{QStringLiteral("confirmLoss:Alle Protokolle und Abläufe löschen?\n\n"
                                         "Im Kalvomer werden gelöscht: 3 Prüfabläufe.")});
    EXPECT_EQ(s.prompter.progressValues.back(), 100);
    EXPECT_TRUE(s.prompter.messages.empty());
}

TEST(Removal, CancelSendsNothing)
{
    ScriptedLink s;
    const link::LanguageTable texts;
    EXPECT_EQ(DeleteAllRecords(s.link, s.prompter, texts, Removal{3, {}, {}}), RemovalStatus::Cancelled);
    EXPECT_EQ(DeleteRecord(s.link, s.prompter, texts, 2, Removal{3, {}, {}}), RemovalStatus::Cancelled);
    EXPECT_TRUE(s.transport.writes().empty());
    EXPECT_TRUE(s.prompter.calls.last().startsWith(QStringLiteral("confirmLoss:Datensatz 2 löschen?\n\n")));
}

TEST(Removal, ADeletionNotTakenIsReportedAfterTheRestHaveBeenSent)
{
    const QByteArray noes[] = {"prx!del 2 Protokoll .N\r\n\x11", "PRX!DEL 2.NX\r\n\x11", "prx!del 2\r\n\x11"};
    for (const QByteArray &no : noes) {
        SCOPED_TRACE(no.constData());
        ScriptedLink s;
        const link::LanguageTable texts;
        s.prompter.confirmAnswers.push_back(true);
        s.transport.Expect("prx!del 3\r").Reply(".Y\n\x11");
        s.transport.Expect("prx!del 2\r").Reply(no);
        s.transport.Expect("prx!del 1\r").Reply("PRX!DEL 1.Y\r\n\x11");
        EXPECT_EQ(DeleteAllRecords(s.link, s.prompter, texts, Removal{3, {}, {}}), RemovalStatus::Failed);
        EXPECT_TRUE(s.transport.allExpectationsMet());
        ASSERT_FALSE(s.prompter.messages.empty());
        EXPECT_TRUE(s.prompter.messages.back().text.startsWith(texts.text(link::TxtDeleteError)));
        EXPECT_TRUE(s.prompter.messages.back().text.contains(QStringLiteral("\"prx!del 2\"")));
        EXPECT_FALSE(s.prompter.messages.back().text.contains(QStringLiteral("prx!del 3")));
        EXPECT_EQ(s.prompter.messages.back().icon, link::Prompter::Icon::Critical);
    }
}

TEST(Removal, OneRecordByItsNumber)
{
    const struct {
        QByteArray answer;
        RemovalStatus status;
    } cases[] = {{"prx!del 12.Y\r\n\x11", RemovalStatus::Deleted},
                 {"prx!del 12.N\r\n\x11", RemovalStatus::Failed}};
    for (const auto &c : cases) {
        ScriptedLink s;
        const link::LanguageTable texts;
        s.prompter.confirmAnswers.push_back(true);
        s.transport.Expect("prx!del 12\r").Reply(c.answer);
        EXPECT_EQ(DeleteRecord(s.link, s.prompter, texts, 12, Removal{12, {}, {}}), c.status);
        EXPECT_EQ(s.prompter.calls[0], QStringLiteral("confirmLoss:Datensatz 12 löschen?\n\n"
                                                      "Im Kalvomer werden gelöscht: 1 Prüfablauf."));
        EXPECT_TRUE(s.transport.allExpectationsMet());
    }
}

// The question names what goes, counted as each language counts, and what becomes of the test
// records; Cancel on it sends nothing and keeps nothing.
TEST(Removal, TheQuestionNamesWhatIsLostInTheProgramsLanguage)
{
    const RecordKeeper keeper = [](const QList<QByteArray> &, link::Prompter &) { return QString(); };
    const struct {
        const char *language;
        int entries;
        QList<int> testRecords;
        bool kept;
        const char16_t *loss;
    } cases[] = {
        {"deutsch",
         17,
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14},
         true,
         u"Im Kalvomer werden gelöscht: 14 Prüfprotokolle und 3 Prüfabläufe.\n"
         u"Die Prüfprotokolle werden vorher aus dem Kalvomer gelesen und ins Archiv übernommen."},
        {"deutsch",
         2,
         {2},
         false,
         u"Im Kalvomer werden gelöscht: 1 Prüfprotokoll und 1 Prüfablauf.\n"
         u"Das Archiv ist ausgeschaltet: Prüfprotokolle, die nicht in einer Datei gesichert sind, gehen "
         u"verloren."},
        {"englisch",
         1,
         {1},
         true,
         u"To be deleted in the Kalvomer: 1 test record.\n"
         u"The test records are read from the Kalvomer first and kept in the archive."},
        {"tschechisch",
         8,
         {1, 2, 3},
         true,
         u"V přístroji Kalvomer bude smazáno: 3 zkušební protokoly a 5 zkušebních postupů.\n"
         u"Zkušební protokoly se nejprve načtou z přístroje Kalvomer a uloží do archivu."},
        {"französisch", 2, {}, true, u"Seront effacés dans le Kalvomer : 2 séquences de test."},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.language);
        ScriptedLink s;
        link::LanguageTable texts;
        ASSERT_TRUE(texts.SetLanguage(QString::fromUtf8(c.language),
                                      link::ReadLanguageGrid("k;a;b;c;d;e;f;g\r\nx;x;x;x;x;x;x;x\r\n")));
        EXPECT_EQ(DeleteAllRecords(s.link, s.prompter, texts,
                                   Removal{c.entries, c.testRecords, c.kept ? keeper : nullptr}),
                  RemovalStatus::Cancelled);
        EXPECT_EQ(s.prompter.calls,
                  QStringList{QStringLiteral("confirmLoss:Alle Protokolle und Abläufe löschen?\n\n") +
                              QString::fromUtf16(c.loss)});
        EXPECT_TRUE(s.transport.writes().empty());
    }
}
