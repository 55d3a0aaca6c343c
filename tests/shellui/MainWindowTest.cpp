// The main window offscreen: start-up, connecting to the virtual tester, languages.
#include "WindowFixture.h"
#include "gui/Mnemonics.h"
#include "support/TestFiles.h"

#include "link/TextIds.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QSet>

using namespace kalvo;
using namespace kalvo::testing;

namespace {

QString LabelText(QWidget &window, const char *name)
{
    auto *label = window.findChild<QLabel *>(QString::fromLatin1(name));
    return label ? label->text() : QStringLiteral("<no %1>").arg(QString::fromLatin1(name));
}

QStringList MenuTitles(QMainWindow &window)
{
    QStringList titles;
    for (QAction *action : window.menuBar()->actions())
        titles << action->text();
    return titles;
}

} // namespace

class MainWindowTest : public WindowFixture {};

TEST_F(MainWindowTest, StartsFromTheSettingsFileWithItsPortAndLanguage)
{
    WriteFile(m_dir.filePath(QStringLiteral("Q417.ini")), "com 3;bench\r\n3\r\nenglisch;language\r\n");
    auto &window = Open({});
    EXPECT_EQ(window.findChild<QComboBox *>(QStringLiteral("COM"))->currentText(), QStringLiteral("COM 3"));
    EXPECT_EQ(window.texts().language(), QStringLiteral("englisch"));
    EXPECT_EQ(gui::WithoutMnemonic(window.findChild<QMenu *>(QStringLiteral("einstellungen"))->title()),
              window.texts().text(link::TxtMenuSettings));
    EXPECT_NE(window.texts().text(link::TxtMenuSettings), QStringLiteral("Einstellungen"));
    // The port stays closed until OK: nothing reached the tester.
    qsizetype received = -1;
    window.device().RunAndWait([&](link::Link &link) {
        EXPECT_FALSE(link.IsOpen());
        received = m_tester.load()->receivedLines().size();
    });
    EXPECT_EQ(received, 0);
}

TEST_F(MainWindowTest, ASettingsNumberOutOfRangeIsToldAndTheRestOfTheFileApplies)
{
    WriteFile(m_dir.filePath(QStringLiteral("Q417.ini")),
              "COM 2\r\n&HFFFFFFFFFFFFFFFFFFFFFFFF\r\nenglisch\r\n");
    auto &window = Open({});
    ASSERT_TRUE(WaitUntil([&] { return !m_dialogs.messages.isEmpty(); }));
    EXPECT_TRUE(m_dialogs.messages[0].contains(QStringLiteral("Q417.ini, Zeile 2")))
        << m_dialogs.messages[0].toStdString();
    EXPECT_EQ(window.findChild<QComboBox *>(QStringLiteral("COM"))->currentText(), QStringLiteral("COM 2"));
    EXPECT_EQ(window.texts().language(), QStringLiteral("englisch"));
}

TEST_F(MainWindowTest, ConnectingThroughTheSettingsFrameShowsVersionsAndIdentity)
{
    const QLocale previous;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    EXPECT_EQ(LabelText(window, "SystVer"), QStringLiteral("17.03.09 10:42"));
    EXPECT_EQ(LabelText(window, "KonfigVer"), QStringLiteral("17.03.09 10:45"));
    EXPECT_EQ(LabelText(window, "bilderver"), QStringLiteral("02.02.09 08:15"));
    EXPECT_EQ(LabelText(window, "hilfever"), QStringLiteral("05.02.09 09:30"));
    EXPECT_EQ(LabelText(window, "ablaufVer"), QStringLiteral("20.02.09 14:05"));
    EXPECT_EQ(LabelText(window, "Version"), QStringLiteral("Firmware V 1.52"));
    EXPECT_TRUE(LabelText(window, "identity").contains(QStringLiteral("KALVO-01")));
    EXPECT_TRUE(window.windowTitle().contains(QStringLiteral("KALVO-01")));
    EXPECT_TRUE(m_dialogs.messages.isEmpty()) << m_dialogs.messages.join('\n').toStdString();
    window.resize(720, 560);
    Screenshot(window, QStringLiteral("main-connected"));

    // The dates as the user writes them; a field that is no date as the tester sent it; the
    // accessory in front shows its own version.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    window.device().RunAndWait([this](link::Link &) {
        m_tester.load()->model().setKymInFront(true);
        m_tester.load()->model().setVersionDates(
            {"17.03.09 10:42", "17.03.09", "garbled", "05.02.09 9:30", "20.02.09 14:05"});
    });
    ASSERT_TRUE(ConnectToSimulator());
    QLocale::setDefault(previous);
    EXPECT_EQ(LabelText(window, "SystVer"), QStringLiteral("17/03/2009 10:42"));
    EXPECT_EQ(LabelText(window, "KonfigVer"), QStringLiteral("17/03/2009"));
    EXPECT_EQ(LabelText(window, "bilderver"), QStringLiteral("garbled"));
    EXPECT_EQ(LabelText(window, "hilfever"), QStringLiteral("05/02/2009 09:30"));
    EXPECT_EQ(LabelText(window, "Version"), QStringLiteral("KYM QRT4027  Firmware V 2.10"));
    Screenshot(window, QStringLiteral("main-connected-accessory"));
}

TEST_F(MainWindowTest, TheTestersDisplayLanguageBecomesTheProgramsLanguage)
{
    auto &window = Open();
    WaitUntil([&] { return m_tester.load() != nullptr; });
    gui::DeviceThread &device = window.device();
    device.RunAndWait([this](link::Link &) { m_tester.load()->model().setLanguage(3); });
    ASSERT_TRUE(ConnectToSimulator());
    EXPECT_EQ(window.texts().language(), QStringLiteral("französisch"));
    EXPECT_TRUE(window.findChild<QAction *>(QStringLiteral("france"))->isChecked());
}

TEST_F(MainWindowTest, EveryLanguageEntryChangesEveryMenuCaption)
{
    auto &window = Open();
    QSet<QString> seen;
    for (const char *entry :
         {"deutsch", "english", "france", "italiano", "nederlandske", "spain", "tschech"}) {
        window.findChild<QAction *>(QString::fromLatin1(entry))->trigger();
        const QStringList titles = MenuTitles(window);
        for (const QString &title : titles)
            EXPECT_FALSE(title.isEmpty()) << entry;
        seen.insert(titles.join('|'));
    }
    EXPECT_EQ(seen.size(), 7) << "each language must caption the menus differently";
    EXPECT_TRUE(m_dialogs.messages.isEmpty()) << m_dialogs.messages.join('\n').toStdString();
}

TEST_F(MainWindowTest, ConfigurationNeedsAnOpenPortAndShowsTheRegisters)
{
    auto &window = Open();
    window.findChild<QAction *>(QStringLiteral("config"))->trigger();
    ASSERT_TRUE(WaitUntil([&] { return m_dialogs.messages.size() == 1; }));
    EXPECT_EQ(m_dialogs.messages.first(), window.texts().text(link::TxtPortNotOpen));

    ASSERT_TRUE(ConnectToSimulator());
    window.findChild<QAction *>(QStringLiteral("config"))->trigger();
    auto *frame = window.findChild<QWidget *>(QStringLiteral("configFrame"));
    ASSERT_TRUE(WaitUntil([&] { return frame->isVisible(); }));
    EXPECT_EQ(m_dialogs.messages.size(), 1);
}

TEST_F(MainWindowTest, AMissingLanguageFileKeepsTheGermanTextsAndSaysSoOnce)
{
    m_programDir = m_dir.path(); // no sprachen.TXT there
    auto &window = Open();
    window.findChild<QAction *>(QStringLiteral("english"))->trigger();
    window.findChild<QAction *>(QStringLiteral("france"))->trigger();
    ASSERT_EQ(m_dialogs.messages.size(), 1) << m_dialogs.messages.join('|').toStdString();
    EXPECT_TRUE(m_dialogs.messages[0].contains(QStringLiteral("sprachen.TXT")));
    EXPECT_EQ(gui::WithoutMnemonic(window.findChild<QMenu *>(QStringLiteral("einstellungen"))->title()),
              QStringLiteral("Einstellungen"));
}

TEST_F(MainWindowTest, ALanguageFileOfTooManyRowsIsReportedAndChangesNothing)
{
    QByteArray rows;
    for (int i = 0; i < 205; ++i)
        rows += "key;Zeile;row\r\n";
    WriteFile(m_dir.filePath(QStringLiteral("sprachen.TXT")), rows);
    m_programDir = m_dir.path();
    auto &window = Open();
    window.findChild<QAction *>(QStringLiteral("english"))->trigger();
    ASSERT_GE(m_dialogs.messages.size(), 1);
    EXPECT_TRUE(m_dialogs.messages.last().contains(QStringLiteral("201")))
        << m_dialogs.messages.last().toStdString();
    EXPECT_EQ(gui::WithoutMnemonic(window.findChild<QMenu *>(QStringLiteral("einstellungen"))->title()),
              QStringLiteral("Einstellungen"));
}

TEST_F(MainWindowTest, ALanguageFileWithoutAnySemicolonIsToldOnceAndTheGermanTextsStay)
{
    WriteFile(m_dir.filePath(QStringLiteral("sprachen.TXT")), "Einstellungen\r\nSchnittstelle\r\n");
    m_programDir = m_dir.path();
    auto &window = Open();
    window.findChild<QAction *>(QStringLiteral("english"))->trigger();
    ASSERT_EQ(m_dialogs.messages.size(), 1) << m_dialogs.messages.join('\n').toStdString();
    EXPECT_TRUE(m_dialogs.messages[0].contains(QStringLiteral("sprachen.TXT")) &&
                m_dialogs.messages[0].contains(QStringLiteral("kein \";\"")))
        << m_dialogs.messages[0].toStdString();
    EXPECT_EQ(gui::WithoutMnemonic(window.findChild<QMenu *>(QStringLiteral("einstellungen"))->title()),
              QStringLiteral("Einstellungen"));
    EXPECT_EQ(gui::WithoutMnemonic(window.findChild<QAction *>(QStringLiteral("Beenden"))->text()),
              QStringLiteral("Beenden"));
}
