// The service window offscreen against the virtual tester: command line, help texts, printing,
// scripts, the trace views, and the remote display they cause.
#include "WindowFixture.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

using namespace kalvo;
using namespace kalvo::testing;

class ServiceWindowTest : public WindowFixture {
protected:
    QMainWindow &OpenService(const QStringList &arguments = {QStringLiteral("--simulate")})
    {
        auto &window = Open(arguments);
        EXPECT_TRUE(ConnectToSimulator());
        window.findChild<QAction *>(QStringLiteral("service"))->trigger();
        auto *service = window.findChild<QMainWindow *>(QStringLiteral("test"));
        if (!service) // a window of its own, not a child
            for (QWidget *w : QApplication::topLevelWidgets())
                if (w->objectName() == QLatin1String("test"))
                    service = qobject_cast<QMainWindow *>(w);
        EXPECT_NE(service, nullptr);
        m_service = service;
        return *service;
    }

    qsizetype LineCount() { return LinesSince(0).size(); }
    template <typename T> T *Child(const char *name)
    {
        return m_service->findChild<T *>(QString::fromLatin1(name));
    }

    QMainWindow *m_service = nullptr;
};

TEST_F(ServiceWindowTest, ThreeCommandsLeaveTheirAnswersInOrderNewestLast)
{
    OpenService();
    auto *befehl = Child<QLineEdit>("befehl");
    for (const char *command : {"dis?", "var?D3", "bit?4"}) {
        QTest::keyClicks(befehl, QString::fromLatin1(command));
        QTest::keyClick(befehl, Qt::Key_Return);
        ASSERT_TRUE(Idle());
    }
    EXPECT_EQ(Child<QPlainTextEdit>("Termantwort")->toPlainText(),
              QStringLiteral("dis? 00.Y\nvar?D3=01.Y\nbit?4=01.Y\n"));
    EXPECT_TRUE(befehl->text().isEmpty());
}

TEST_F(ServiceWindowTest, HelpTextsAreSteppedOnTheTestersDisplay)
{
    OpenService();
    const qsizetype before = LineCount();
    Child<QPushButton>("ahtt")->click();
    ASSERT_TRUE(Idle());
    EXPECT_FALSE(Child<QLineEdit>("befehl")->isVisible());
    EXPECT_EQ(Child<QLabel>("ahnr")->text(), QStringLiteral("1"));
    Child<QPushButton>("aht")->click();
    ASSERT_TRUE(Idle());
    Child<QPushButton>("aht")->click();
    ASSERT_TRUE(Idle());
    EXPECT_EQ(Child<QLabel>("ahnr")->text(), QStringLiteral("3"));
    // The tester mirrors the help text it shows; the main window's display panel shows it.
    auto *display = m_window->findChild<QPlainTextEdit *>(QStringLiteral("display"));
    ASSERT_TRUE(WaitUntil([&] { return display->toPlainText().contains(QStringLiteral("HILFE 2")); }));
    Child<QPushButton>("ahst")->click();
    ASSERT_TRUE(Idle());
    EXPECT_TRUE(Child<QLineEdit>("befehl")->isVisible());
    EXPECT_EQ(LinesSince(before),
              (QList<QByteArray>{"brk!H 1\r", "tas!1\r", "tas!1\r", "brk!H 2\r", "tas!1\r", "sst!0\r"}));
    Screenshot(*m_window, QStringLiteral("main-remote-display"));
}

TEST_F(ServiceWindowTest, DirectPrintingTogglesBitFourWithoutReadingItBack)
{
    OpenService();
    const qsizetype before = LineCount();
    auto *printdirekt = Child<QAction>("printdirekt");
    EXPECT_FALSE(printdirekt->isChecked());
    printdirekt->trigger();
    ASSERT_TRUE(Idle());
    EXPECT_TRUE(printdirekt->isChecked());
    printdirekt->trigger();
    ASSERT_TRUE(Idle());
    EXPECT_EQ(LinesSince(before), (QList<QByteArray>{"bit!04 1\r", "bit!04 0\r"}));
}

TEST_F(ServiceWindowTest, ScriptRunsFromTheCurrentDirectoryAndItsResultIsShown)
{
    QFile script(m_dir.filePath(QStringLiteral("beispiel.abl")));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("wer?WC;Schutzleiter\r\nvar?D3\r\n");
    script.close();
    OpenService();
    const qsizetype before = LineCount();
    Child<QAction>("abl")->trigger();
    ASSERT_TRUE(Idle());
    EXPECT_EQ(LinesSince(before), (QList<QByteArray>{"wer?WC;Schutzleiter\r", "var?D3\r"}));
    auto *terminal = Child<QPlainTextEdit>("Testfeld");
    EXPECT_TRUE(terminal->toPlainText().startsWith(QStringLiteral("wer?WC;Schutzleiter\nvar?D3")));
    Child<QAction>("ablPro")->trigger();
    EXPECT_TRUE(
        terminal->toPlainText().contains(QStringLiteral(";Schutzleiter\nwer?WC;Schutzleiter Wertx=")));
}

TEST_F(ServiceWindowTest, TraceViewsShowWhatWasReceivedAndStartTheTraceAfresh)
{
    OpenService({QStringLiteral("--simulate"), QStringLiteral("/Entw")});
    auto *befehl = Child<QLineEdit>("befehl");
    QTest::keyClicks(befehl, QStringLiteral("var?D3"));
    QTest::keyClick(befehl, Qt::Key_Return);
    ASSERT_TRUE(Idle());
    Child<QAction>("loghex")->trigger();
    ASSERT_TRUE(Idle());
    auto *terminal = Child<QPlainTextEdit>("Testfeld");
    // "var?D3 01.Y" CR LF DC1 as decimal codes, one line per received line.
    ASSERT_TRUE(
        WaitUntil([&] { return terminal->toPlainText().contains(QStringLiteral(" 118 97 114 63 68 51")); }));
    EXPECT_TRUE(terminal->toPlainText().contains(QStringLiteral(" 46 89 13 10\n 17")))
        << terminal->toPlainText().toStdString();
    QFile trace(m_dir.filePath(QStringLiteral("test.log")));
    ASSERT_TRUE(trace.open(QIODevice::ReadOnly));
    EXPECT_EQ(trace.size(), 0);

    QTest::keyClicks(befehl, QStringLiteral("dis?"));
    QTest::keyClick(befehl, Qt::Key_Return);
    ASSERT_TRUE(Idle());
    Child<QAction>("log")->trigger();
    ASSERT_TRUE(Idle());
    ASSERT_TRUE(WaitUntil([&] { return terminal->toPlainText().startsWith(QStringLiteral("dis? 00.Y")); }));
    EXPECT_FALSE(terminal->toPlainText().contains(QStringLiteral("var?D3")));
}

TEST_F(ServiceWindowTest, AllRecordsAreReadAfterTheCountIsConfirmed)
{
    OpenService();
    m_dialogs.confirmations.push_back(true);
    m_dialogs.files.push_back(m_dir.filePath(QStringLiteral("service.txt")));
    Child<QAction>("readprot")->trigger();
    ASSERT_TRUE(Idle());
    EXPECT_EQ(m_dialogs.messages.value(0), QStringLiteral("14 Protokolle gespeichert"));
    QFile file(m_dir.filePath(QStringLiteral("service.txt")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().count("$FF\r\n"), 14);
    EXPECT_TRUE(Child<QPlainTextEdit>("Testfeld")->toPlainText().contains(QStringLiteral("Wasserkocher")));

    // Cancel at the count: nothing more is asked or sent.
    const qsizetype before = LinesSince(0).size();
    m_dialogs.confirmations.push_back(false);
    Child<QAction>("readprot")->trigger();
    ASSERT_TRUE(Idle());
    EXPECT_EQ(LinesSince(before), (QList<QByteArray>{"prx?n\r"}));
}

TEST_F(ServiceWindowTest, TheCommandLineKeepsTheFocusSoTheNextCommandIsTypedStraightOn)
{
    auto &service = OpenService();
    service.activateWindow();
    auto *befehl = Child<QLineEdit>("befehl");
    befehl->setFocus();
    ASSERT_TRUE(WaitUntil([&] { return QApplication::focusWidget() == befehl; }));
    // Typed as a user types: into whatever has the focus, not into the field by name.
    for (const char *command : {"dis?", "var?D3"}) {
        QTest::keyClicks(QApplication::focusWidget(), QString::fromLatin1(command));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        ASSERT_TRUE(Idle());
        EXPECT_EQ(QApplication::focusWidget(), befehl) << command;
    }
    EXPECT_EQ(Child<QPlainTextEdit>("Termantwort")->toPlainText(),
              QStringLiteral("dis? 00.Y\nvar?D3=01.Y\n"));
    Screenshot(service, QStringLiteral("service-window"));
}

TEST_F(ServiceWindowTest, ACalibrationBackupAsksBeforeReplacingAFile)
{
    auto &service = OpenService();
    const QByteArray old = "0: 1,2\r\n";
    QFile file(m_dir.filePath(QStringLiteral("alt.cal")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(old);
    file.close();
    service.findChild<QAction *>(QStringLiteral("readcal"))->trigger();
    Child<QLineEdit>("Text1")->setText(QStringLiteral("alt.cal"));
    const qsizetype before = LineCount();
    m_dialogs.confirmations.push_back(false);
    Child<QPushButton>("speichern")->click();
    ASSERT_TRUE(Idle());
    ASSERT_EQ(m_dialogs.messages.size(), 1);
    EXPECT_TRUE(m_dialogs.messages[0].contains(QStringLiteral("alt.cal")))
        << m_dialogs.messages[0].toStdString();
    EXPECT_EQ(m_dialogs.seen[0].owner, &service);
    EXPECT_EQ(LineCount(), before); // nothing asked of the tester
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), old);
    file.close();

    // Answered with OK, the backup replaces it.
    m_dialogs.confirmations.push_back(true);
    Child<QPushButton>("speichern")->click();
    ASSERT_TRUE(Idle());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().count("\r\n"), 51);
}

TEST_F(ServiceWindowTest, TheCalibrationFrameBacksUpAndRestoresInTheFolderItsListsChoose)
{
    ASSERT_TRUE(QDir(m_dir.path()).mkdir(QStringLiteral("werkstatt")));
    for (const char *name : {"alt.cal", "notiz.txt", "werkstatt/w.cal"}) {
        QFile file(m_dir.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << name;
        file.write("0:1,2\r\n");
    }
    auto &service = OpenService();
    const auto names = [](const QListWidget *list) {
        QStringList shown;
        for (int i = 0; i < list->count(); ++i)
            shown << list->item(i)->text();
        return shown;
    };
    service.findChild<QAction *>(QStringLiteral("readcal"))->trigger();
    auto *files = Child<QListWidget>("File1");
    auto *dirs = Child<QListWidget>("dirList");
    ASSERT_NE(files, nullptr);
    ASSERT_NE(dirs, nullptr);
    ASSERT_NE(Child<QComboBox>("DrvList"), nullptr); // shown where the system has drive letters
    EXPECT_TRUE(files->isVisible());
    EXPECT_EQ(names(files), QStringList{QStringLiteral("alt.cal")}); // backups only
    // A backup chosen in the list is the name to save under.
    files->setCurrentRow(0);
    EXPECT_EQ(Child<QLineEdit>("Text1")->text(), QStringLiteral("alt.cal"));

    const auto enter = [dirs](const char *folder) {
        const auto found = dirs->findItems(QString::fromLatin1(folder), Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << folder;
        emit dirs->itemActivated(found.first());
    };
    enter("werkstatt");
    EXPECT_EQ(names(files), QStringList{QStringLiteral("w.cal")});
    Child<QLineEdit>("Text1")->setText(QStringLiteral("neu.cal"));
    Child<QPushButton>("speichern")->click();
    ASSERT_TRUE(Idle());
    QFile backup(m_dir.filePath(QStringLiteral("werkstatt/neu.cal")));
    ASSERT_TRUE(backup.open(QIODevice::ReadOnly));
    EXPECT_EQ(backup.readAll().count("\r\n"), 51);
    EXPECT_TRUE(WaitUntil([&] { return files->count() == 2; }));
    EXPECT_FALSE(QFile::exists(m_dir.filePath(QStringLiteral("neu.cal"))));

    // The restore lists the backups of the folder chosen, and follows a change of it.
    service.findChild<QAction *>(QStringLiteral("storecal"))->trigger();
    auto *restore = Child<QListWidget>("kalibfiles");
    EXPECT_FALSE(files->isVisible());
    EXPECT_EQ(names(restore), (QStringList{QStringLiteral("neu.cal"), QStringLiteral("w.cal")}));
    enter("..");
    EXPECT_EQ(names(restore), QStringList{QStringLiteral("alt.cal")});
    service.resize(900, 600);
    Screenshot(service, QStringLiteral("service-calibration-folders"));
}
