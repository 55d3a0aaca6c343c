// The main window's entries offscreen: clock, name, configuration store, help, info, switches.
#include "WindowFixture.h"
#include "gui/Mnemonics.h"

#include "link/TextIds.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDockWidget>
#include <QFile>
#include <QLabel>
#include <QTextBrowser>

using namespace kalvo;
using namespace kalvo::testing;

class MainWindowFlowsTest : public WindowFixture {};

TEST_F(MainWindowFlowsTest, ClockShowsTheTestersTimeAndSendsWhatIsTyped)
{
    Open();
    ASSERT_TRUE(ConnectToSimulator());
    const qsizetype before = LinesSince(0).size();
    m_dialogs.inputs.push_back(QStringLiteral("24.12.26;18:30"));
    Trigger("UhrStellen");
    ASSERT_EQ(m_dialogs.prompts.size(), 1);
    EXPECT_TRUE(m_dialogs.prompts[0].startsWith(QStringLiteral("Kalvomer:\nDatum ")))
        << m_dialogs.prompts[0].toStdString();
    EXPECT_TRUE(m_dialogs.prompts[0].contains(QStringLiteral("\nUhrzeit ")));
    // The PC's clock as "dd.mm.yy;hh:mm".
    EXPECT_TRUE(
        m_dialogs.proposals[0].startsWith(QDate::currentDate().toString(QStringLiteral("dd.MM.yy;"))));
    EXPECT_EQ(m_dialogs.proposals[0].size(), 14);
    EXPECT_EQ(m_dialogs.proposals[0][11], QLatin1Char(':'));
    EXPECT_EQ(LinesSince(before), (QList<QByteArray>{"dat?\r", "dat!24.12.26;18:30\r"}));
}

TEST_F(MainWindowFlowsTest, NamingIdentifiesFirstThenRefusesNineAndStoresEight)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    qsizetype before = LinesSince(0).size();
    m_dialogs.inputs.push_back(QStringLiteral("NEUNZEICH"));
    Trigger("Taufe");
    EXPECT_EQ(LinesSince(before), (QList<QByteArray>{"dis?\r", "ver?\r", "idn?\r"}));
    ASSERT_EQ(m_dialogs.messages.size(), 1);
    EXPECT_EQ(m_dialogs.messages[0], window.texts().text(link::TxtNameTooLong));

    before = LinesSince(0).size();
    m_dialogs.inputs.push_back(QStringLiteral("PRUEF-3"));
    Trigger("Taufe");
    EXPECT_EQ(LinesSince(before),
              (QList<QByteArray>{"dis?\r", "ver?\r", "idn?\r", "kal!aus\r", "idn!1,PRUEF-3\r", "cfg!pgm\r"}));
    // What the window shows afterwards is the tester's new name, not the one identification read.
    EXPECT_TRUE(WaitUntil([&] { return window.windowTitle().contains(QStringLiteral("PRUEF-3")); }))
        << window.windowTitle().toStdString();
    EXPECT_TRUE(
        window.findChild<QLabel *>(QStringLiteral("identity"))->text().contains(QStringLiteral("PRUEF-3")));
    EXPECT_EQ(window.identity().shortDesignation, QByteArray("PRUEF-3"));
}

TEST_F(MainWindowFlowsTest, ARefusedConfigurationStoreIsReported)
{
    auto &window = Open({QStringLiteral("--simulate")}, {QStringLiteral("refusestore:cfg!pgm")});
    ASSERT_TRUE(ConnectToSimulator());
    Trigger("config");
    auto *store = window.findChild<QWidget *>(QStringLiteral("configStore"));
    ASSERT_TRUE(store->isVisible());
    QMetaObject::invokeMethod(store, "click");
    ASSERT_TRUE(WaitUntil([&] { return !m_dialogs.messages.isEmpty(); }));
    EXPECT_EQ(m_dialogs.messages.last(),
              QStringLiteral("Die Konfiguration konnten nicht gespeichert werden"));
}

TEST_F(MainWindowFlowsTest, HelpFollowsTheLanguageAndInfoShowsTheVersion)
{
    auto &window = Open();
    window.findChild<QAction *>(QStringLiteral("english"))->trigger();
    window.findChild<QAction *>(QStringLiteral("Inhalt"))->trigger();
    auto *help = window.findChild<QDialog *>(QStringLiteral("helpWindow"));
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->isVisible());
    const QString english = help->findChild<QTextBrowser *>()->toPlainText();
    EXPECT_TRUE(english.contains(window.texts().text(link::TxtMenuSettings)));
    window.findChild<QAction *>(QStringLiteral("deutsch"))->trigger();
    window.findChild<QAction *>(QStringLiteral("Inhalt"))->trigger();
    EXPECT_NE(help->findChild<QTextBrowser *>()->toPlainText(), english);
    EXPECT_TRUE(help->findChild<QTextBrowser *>()->toPlainText().contains(QStringLiteral("Einstellungen")));

    QMetaObject::invokeMethod(window.findChild<QAction *>(QStringLiteral("info")), "trigger",
                              Qt::QueuedConnection);
    ASSERT_TRUE(WaitUntil([&] { return !m_dialogs.messages.isEmpty(); }));
    EXPECT_TRUE(m_dialogs.messages.last().startsWith(QStringLiteral("Version 7.23-10.9.2009")));
}

TEST_F(MainWindowFlowsTest, SwitchesOpenConfigurationAtStartAndShowDevelopmentEntries)
{
    // The development entries, hidden without "/Entw" and shown with it.
    const char *const development[] = {"Entw", "RAS", "manu"};
    auto &plain = Open();
    for (const char *name : development) {
        auto *entry = plain.findChild<QAction *>(QString::fromLatin1(name));
        ASSERT_NE(entry, nullptr) << name;
        EXPECT_FALSE(entry->isVisible()) << name;
    }
    m_window.reset();

    // "/K" opens the configuration frame as soon as the tester is connected, and only then.
    auto &window = Open({QStringLiteral("--simulate"), QStringLiteral("/K"), QStringLiteral("/Entwicklung")});
    auto *frame = window.findChild<QWidget *>(QStringLiteral("configFrame"));
    EXPECT_FALSE(frame->isVisible());
    ASSERT_TRUE(ConnectToSimulator());
    ASSERT_TRUE(WaitUntil([&] { return frame->isVisible(); }));
    EXPECT_TRUE(m_dialogs.messages.isEmpty()) << m_dialogs.messages.join('|').toStdString();
    // Once: the next connect leaves the frame shown as the user chose.
    window.findChild<QAction *>(QStringLiteral("verbindung"))->trigger();
    ASSERT_TRUE(ConnectToSimulator());
    EXPECT_FALSE(frame->isVisible());
    for (const char *name : development)
        EXPECT_TRUE(window.findChild<QAction *>(QString::fromLatin1(name))->isVisible()) << name;
    EXPECT_TRUE(QFile::exists(m_dir.filePath(QStringLiteral("test.log"))));

    // RAS shows and hides the tester's display, and follows the display closed by its own button.
    auto *ras = window.findChild<QAction *>(QStringLiteral("RAS"));
    auto *dock = window.findChild<QDockWidget *>(QStringLiteral("displayDock"));
    EXPECT_EQ(gui::WithoutMnemonic(ras->text()), window.texts().text(link::TxtLabelDisplay));
    ras->trigger();
    EXPECT_TRUE(dock->isVisible());
    EXPECT_TRUE(ras->isChecked());
    dock->close();
    EXPECT_FALSE(ras->isChecked());
    ras->trigger();
    EXPECT_TRUE(dock->isVisible());
    ras->trigger();
    EXPECT_FALSE(dock->isVisible());
}

TEST_F(MainWindowFlowsTest, ExitEndsTheProgram)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    QMetaObject::invokeMethod(window.findChild<QAction *>(QStringLiteral("Beenden")), "trigger",
                              Qt::QueuedConnection);
    EXPECT_EQ(QApplication::exec(), 0);
}

TEST_F(MainWindowFlowsTest, OpeningTheServiceFormEndsTheDevelopmentTerminal)
{
    auto &window = Open({QStringLiteral("--simulate"), QStringLiteral("/Entw")});
    auto *terminal = window.findChild<QAction *>(QStringLiteral("Entw"));
    terminal->trigger();
    ASSERT_TRUE(terminal->isChecked());
    // In development-terminal mode connecting only wakes the tester.
    ASSERT_TRUE(ConnectToSimulator());
    EXPECT_FALSE(LinesSince(0).contains("mes!0\r"));

    Trigger("service");
    EXPECT_FALSE(terminal->isChecked());
    const qsizetype before = LinesSince(0).size();
    ASSERT_TRUE(ConnectToSimulator());
    const QList<QByteArray> lines = LinesSince(before);
    EXPECT_TRUE(lines.contains("mes!0\r") && lines.contains("var?D3\r")) << lines.join(' ').toStdString();
}
