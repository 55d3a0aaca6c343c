// Specifications composed, stored, read back and deleted against the virtual tester.
#include "specdb/SetFile.h"
#include "specdb/SpecDecoding.h"
#include "specdb/SpecEditor.h"
#include "specdb/StoreRemoval.h"
#include "specdb/SpecStore.h"
#include "specdb/SpecUpload.h"

#include "link/LanguageTable.h"
#include "records/RecordRetrieval.h"
#include "sim/SampleRecords.h"
#include "support/SimBench.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kalvo;
using namespace kalvo::specdb;
using kalvo::testing::SimBench;

namespace {

struct Bench : SimBench {
    QTemporaryDir dir;
    link::LanguageTable texts;
    explicit Bench(int testRecords = 0) { tester.model().records().KeepFirst(testRecords); }
    SpecStore Read()
    {
        const auto store = ReadSpecStore(link, prompter, dir.filePath(kStoreTraceFileName));
        EXPECT_TRUE(store);
        return store.value_or(SpecStore{});
    }
    UploadResult Store(SpecEditor &editor, const QString &name)
    {
        const SpecStore store = Read();
        prompter.textAnswers.push_back(name);
        return StoreEditorRecord(link, prompter, texts, editor.record(),
                                 {store.count(), store.holdsTestRecords}, {},
                                 QDateTime(QDate(2009, 3, 4), QTime(9, 5, 7)));
    }
};

// A specification as the editor composes one, with limits of every width and an empty box.
SpecEditor Composed(int regulation)
{
    SpecEditor editor;
    editor.ChooseRegulation(regulation);
    editor.ChooseClass(3);
    editor.ChooseType(3);
    editor.ChooseAppliedParts(10);
    editor.SetSingleFaults({true, false, true, true});
    editor.record().codes[6] = "90";
    editor.record().codes[17] = "26";
    editor.SetLimit(1, "<0.300\xEA");
    editor.SetLimit(3, ">70.00M\xEA");
    editor.SetLimit(4, ">0250V");
    editor.SetLimit(6, "0120V");
    editor.SetLimit(14, "<0.010mA");
    editor.SetLimit(22, ">3.50kV");
    return editor;
}

} // namespace

TEST(DatabaseOverSim, AComposedSpecificationReadsBackIntoTheEditorUnchanged)
{
    // The odd style sends the second and third parts without the plain style's ";" in front.
    for (const sim::AnswerStyle style : {sim::AnswerStyle::Plain, sim::AnswerStyle::Odd}) {
        SCOPED_TRACE(sim::AnswerStyleName(style).toStdString());
        Bench b;
        b.tester.setStyle(style);
        SpecEditor editor = Composed(7);
        ASSERT_EQ(b.Store(editor, QStringLiteral("Labor")).status, UploadStatus::Stored);
        const SpecStore store = b.Read();
        ASSERT_EQ(store.entries, QStringList{QStringLiteral("1: 01 Labor")});
        EXPECT_FALSE(store.holdsTestRecords);

        SpecEditor readBack;
        EXPECT_TRUE(readBack.Decode(store.records[0], store.limits[0], 1));
        for (int i = 0; i < kSentCodes; ++i)
            EXPECT_EQ(readBack.record().codes[static_cast<size_t>(i)],
                      editor.record().codes[static_cast<size_t>(i)])
                << i;
        EXPECT_EQ(readBack.record().limits, editor.record().limits);
        EXPECT_EQ(readBack.regulationName(), QStringLiteral("EN 61010"));
        EXPECT_EQ(readBack.classEntry(), 3);
        EXPECT_EQ(readBack.typeEntry(), 3);
        EXPECT_EQ(readBack.appliedParts(), 10);
        EXPECT_EQ(readBack.singleFaults(), (std::array<bool, 4>{true, false, true, true}));
    }
}

TEST(DatabaseOverSim, RunningNumbersFollowTheStoreAndSetFilesStoreEveryRecord)
{
    Bench b;
    b.tester.model().records().setSpecifications(sim::SampleSpecifications());
    SpecEditor editor = Composed(0);
    const UploadResult third = b.Store(editor, QStringLiteral("Dritter"));
    EXPECT_EQ(third.label, "03 Dritter");

    const QString path = b.dir.filePath(QStringLiteral("zwei.set"));
    const QByteArray text = "04 Vier; ;" + QByteArray(40, '0') + ";01.01.09;8:0:0\r\n" + QByteArray(24, ';') +
                            "\r\n" + QByteArray(20, ';') + "\r\n05 Fuenf; ;" + QByteArray(40, 'A') +
                            ";01.01.09;8:0:0\r\n" + QByteArray(24, ';') + "\r\n" + QByteArray(18, ';') +
                            ";;>1.00kV\r\n";
    const auto result = SaveAndStoreSetText(b.link, b.prompter, path, text);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->stored, 2);
    const SpecStore store = b.Read();
    ASSERT_EQ(store.count(), 5);
    EXPECT_EQ(store.entries.mid(2),
              (QStringList{QStringLiteral("3: 03 Dritter"), QStringLiteral("4: 04 Vier"),
                           QStringLiteral("5: 05 Fuenf")}));
    ASSERT_TRUE(store.limits[4]);
    EXPECT_EQ((*store.limits[4])[22], ">1.00kV");
}

TEST(DatabaseOverSim, DeletionsRenumberAndAClearedStoreTakesSpecificationsAgain)
{
    Bench b(3);
    b.tester.model().records().setSpecifications(sim::SampleSpecifications());
    SpecStore store = b.Read();
    ASSERT_EQ(store.count(), 5);
    EXPECT_TRUE(store.holdsTestRecords);
    EXPECT_TRUE(store.entries[2].startsWith(QStringLiteral("3:measured: ")));
    SpecEditor editor = Composed(4);
    EXPECT_EQ(b.Store(editor, QStringLiteral("X")).status, UploadStatus::HoldsTestRecords);
    EXPECT_EQ(b.prompter.textAnswers.size(), 1u) << "refused before the name is asked for";
    b.prompter.textAnswers.clear();

    b.prompter.confirmAnswers.push_back(true);
    EXPECT_EQ(DeleteRecord(b.link, b.prompter, b.texts, 1, RemovalOf(store)), RemovalStatus::Deleted);
    store = b.Read();
    ASSERT_EQ(store.count(), 4);
    EXPECT_EQ(store.entries[0], QStringLiteral("1: 02 Medizin SK I Typ CF"));

    b.prompter.confirmAnswers.push_back(true);
    EXPECT_EQ(DeleteAllRecords(b.link, b.prompter, b.texts, RemovalOf(store)), RemovalStatus::Deleted);
    store = b.Read();
    EXPECT_EQ(store.count(), 0);
    EXPECT_FALSE(store.holdsTestRecords);
    EXPECT_EQ(b.Store(editor, QStringLiteral("Neu")).label, "01 Neu");
    EXPECT_EQ(b.Read().entries, QStringList{QStringLiteral("1: 01 Neu")});
}

// Test records about to be deleted are read and kept first, exactly as the record reader reads
// them; a record that cannot be read or kept, or a store changed since it was listed, deletes nothing.
TEST(DatabaseOverSim, TestRecordsAreKeptBeforeTheyAreDeleted)
{
    const struct {
        const char *what;
        const char *fault;     // put into the tester after the store was read
        bool keepFails;        // the archive refuses
        bool addSpecification; // the store grows after it was listed
        RemovalStatus status;
    } cases[] = {
        {"kept, then deleted", "", false, false, RemovalStatus::Deleted},
        {"a record part refused", "refuse:prx?4yx1", false, false, RemovalStatus::NotKept},
        {"the archive fails", "", true, false, RemovalStatus::NotKept},
        {"the store changed", "", false, true, RemovalStatus::NotKept},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        Bench b(2);
        b.tester.model().records().setSpecifications(sim::SampleSpecifications());
        const SpecStore store = b.Read();
        ASSERT_EQ(store.count(), 4);
        // What the record reader gets for the two test records.
        QList<QByteArray> expected;
        for (const int number : {3, 4})
            expected << records::ReadRecord(b.link, number, records::FillerRule::Position).value_or("?");
        if (*c.fault) {
            ASSERT_TRUE(b.tester.faults().add(QString::fromLatin1(c.fault)));
        }
        if (c.addSpecification) {
            auto specifications = sim::SampleSpecifications();
            specifications << specifications.first();
            b.tester.model().records().setSpecifications(specifications);
        }
        Removal removal = RemovalOf(store);
        EXPECT_EQ(removal.testRecords, (QList<int>{3, 4}));
        QList<QByteArray> kept;
        removal.keep = [&](const QList<QByteArray> &records, link::Prompter &) {
            kept = records;
            return c.keepFails ? QStringLiteral("Archiv voll") : QString();
        };
        b.prompter.confirmAnswers.push_back(true);
        EXPECT_EQ(DeleteAllRecords(b.link, b.prompter, b.texts, removal), c.status);
        const qsizetype left = b.Read().count();
        if (c.status == RemovalStatus::Deleted) {
            EXPECT_EQ(kept, expected);
            EXPECT_EQ(left, 0);
            continue;
        }
        EXPECT_EQ(left, c.addSpecification ? 5 : 4) << "nothing deleted";
        ASSERT_FALSE(b.prompter.messages.empty());
        EXPECT_TRUE(b.prompter.messages.back().text.contains(QStringLiteral("Es wurde nichts gelöscht")))
            << b.prompter.messages.back().text.toStdString();
        if (c.keepFails) {
            EXPECT_TRUE(b.prompter.messages.back().text.endsWith(QStringLiteral("Archiv voll")));
        }
    }
}
