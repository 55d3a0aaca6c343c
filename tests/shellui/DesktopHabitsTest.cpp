// The main window as a desktop program: one frame at a time, a bounded size, the status bar,
// quitting, Qt's own texts in the program's language and the port it remembers.
#include "WindowFixture.h"
#include "support/TestFiles.h"

#include "app/ChildWindows.h"
#include "gui/StatusLine.h"
#include "modem/ui/ModemWindow.h"
#include "records/ui/RecordWindow.h"
#include "shell/PortMemory.h"
#include "shell/ui/ServiceWindow.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDockWidget>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>

using namespace kalvo;
using namespace kalvo::testing;

class DesktopHabitsTest : public WindowFixture {
protected:
    QWidget *Frame(const char *name) { return m_window->findChild<QWidget *>(QString::fromLatin1(name)); }
    // The frames of the central area that can be seen.
    QStringList VisibleFrames()
    {
        QStringList shown;
        for (const char *name : {"settingsFrame", "configFrame", "GWFrame"})
            if (Frame(name)->isVisible())
                shown << QString::fromLatin1(name);
        return shown;
    }
    QString Status(const char *name)
    {
        return m_window->findChild<QLabel *>(QString::fromLatin1(name))->text();
    }
};

TEST_F(DesktopHabitsTest, OneFrameAtATimeAndEachCanBeLeft)
{
    Open();
    EXPECT_EQ(VisibleFrames(), QStringList{QStringLiteral("settingsFrame")});
    ASSERT_TRUE(ConnectToSimulator());
    Trigger("config");
    ASSERT_TRUE(WaitUntil([&] { return Frame("configFrame")->isVisible(); }));
    EXPECT_EQ(VisibleFrames(), QStringList{QStringLiteral("configFrame")});
    Trigger("kuschl");
    ASSERT_TRUE(WaitUntil([&] { return Frame("GWFrame")->isVisible(); }));
    EXPECT_EQ(VisibleFrames(), QStringList{QStringLiteral("GWFrame")});

    // The limit frame is left by its own button; nothing else takes its place.
    auto *close = m_window->findChild<QPushButton *>(QStringLiteral("GWFrameClose"));
    ASSERT_NE(close, nullptr);
    EXPECT_EQ(close->text(), m_window->texts().text(link::TxtButtonClose));
    close->click();
    EXPECT_TRUE(VisibleFrames().isEmpty()) << VisibleFrames().join(' ').toStdString();
    Trigger("verbindung");
    EXPECT_EQ(VisibleFrames(), QStringList{QStringLiteral("settingsFrame")});
}

TEST_F(DesktopHabitsTest, TheWindowFitsA1024By768ScreenWhateverIsOpen)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    // The tester display, filled with more lines than it has room for.
    auto *dock = window.findChild<QDockWidget *>(QStringLiteral("displayDock"));
    QByteArray screenful;
    for (int i = 0; i < 40; ++i)
        screenful += "Zeile " + QByteArray::number(i) + "  Isolationswiderstand > 300 MOhm\r\n";
    emit window.device().displayBytes(screenful);
    ASSERT_TRUE(WaitUntil([&] { return dock->isVisible(); }));
    for (const char *entry : {"verbindung", "config", "kuschl", "Ubez", "PZHV"}) {
        Trigger(entry);
        QApplication::processEvents();
        window.adjustSize();
        const QSize size = window.frameGeometry().size();
        EXPECT_LE(size.width(), 1024) << entry;
        EXPECT_LE(size.height(), 740) << entry << " is " << size.height() << " high";
        EXPECT_LE(window.minimumSizeHint().height(), 740) << entry;
        Screenshot(window, QStringLiteral("main-frame-%1").arg(QString::fromLatin1(entry)));
    }
    // The display scrolls rather than grows.
    auto *text = dock->findChild<QPlainTextEdit *>(QStringLiteral("display"));
    EXPECT_GT(text->verticalScrollBar()->maximum(), 0);
}

TEST_F(DesktopHabitsTest, TheStatusBarFollowsPortConnectionAndOperations)
{
    auto &window = Open();
    EXPECT_EQ(Status("statusPort"), QStringLiteral("Simulator"));
    EXPECT_EQ(Status("statusConnection"), QStringLiteral("nicht verbunden"));
    ASSERT_TRUE(ConnectToSimulator());
    const QString name = QString::fromLatin1(window.identity().shortDesignation).trimmed();
    ASSERT_FALSE(name.isEmpty());
    EXPECT_TRUE(Status("statusConnection").startsWith(QStringLiteral("verbunden: ") + name))
        << Status("statusConnection").toStdString();

    // A store that the tester took says so; one that it refused says that it failed.
    Trigger("kuschl");
    window.findChild<QPushButton *>(QStringLiteral("GWspeichern"))->click();
    ASSERT_TRUE(Idle());
    EXPECT_EQ(Status("statusOperation"), QStringLiteral("Grenzwert gespeichert"));

    // In English once the language is English.
    window.findChild<QAction *>(QStringLiteral("english"))->trigger();
    window.findChild<QPushButton *>(QStringLiteral("GWspeichern"))->click();
    ASSERT_TRUE(Idle());
    EXPECT_EQ(Status("statusOperation"), QStringLiteral("Limit value stored"));
    EXPECT_FALSE(window.findChild<QProgressBar *>(QStringLiteral("statusProgress"))->isVisible());
}

TEST_F(DesktopHabitsTest, ALostLineShowsInTheStatusBar)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    // The line goes while the window reads the configuration.
    window.device().RunAndWait(
        [this](link::Link &) { m_tester.load()->faults().add(QStringLiteral("vanish")); });
    Trigger("config");
    ASSERT_TRUE(WaitUntil([&] {
        return Status("statusConnection") == QStringLiteral("Verbindung verloren");
    })) << Status("statusConnection").toStdString();
}

TEST_F(DesktopHabitsTest, ClosingTheMainWindowClosesEveryWindowAndThePort)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    ASSERT_TRUE(window.device().portOpen());
    QPointer<QWidget> records = window.windows().OpenRecords(window.texts());
    QPointer<QWidget> service = window.windows().OpenService(window.texts(), {});
    QPointer<QWidget> modem = window.windows().OpenModem(window.texts());
    ASSERT_TRUE(records && service && modem);
    window.close(); // the title bar's button, Alt+F4
    EXPECT_TRUE(records.isNull());
    EXPECT_TRUE(service.isNull());
    EXPECT_TRUE(modem.isNull());
    EXPECT_FALSE(window.device().portOpen());
    QApplication::processEvents();
    for (QWidget *w : QApplication::topLevelWidgets())
        EXPECT_FALSE(w->isVisible()) << w->objectName().toStdString();
}

TEST_F(DesktopHabitsTest, TheRecordAndServiceWindowsOpenWholeOnTheScreen)
{
    auto &window = Open();
    const QRect screen = window.screen()->availableGeometry();
    // A screen smaller than the windows would like: they shrink to it rather than hang over.
    ASSERT_LT(screen.width(), 1100) << "the offscreen screen has grown; pick larger windows";
    for (QWidget *opened : {static_cast<QWidget *>(window.windows().OpenRecords(window.texts())),
                            static_cast<QWidget *>(window.windows().OpenService(window.texts(), {}))}) {
        QApplication::processEvents();
        EXPECT_TRUE(screen.contains(opened->frameGeometry()))
            << opened->objectName().toStdString() << " at " << opened->frameGeometry().x() << ","
            << opened->frameGeometry().y() << " " << opened->frameGeometry().width() << "x"
            << opened->frameGeometry().height() << " on " << screen.width() << "x" << screen.height();
    }
}

TEST_F(DesktopHabitsTest, QtsOwnDialogsSpeakTheProgramsLanguage)
{
    auto &window = Open();
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Abbrechen"));
    window.findChild<QAction *>(QStringLiteral("english"))->trigger();
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Cancel"));
    window.findChild<QAction *>(QStringLiteral("france"))->trigger();
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Annuler"));
}

TEST_F(DesktopHabitsTest, ThePortLastConfirmedIsPreselectedUnlessTheSettingsFileNamesOne)
{
    shell::RememberPort(QStringLiteral("COM 3"));
    auto &window = Open({});
    EXPECT_EQ(window.findChild<QComboBox *>(QStringLiteral("COM"))->currentText(), QStringLiteral("COM 3"));
    m_window.reset();

    WriteFile(m_dir.filePath(QStringLiteral("Q417.ini")), "COM 2\r\n2\r\n");
    auto &withFile = Open({});
    EXPECT_EQ(withFile.findChild<QComboBox *>(QStringLiteral("COM"))->currentText(), QStringLiteral("COM 2"));
    m_window.reset();
    QFile::remove(m_dir.filePath(QStringLiteral("Q417.ini")));

    // Confirming a port with OK is what makes it remembered.
    auto &again = Open();
    ASSERT_TRUE(ConnectToSimulator());
    EXPECT_EQ(shell::StartPort(shell::Settings{}), QStringLiteral("Simulator"));
    (void)again;
}
