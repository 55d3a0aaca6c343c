// Deleting records: the questions, the order from the top, and deletions the tester does not take.
#include "specdb/SpecRemoval.h"

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
    EXPECT_EQ(DeleteAllRecords(s.link, s.prompter, texts, 3), RemovalStatus::Deleted);
    EXPECT_TRUE(s.transport.allExpectationsMet());
    EXPECT_EQ(s.prompter.calls, QStringList{QStringLiteral("confirm:Alle Protokolle und Abläufe löschen?")});
    EXPECT_EQ(s.prompter.progressValues.back(), 100);
    EXPECT_TRUE(s.prompter.messages.empty());
}

TEST(Removal, CancelSendsNothing)
{
    ScriptedLink s;
    const link::LanguageTable texts;
    EXPECT_EQ(DeleteAllRecords(s.link, s.prompter, texts, 3), RemovalStatus::Cancelled);
    EXPECT_EQ(DeleteRecord(s.link, s.prompter, texts, 2), RemovalStatus::Cancelled);
    EXPECT_TRUE(s.transport.writes().empty());
    EXPECT_EQ(s.prompter.calls.last(), QStringLiteral("confirm:Datensatz 2 löschen?"));
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
        EXPECT_EQ(DeleteAllRecords(s.link, s.prompter, texts, 3), RemovalStatus::Failed);
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
        EXPECT_EQ(DeleteRecord(s.link, s.prompter, texts, 12), c.status);
        EXPECT_EQ(s.prompter.calls[0], QStringLiteral("confirm:Datensatz 12 löschen?"));
        EXPECT_TRUE(s.transport.allExpectationsMet());
    }
}
