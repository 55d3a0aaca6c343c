// The database window FRMDB over the built-in virtual tester: the store listed, a specification
// read into the editor, composed, checked, stored and deleted.
#include "DialogAnswerer.h"

#include "gui/DeviceThread.h"
#include "link/LanguageTable.h"
#include "link/Link.h"
#include "link/PortNames.h"
#include "sim/PortTransport.h"
#include "sim/SampleRecords.h"
#include "specdb/ui/DatabaseWindow.h"
#include "specdb/ui/EditorPanel.h"
#include "support/SimProcess.h"
#include "support/TestFiles.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace kalvo;
using kalvo::testing::DialogAnswerer;
using kalvo::testing::SimProcess;
using kalvo::testing::WaitUntil;

namespace {

class DatabaseWindowTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_previousDir = QDir::currentPath();
        QDir::setCurrent(m_dir.path());
        m_device = std::make_unique<gui::DeviceThread>([this] {
            auto transport = std::make_unique<sim::PortTransport>();
            m_tester = &transport->tester();
            return transport;
        });
        m_device->RunAndWait([](link::Link &link) { link.OpenPort(link::kSimulatorPortName); });
        m_window = std::make_unique<specdb::ui::DatabaseWindow>(*m_device, m_texts);
        m_window->show();
        // Focus goes back to a limit box that does not fit: the window must be the active one.
        m_window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
    }
    void TearDown() override
    {
        m_window.reset();
        m_device.reset();
        QDir::setCurrent(m_previousDir);
    }
    // The store of the tester: `testRecords` test records behind the two sample specifications.
    void Store(int testRecords)
    {
        m_device->RunAndWait([this, testRecords](link::Link &) {
            sim::RecordStore &store = m_tester.load()->model().records();
            store.KeepFirst(testRecords);
            store.setSpecifications(sim::SampleSpecifications());
        });
    }
    template <typename T> T *Find(const char *name)
    {
        return m_window->findChild<T *>(QString::fromLatin1(name));
    }
    // Clicks `button` and waits until the list has been filled again.
    bool ClickAndList(const char *button)
    {
        QSignalSpy listed(m_window.get(), &specdb::ui::DatabaseWindow::listed);
        Find<QPushButton>(button)->click();
        return WaitUntil([&] { return listed.count() > 0 && !m_device->busy(); });
    }
    QStringList Entries()
    {
        QStringList entries;
        for (int i = 0; i < List()->count(); ++i)
            entries << List()->item(i)->text();
        return entries;
    }
    QListWidget *List() { return Find<QListWidget>("IdNr"); }
    QList<QByteArray> LinesSince(qsizetype from)
    {
        QList<QByteArray> lines;
        m_device->RunAndWait([&](link::Link &) {
            const auto &received = m_tester.load()->receivedLines();
            for (qsizetype i = from; i < received.size(); ++i)
                lines << received[i].bytes;
        });
        return lines;
    }
    qsizetype LineCount() { return LinesSince(0).size(); }
    void Choose(const char *list, int entry)
    {
        auto *box = Find<QComboBox>(list);
        box->setCurrentIndex(entry);
        emit box->activated(entry);
    }
    // Types into limit box `box` and leaves it for the next one with Tab, as a user does.
    void TypeLimit(int box, const QString &text)
    {
        auto *edit = Find<QLineEdit>(QStringLiteral("GWert%1").arg(box).toLatin1().constData());
        // A message box may have taken the activation: the box only loses the focus in an active window.
        m_window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
        edit->setFocus();
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Backspace);
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Tab);
    }

    QTemporaryDir m_dir;
    QString m_previousDir;
    link::LanguageTable m_texts;
    std::atomic<sim::VirtualTester *> m_tester{nullptr};
    std::unique_ptr<gui::DeviceThread> m_device;
    std::unique_ptr<specdb::ui::DatabaseWindow> m_window;
    DialogAnswerer m_answerer;
};

} // namespace

TEST_F(DatabaseWindowTest, ASpecificationComposedInTheWindowIsStoredAndReadsBack)
{
    Store(0);
    ASSERT_TRUE(ClickAndList("readDB"));
    EXPECT_EQ(Entries(), (QStringList{QStringLiteral("1: 01 Elektrowerkzeuge SK II"),
                                      QStringLiteral("2: 02 Medizin SK I Typ CF")}));

    // A click on a specification takes it into the editor.
    List()->itemClicked(List()->item(1));
    EXPECT_EQ(Find<QComboBox>("Vorschrift")->currentText(), QStringLiteral("VDE 0751"));
    EXPECT_EQ(Find<QComboBox>("Typ")->currentText(), QStringLiteral("CF"));
    EXPECT_EQ(Find<QLineEdit>("GWert22")->text(), QStringLiteral(">1.50kV"));

    Choose("Vorschrift", 6);
    Choose("Schutzklasse", 3);
    Choose("AnzahlAWT", 4);
    TypeLimit(3, QStringLiteral(">7.000MOhm"));
    TypeLimit(12, QStringLiteral("<0.100mA"));
    TypeLimit(4, QStringLiteral(">500V"));
    ASSERT_TRUE(WaitUntil([&] { return !m_answerer.messages.isEmpty(); }));
    EXPECT_EQ(m_answerer.messages.last(), QStringLiteral("falsches Zahlenformat"));
    EXPECT_TRUE(WaitUntil([&] { return m_window->focusWidget() == Find<QLineEdit>("GWert4"); }));
    // Stored as it stands, it is refused again and nothing goes.
    qsizetype before = LineCount();
    Find<QPushButton>("MP")->click();
    ASSERT_TRUE(WaitUntil([&] { return m_answerer.messages.size() == 2 && !m_device->busy(); }));
    EXPECT_EQ(m_answerer.messages.last(), QStringLiteral("falsches Zahlenformat (4)"));
    EXPECT_TRUE(LinesSince(before).isEmpty());
    TypeLimit(4, QString());

    before = LineCount();
    m_answerer.inputs.push_back(QStringLiteral("Labor"));
    QSignalSpy listed(m_window.get(), &specdb::ui::DatabaseWindow::listed);
    Find<QPushButton>("MP")->click();
    ASSERT_TRUE(WaitUntil([&] { return listed.count() > 0 && !m_device->busy(); }))
        << m_answerer.messages.join('|').toStdString()
        << " GWert4=" << Find<QLineEdit>("GWert4")->text().toStdString();
    EXPECT_EQ(m_answerer.prompts.last(), QStringLiteral("Name der Prüfvorschrift:"));
    const QList<QByteArray> sent = LinesSince(before);
    ASSERT_EQ(sent.size(), 3);
    EXPECT_TRUE(sent[0].startsWith("prx!add 03 Labor; ;")) << sent[0].constData();
    EXPECT_EQ(sent[0].mid(19, 40).mid(28, 6), "070204");
    EXPECT_TRUE(sent[0].contains(";;;;>7.000M\xEA;;;;")) << sent[0].constData();
    EXPECT_EQ(sent[1], "prx!add &9;;;;;;;;<0.100mA;;;;;;;;\r");
    EXPECT_EQ(sent[2], "prx!add &17" + QByteArray(12, ';') + '\r');
    EXPECT_EQ(Entries().last(), QStringLiteral("3: 03 Labor"));

    // Read back from the tester, the new entry fills the editor as it was composed.
    ASSERT_TRUE(ClickAndList("readDB"));
    Choose("Vorschrift", 0);
    List()->itemClicked(List()->item(2));
    EXPECT_EQ(Find<QComboBox>("Vorschrift")->currentIndex(), -1) << "no generator has set element 6 yet";
    EXPECT_EQ(Find<QComboBox>("Schutzklasse")->currentText(), QStringLiteral("SK III"));
    EXPECT_EQ(Find<QComboBox>("AnzahlAWT")->currentIndex(), 4);
    EXPECT_EQ(Find<QLineEdit>("GWert3")->text(), QStringLiteral(">7.000MOhm"));
    EXPECT_EQ(Find<QLineEdit>("GWert12")->text(), QStringLiteral("<0.100mA"));
    EXPECT_TRUE(Find<QLineEdit>("GWert4")->text().isEmpty());
}

TEST_F(DatabaseWindowTest, AStoreWithTestRecordsIsClearedOnlyAfterBothQuestions)
{
    Store(2);
    ASSERT_TRUE(ClickAndList("readDB"));
    EXPECT_EQ(List()->count(), 4);
    EXPECT_TRUE(Entries()[2].startsWith(QStringLiteral("3:measured: ")));
    QSignalSpy chosen(m_window.get(), &specdb::ui::DatabaseWindow::testRecordChosen);
    List()->itemClicked(List()->item(3));
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(chosen[0][0].toInt(), 4);

    // The guard, then Cancel on the deletion's own question: nothing sent.
    qsizetype before = LineCount();
    m_answerer.confirmations = {true, false};
    Find<QPushButton>("MP")->click();
    ASSERT_TRUE(WaitUntil([&] { return m_answerer.messages.size() >= 2 && !m_device->busy(); }));
    EXPECT_TRUE(m_answerer.messages[0].contains(QStringLiteral("enthält auch Prüfprotokolle")));
    EXPECT_TRUE(m_answerer.messages[1].startsWith(QStringLiteral("Alle Protokolle und Abläufe löschen?\n")));
    EXPECT_TRUE(LinesSince(before).isEmpty());

    // One record by the right mouse button: the records behind it move up.
    before = LineCount();
    m_answerer.confirmations = {true};
    QSignalSpy listed(m_window.get(), &specdb::ui::DatabaseWindow::listed);
    emit List()->customContextMenuRequested(List()->visualItemRect(List()->item(0)).center());
    ASSERT_TRUE(WaitUntil([&] { return listed.count() > 0 && !m_device->busy(); }));
    EXPECT_TRUE(m_answerer.messages.last().startsWith(QStringLiteral("Datensatz 1 löschen?\n")));
    EXPECT_EQ(LinesSince(before).first(), "prx!del 1\r");
    EXPECT_EQ(Entries().first(), QStringLiteral("1: 02 Medizin SK I Typ CF"));

    // All of them, from the top; the window then takes specifications again.
    before = LineCount();
    m_answerer.confirmations = {true};
    ASSERT_TRUE(ClickAndList("ClearDB"));
    const QList<QByteArray> deletions = LinesSince(before).mid(0, 3);
    EXPECT_EQ(deletions, (QList<QByteArray>{"prx!del 3\r", "prx!del 2\r", "prx!del 1\r"}));
    EXPECT_TRUE(Entries().isEmpty());
    EXPECT_FALSE(Find<QLabel>("Msg1")->isVisible());
    EXPECT_FALSE(m_window->store().holdsTestRecords);
}

TEST_F(DatabaseWindowTest, SetFilesAreSavedStoredAndChosenFromTheList)
{
    Store(0);
    ASSERT_TRUE(ClickAndList("readDB"));
    const QString path = QDir::current().filePath(QStringLiteral("werkstatt.set"));
    const QString head = QStringLiteral("; ;") + QString(40, u'0') + QStringLiteral(";01.01.09;8:0:0\n");
    const QString items =
        QString(24, u';') + QStringLiteral("\n") + QString(18, u';') + QStringLiteral(";;>1.00kV\n");
    Find<QLineEdit>("Text2")->setText(path);
    Find<QPlainTextEdit>("Text1")->setPlainText(QStringLiteral("03 Eins") + head + items +
                                                QStringLiteral("04 Zwei") + head + items);
    qsizetype before = LineCount();
    ASSERT_TRUE(ClickAndList("speichern"));
    EXPECT_EQ(kalvo::testing::ReadFile(path).count("\r\n"), 6);
    const QList<QByteArray> sent = LinesSince(before);
    ASSERT_GE(sent.size(), 6);
    EXPECT_EQ(sent[3], "prx!add 04 Zwei; ;" + QByteArray(40, '0') + ";01.01.09;8:0:0\r");
    EXPECT_EQ(sent[5], "prx!add &13" + QByteArray(18, ';') + ";;>1.00kV\r");
    EXPECT_EQ(Entries().mid(2), (QStringList{QStringLiteral("3: 03 Eins"), QStringLiteral("4: 04 Zwei")}));
    EXPECT_EQ(kalvo::testing::ReadFile(QStringLiteral("prfname.txt")).trimmed(), path.toLocal8Bit());

    // From the file list only the first record of a file goes.
    Find<QPushButton>("laden")->click();
    auto *files = Find<QListWidget>("File1");
    ASSERT_EQ(files->count(), 1);
    // Chosen by keyboard as well as by a double click: Enter on the file.
    files->setCurrentRow(0);
    QTest::keyClick(files, Qt::Key_Return);
    EXPECT_EQ(Find<QListWidget>("List2")->count(), 1);
    before = LineCount();
    ASSERT_TRUE(ClickAndList("MP"));
    const QList<QByteArray> stored = LinesSince(before);
    EXPECT_EQ(stored.mid(0, 3),
              (QList<QByteArray>{"prx!add 03 Eins; ;" + QByteArray(40, '0') + ";01.01.09;8:0:0\r",
                                 "prx!add &1" + QByteArray(24, ';') + '\r',
                                 "prx!add &13" + QByteArray(18, ';') + ";;>1.00kV\r"}));
    EXPECT_FALSE(Find<QListWidget>("List2")->isVisible());
    EXPECT_EQ(Entries().last(), QStringLiteral("5: 03 Eins"));

    // Opened again, the set file fills the text box as it was saved.
    Find<QPlainTextEdit>("Text1")->clear();
    Find<QPushButton>("oeffnen")->click();
    EXPECT_TRUE(Find<QPlainTextEdit>("Text1")->toPlainText().startsWith(QStringLiteral("03 Eins; ;")));
}

TEST_F(DatabaseWindowTest, ASpecificationComposedInTheWindowReachesKalvoSimOverAPseudoTerminal)
{
    if (!SimProcess::Available())
        GTEST_SKIP() << "no kalvo-sim on this system";
    SimProcess sim(
        QStringList{QStringLiteral("--records"), QStringLiteral("0"), QStringLiteral("--specifications")});
    ASSERT_TRUE(sim.started());
    m_device->RunAndWait([&](link::Link &link) { link.OpenPort(sim.pty()); });
    ASSERT_TRUE(ClickAndList("readDB"));
    ASSERT_EQ(List()->count(), 2);

    Choose("Vorschrift", 4);
    Choose("Typ", 1);
    Choose("AnzahlAWT", 10);
    TypeLimit(1, QStringLiteral("<0.300Ohm"));
    TypeLimit(8, QStringLiteral("<3.500mA"));
    TypeLimit(17, QStringLiteral("<0.050mA"));
    TypeLimit(22, QStringLiteral(">3.50kV"));
    m_answerer.inputs.push_back(QStringLiteral("Pty"));
    QSignalSpy listed(m_window.get(), &specdb::ui::DatabaseWindow::listed);
    Find<QPushButton>("MP")->click();
    ASSERT_TRUE(WaitUntil([&] { return listed.count() > 0 && !m_device->busy(); }, 30000));

    const QStringList adds = sim.ReceivedBytes().filter(QRegularExpression(QStringLiteral("^prx!add")));
    ASSERT_EQ(adds.size(), 3) << sim.ReceivedBytes().join(' ').toStdString();
    // Every element "00" but class "05" (and its second coding "01"), type "01", single faults "20"
    // and ten applied parts.
    const QString codes = QStringLiteral("0001000000000000200000000000050110000000");
    const QRegularExpression first(
        QStringLiteral("^prx!add 03 Pty; ;%1;\\d\\d\\.\\d\\d\\.\\d\\d;\\d{1,2}:\\d{1,2}:\\d{1,2}"
                       ";;<0\\.300\\\\xea;;;;;;;;;;;;;;<3\\.500mA\\\\r$")
            .arg(codes));
    EXPECT_TRUE(first.match(adds[0]).hasMatch()) << adds[0].toStdString();
    EXPECT_EQ(adds[1], QStringLiteral("prx!add &9") + QString(16, u';') + QStringLiteral("\\r"));
    EXPECT_EQ(adds[2], QStringLiteral("prx!add &17;;<0.050mA;;;;;;;;;;>3.50kV\\r"));

    // Back from the tester, the record fills the editor as it was composed.
    ASSERT_TRUE(ClickAndList("readDB"));
    Choose("Vorschrift", 0);
    List()->itemClicked(List()->item(2));
    EXPECT_EQ(Find<QComboBox>("Typ")->currentIndex(), 1);
    EXPECT_EQ(Find<QComboBox>("AnzahlAWT")->currentIndex(), 10);
    EXPECT_EQ(Find<QLineEdit>("GWert1")->text(), QStringLiteral("<0.300Ohm"));
    EXPECT_EQ(Find<QLineEdit>("GWert17")->text(), QStringLiteral("<0.050mA"));
    EXPECT_EQ(Find<QLineEdit>("GWert22")->text(), QStringLiteral(">3.50kV"));
    EXPECT_TRUE(m_answerer.messages.isEmpty()) << m_answerer.messages.join('|').toStdString();
}
