// Refusals at any step of a record read: the tester is told about as before, nothing is written,
// the old file keeps every byte, and the operation says it was refused.
#include "ReadBench.h"

#include "link/Link.h"
#include "records/RecordFiles.h"
#include "records/RecordRetrieval.h"

#include <QDir>
#include <functional>

#include <gtest/gtest.h>

using namespace kalvo;
using namespace kalvo::records;
using kalvo::testing::ReadBench;
using kalvo::testing::ScriptedLink;
using kalvo::testing::WriteFile;

namespace {

// Record i's part as the tester sends it; y and z carry the filler.
QByteArray PartAnswer(int i, char part)
{
    const QByteArray echo = "prx?" + QByteArray::number(i) + part;
    if (part == 'x')
        return echo + ":PR" + QByteArray::number(i) + ";.\r\n\x11";
    return echo + ":XXXXXXXX" + part + QByteArray::number(i) + ";.\r\n\x11";
}

struct Step {
    QByteArray command; // without CR
    QByteArray reply;
};

void Script(kalvo::testing::ScriptedTransport &transport, const std::vector<Step> &steps)
{
    for (const Step &step : steps)
        transport.Expect(step.command + '\r').Reply(step.reply);
}

std::vector<Step> AllRecords(int count, const QByteArray &refusedCommand, const QByteArray &refusal)
{
    std::vector<Step> steps{{"prx?n", "prx?n= " + QByteArray::number(count) + "\r\n\x11"}};
    for (int i = 1; i <= count; ++i)
        for (const char part : {'x', 'y', 'z'}) {
            const QByteArray command = "prx?" + QByteArray::number(i) + part;
            steps.push_back({command, command == refusedCommand ? refusal : PartAnswer(i, part)});
        }
    return steps;
}

} // namespace

TEST(Refusals, ARefusedPartOfRecordThreeLeavesTheOldFileWhileTheOthersAreStillAskedFor)
{
    const struct {
        QByteArray command;
        QByteArray refusal; // in the forms a tester may use
    } cases[] = {
        {"prx?3x", "prx?3x Protokoll .N\r\n\x11"},
        {"prx?3y", "PRX?3Y:Protokoll.N\x11"},
        {"prx?3z", "prx?3z:XXXXXXXX  Protokoll  .Nx\r\n\x11"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.command.constData());
        ReadBench b(QStringLiteral("alle.txt"));
        auto &s = b.s;
        s.prompter.fileAnswers.push_back(b.path);
        Script(s.transport, AllRecords(4, c.command, c.refusal));
        QList<int> listed;
        const RetrievalResult result =
            StoreAllRecords(s.link, s.prompter, [&](int number, const QByteArray &) { listed << number; });
        EXPECT_EQ(result.status, RetrievalStatus::Refused);
        EXPECT_TRUE(result.records.isEmpty());
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_EQ(listed, (QList<int>{1, 2, 4}));
        EXPECT_TRUE(b.FileUnchanged());
        ASSERT_EQ(s.prompter.messages.size(), 2u);
        EXPECT_EQ(s.prompter.messages[0].text, QStringLiteral("31995:  Protokollfehler"));
        const QString said = s.prompter.messages[1].text;
        EXPECT_TRUE(said.contains(QString::fromLatin1(c.command))) << said.toStdString();
        EXPECT_TRUE(said.contains(QDir::toNativeSeparators(b.path))) << said.toStdString();
    }
}

TEST(Refusals, EveryReaderWritesNothingAfterARefusalAtAnyStep)
{
    using Run = std::function<bool(ScriptedLink &, const QString &file)>; // true: said "refused"
    const Run storeAll = [](ScriptedLink &s, const QString &) {
        return StoreAllRecords(s.link, s.prompter).status == RetrievalStatus::Refused;
    };
    const Run readProtocols = [](ScriptedLink &s, const QString &) {
        return ReadProtocols(s.link, s.prompter).status == RetrievalStatus::Refused;
    };
    const Run current = [](ScriptedLink &s, const QString &) {
        return StoreCurrentRecord(s.link, s.prompter).status == RetrievalStatus::Refused;
    };
    const Run listing = [](ScriptedLink &s, const QString &file) {
        return ListStoreRecords(s.link, s.prompter, file).status == RetrievalStatus::Refused;
    };
    const Run accessory = [](ScriptedLink &s, const QString &file) {
        return ReadAccessoryRecords(s.link, s.prompter, file).status == RetrievalStatus::Refused;
    };
    const Run protStore = [](ScriptedLink &s, const QString &file) {
        const QString logTmp = QFileInfo(file).dir().filePath(QStringLiteral("log.tmp"));
        WriteFile(logTmp, "KNEU;$FF\r\n");
        return StoreAccessoryRecords(s.link, s.prompter, logTmp, {"KNEU;$FF\r\n"},
                                     QStringLiteral("Bericht")) == StoreStatus::Refused;
    };
    const QByteArray kymIdentity = "idn? QRT4027 KYM 1.02\r\n\x11";
    const struct {
        const char *name;
        Run run;
        std::vector<Step> script;
        bool asksForFile;
        QStringList confirmations; // questions the operation must not have asked
    } cases[] = {
        {"storeall, the count", storeAll, {{"prx?n", "prx?n Protokoll .N\r\n\x11"}}, true, {}},
        {"readprot, the count", readProtocols, {{"prx?n", "PRX?N Protokoll .N\x11"}}, false, {}},
        {"readprot, record 2 z",
         readProtocols,
         {{"prx?n", "prx?n= 2\r\n\x11"},
          {"prx?1x", PartAnswer(1, 'x')},
          {"prx?1y", PartAnswer(1, 'y')},
          {"prx?1z", PartAnswer(1, 'z')},
          {"prx?2x", PartAnswer(2, 'x')},
          {"prx?2y", PartAnswer(2, 'y')},
          {"prx?2z", "prx?2z Protokoll .N\r\n\x11"}},
         true,
         {QStringLiteral("2 Protokolle gespeichert")}},
        {"storesingle, the question", current, {{"prx?", "prx? Protokoll .N\r\n\x11"}}, false, {}},
        {"storesingle, the y part",
         current,
         {{"prx?", "prx?.Y\r\n\x11"},
          {"prx?x", "prx?x=PA;.\r\n\x11"},
          {"prx?y", "prx?y Protokoll .N\r\n\x11"},
          {"prx?z", "prx?z=B;.\r\n\x11"}},
         true,
         {}},
        {"listing, the count", listing, {{"prx?n", "prx?n Protokoll .N\r\n\x11"}}, false, {}},
        {"listing, the listing",
         listing,
         {{"prx?n", "prx?n= 3\r\n\x11"}, {"prx?nx", "prx?nx Protokoll .N\r\n\x11"}},
         false,
         {}},
        {"accessory, its identity", accessory, {{"idn?", "idn? Protokoll .N\r\n\x11"}}, false, {}},
        {"accessory, its count",
         accessory,
         {{"idn?", kymIdentity}, {"esr?", "ESR? Protokoll .N\r\n\x11"}},
         false,
         {}},
        {"accessory, its records",
         accessory,
         {{"idn?", kymIdentity}, {"esr?", "esr?;2\r\n\x11"}, {"wer?", "wer? Protokoll .N\r\n\x11"}},
         false,
         {}},
        {"protStore, the identity", protStore, {{"idn?", "idn? Protokoll .N\r\n\x11"}}, true, {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ReadBench b(QStringLiteral("chosen.txt"));
        auto &s = b.s;
        s.prompter.fileAnswers.push_back(b.path);
        s.prompter.confirmAnswers.push_back(true);
        Script(s.transport, c.script);
        EXPECT_TRUE(c.run(s, b.path));
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_EQ(s.transport.writes().size(), c.script.size()); // nothing sent after the script
        EXPECT_TRUE(b.FileUnchanged());
        EXPECT_EQ(s.prompter.fileAnswers.empty(), c.asksForFile);
        for (const QString &question : s.prompter.calls)
            if (question.startsWith(QStringLiteral("confirm:")))
                EXPECT_TRUE(c.confirmations.contains(question.mid(8))) << question.toStdString();
        ASSERT_FALSE(s.prompter.messages.empty());
        // The tester is "der Kalvomer" in every message of the program.
        const QString &told = s.prompter.messages.back().text;
        EXPECT_TRUE(told.startsWith(QStringLiteral("Der Kalvomer hat ")) &&
                    told.contains(QStringLiteral(" abgelehnt")))
            << told.toStdString();
        EXPECT_EQ(s.link.refusals(), 1);
    }
}
