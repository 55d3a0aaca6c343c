// Deleting from the tester's store as a new user does it, from the main window's "Prüfabläufe":
// Enter on every question destroys nothing, the questions say what goes, and the test records
// are in the archive before they leave the tester.
#include "WindowFixture.h"

#include "archive/Archive.h"
#include "archive/ArchiveLocation.h"
#include "archive/ArchiveQueries.h"
#include "gui/DeviceThread.h"
#include "link/Link.h"
#include "sim/SampleRecords.h"
#include "specdb/ui/DatabaseWindow.h"

#include <QApplication>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>

using namespace kalvo;
using namespace kalvo::testing;

class DestructiveQuestionsTest : public WindowFixture {
protected:
    // The database window over a store of the two sample specifications and `testRecords` test
    // records behind them, listed; records read are archived in `archiv.sqlite` of the test's folder.
    specdb::ui::DatabaseWindow *OpenDatabase(int testRecords, const QStringList &faults = {})
    {
        archive::WriteArchiveSettings({true, ArchivePath()});
        Open({QStringLiteral("--simulate")});
        EXPECT_TRUE(ConnectToSimulator());
        m_window->device().RunAndWait([&](link::Link &) {
            sim::RecordStore &store = m_tester.load()->model().records();
            store.KeepFirst(testRecords);
            store.setSpecifications(sim::SampleSpecifications());
        });
        Trigger("datenbank");
        for (QWidget *widget : QApplication::topLevelWidgets())
            if (auto *found = qobject_cast<specdb::ui::DatabaseWindow *>(widget))
                m_database = found;
        EXPECT_NE(m_database, nullptr);
        EXPECT_TRUE(Click("readDB"));
        // Faults hit what comes after the listing.
        m_window->device().RunAndWait([&](link::Link &) {
            for (const QString &fault : faults)
                m_tester.load()->faults().add(fault);
        });
        return m_database;
    }
    // Clicks `button` of the database window and waits until the list has been filled again, or
    // (`listing` false) until the device is idle.
    bool Click(const char *button, bool listing = true)
    {
        QSignalSpy listed(m_database, &specdb::ui::DatabaseWindow::listed);
        m_database->findChild<QPushButton *>(QString::fromLatin1(button))->click();
        return WaitUntil([&] { return (!listing || listed.count() > 0) && !m_window->device().busy(); });
    }
    int StoreEntries()
    {
        int entries = 0;
        m_window->device().RunAndWait(
            [&](link::Link &) { entries = static_cast<int>(m_tester.load()->model().records().count()); });
        return entries;
    }
    QString ArchivePath() const { return m_dir.filePath(QStringLiteral("archiv.sqlite")); }
    // The records in the archive, or those of the archive's `customer`.
    qint64 Archived(const QString &customer = QString()) const
    {
        archive::Archive archive(archive::ParseArchiveUrl(ArchivePath()), archive::ArchiveAccess::Read);
        archive::ArchiveFilter filter;
        filter.customerName = customer;
        return archive::CountRecords(archive, filter);
    }

    specdb::ui::DatabaseWindow *m_database = nullptr;
};

TEST_F(DestructiveQuestionsTest, EnterOnAnyDeletionQuestionDeletesNothing)
{
    OpenDatabase(14);
    ASSERT_EQ(m_database->findChild<QListWidget *>(QStringLiteral("IdNr"))->count(), 16);
    m_dialogs.pressEnter = true;
    // A picture of the first question, for a person to look at.
    QTimer snap;
    QObject::connect(&snap, &QTimer::timeout, [&snap] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            snap.stop();
            QDir(QCoreApplication::applicationDirPath()).mkpath(QStringLiteral("screenshots"));
            box->grab().save(QCoreApplication::applicationDirPath() +
                             QStringLiteral("/screenshots/database-delete-all-question.png"));
        }
    });
    snap.start(2);

    // "Alle löschen", the guard of "Im Kalvomer speichern" in front of it, and one entry by the
    // right mouse button: Enter answers each, and each time Cancel is what it presses.
    Click("ClearDB", false);
    Click("MP", false);
    auto *list = m_database->findChild<QListWidget *>(QStringLiteral("IdNr"));
    emit list->customContextMenuRequested(list->visualItemRect(list->item(4)).center());
    ASSERT_TRUE(WaitUntil([&] { return m_dialogs.messages.size() == 3 && !m_window->device().busy(); }))
        << m_dialogs.messages.join('|').toStdString();
    EXPECT_EQ(m_dialogs.defaultButtons, (QList<int>(3, QMessageBox::Cancel)));
    EXPECT_EQ(StoreEntries(), 16);
    EXPECT_EQ(list->count(), 16);

    // What goes is named, and that the test records are kept first.
    EXPECT_EQ(m_dialogs.messages[0],
              QStringLiteral("Alle Protokolle und Abläufe löschen?\n\n"
                             "Im Kalvomer werden gelöscht: 14 Prüfprotokolle und "
                             "2 Prüfabläufe.\nDie Prüfprotokolle werden vorher aus dem "
                             "Kalvomer gelesen und ins Archiv übernommen."));
    EXPECT_TRUE(
        m_dialogs.messages[1].startsWith(QStringLiteral("Die Datenbank enthält auch Prüfprotokolle.")));
    EXPECT_TRUE(m_dialogs.messages[2].startsWith(
        QStringLiteral("Datensatz 5 löschen?\n\nIm Kalvomer werden gelöscht: 1 Prüfprotokoll.")));
    for (const DialogAnswerer::Seen &seen : std::as_const(m_dialogs.seen))
        EXPECT_EQ(seen.owner.data(), static_cast<QWidget *>(m_database))
            << "the question belongs to the window that asked";
    Screenshot(*m_database, QStringLiteral("database-after-enter"));
}

TEST_F(DestructiveQuestionsTest, TestRecordsAreArchivedBeforeTheyAreDeletedAndAFailedReadDeletesNothing)
{
    // Record 4 (the second test record) cannot be read the first time it is asked for after the listing.
    OpenDatabase(3, {QStringLiteral("refuse:prx?4yx1")});
    m_dialogs.confirmations = {true};
    Click("ClearDB", false);
    // The refusal, then what it means.
    EXPECT_TRUE(WaitUntil([&] {
        return !m_window->device().busy() &&
               m_dialogs.messages.last().contains(QStringLiteral("Es wurde nichts gelöscht"));
    })) << m_dialogs.messages.join('|').toStdString();
    EXPECT_EQ(StoreEntries(), 5) << m_dialogs.messages.join('|').toStdString();

    EXPECT_TRUE(m_dialogs.prompts.isEmpty()); // nothing read, nothing to ask about

    // Again, now that the record can be read: all three are archived under the customer the
    // database window asks for, as a read asks, then everything is deleted.
    m_dialogs.confirmations = {true};
    m_dialogs.inputs = {QStringLiteral("Praxis Dr. Weber")};
    m_dialogs.messages.clear();
    m_dialogs.seen.clear();
    ASSERT_TRUE(Click("ClearDB"));
    EXPECT_EQ(StoreEntries(), 0) << m_dialogs.messages.join('|').toStdString();
    EXPECT_EQ(Archived(), 3);
    EXPECT_EQ(Archived(QStringLiteral("Praxis Dr. Weber")), 3);
    ASSERT_EQ(m_dialogs.prompts.size(), 1);
    EXPECT_TRUE(m_dialogs.prompts[0].startsWith(QStringLiteral("Kunde der gelesenen Protokolle")));
    for (const DialogAnswerer::Seen &seen : std::as_const(m_dialogs.seen))
        EXPECT_EQ(seen.owner.data(), static_cast<QWidget *>(m_database)) << seen.title.toStdString();
    EXPECT_TRUE(m_database->findChild<QListWidget *>(QStringLiteral("IdNr"))->count() == 0);
}
