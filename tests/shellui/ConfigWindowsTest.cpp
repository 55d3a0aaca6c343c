// Configuration from the windows offscreen: switches, limits, modem, variables and calibration.
#include "WindowFixture.h"

#include "link/TextIds.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>

using namespace kalvo;
using namespace kalvo::testing;

class ConfigWindowsTest : public WindowFixture {
protected:
    void Trigger(QWidget &window, const char *name) { TriggerIn(window, name); }
    void Click(QWidget &window, const char *name)
    {
        EXPECT_TRUE(Idle());
        auto *button = window.findChild<QPushButton *>(QString::fromLatin1(name));
        ASSERT_NE(button, nullptr) << name;
        EXPECT_TRUE(button->isEnabled()) << name;
        QMetaObject::invokeMethod(button, "click");
        EXPECT_TRUE(Idle());
    }
    QWidget *TopLevel(const char *name)
    {
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == QLatin1String(name) && w->isVisible())
                return w;
        return nullptr;
    }
};

TEST_F(ConfigWindowsTest, SwitchesFollowTheTestersRegistersAndWriteThem)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    auto *mitBez = window.findChild<QAction *>(QStringLiteral("mitBez"));
    EXPECT_TRUE(mitBez->isChecked()); // D3 holds 1 in the virtual tester
    EXPECT_FALSE(window.findChild<QAction *>(QStringLiteral("Quillbank"))->isEnabled()); // E3 holds 0
    EXPECT_FALSE(window.findChild<QAction *>(QStringLiteral("setKal"))->isVisible());
    const qsizetype before = LinesSince(0).size();
    Trigger(window, "mitBez");
    EXPECT_FALSE(mitBez->isChecked());
    Trigger(window, "mitBez");
    EXPECT_TRUE(mitBez->isChecked());
    EXPECT_EQ(LinesSince(before), (QList<QByteArray>{"var!D3 0\r", "var!D3 1\r"}));
}

TEST_F(ConfigWindowsTest, ALimitIsReadShownOnTheScrollBarWrittenAndStored)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    Trigger(window, "kuschl");
    auto *frame = window.findChild<QWidget *>(QStringLiteral("GWFrame"));
    ASSERT_TRUE(WaitUntil([&] { return frame->isVisible(); }));
    auto *scroll = window.findChild<QScrollBar *>(QStringLiteral("VScroll1"));
    EXPECT_EQ(scroll->minimum(), 15);
    EXPECT_EQ(scroll->maximum(), 95);
    scroll->setValue(15);
    EXPECT_EQ(window.findChild<QLabel *>(QStringLiteral("Label10"))->text(), QStringLiteral(" 15 mA"));
    const qsizetype before = LinesSince(0).size();
    Click(window, "GWok");
    Click(window, "GWspeichern");
    EXPECT_EQ(LinesSince(before), (QList<QByteArray>{"wer!bgwkuschl_ea<015.0 mA\r", "cfg!pgm\r"}));
    // Read back, the tester has it.
    Trigger(window, "kuschl");
    ASSERT_TRUE(WaitUntil([&] { return scroll->value() == 15; }));

    Trigger(window, "PZHV");
    ASSERT_TRUE(WaitUntil([&] { return scroll->maximum() == 60; }));
    scroll->setValue(5);
    const qsizetype beforeTime = LinesSince(0).size();
    Click(window, "GWok");
    EXPECT_EQ(LinesSince(beforeTime), (QList<QByteArray>{"var!D25\r"}));
    Screenshot(window, QStringLiteral("main-limit-frame"));
}

TEST_F(ConfigWindowsTest, TheModemWindowSendsFiveStringsAndStoresThem)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    window.findChild<QAction *>(QStringLiteral("modem"))->trigger();
    QWidget *modem = TopLevel("Modem");
    ASSERT_NE(modem, nullptr);
    EXPECT_EQ(modem->windowTitle(), QStringLiteral("Modem Konfiguration"));
    modem->findChild<QLineEdit *>(QStringLiteral("TelNr1"))->setText(QStringLiteral("0711 123456"));
    modem->findChild<QLineEdit *>(QStringLiteral("ModemIni"))->setText(QStringLiteral("AT&F E0 S0=1"));
    const qsizetype before = LinesSince(0).size();
    Click(*modem, "ModemOK");
    Click(*modem, "ModemStore");
    EXPECT_EQ(LinesSince(before), (QList<QByteArray>{"str!121,\r", "str!122,0711 123456\r", "str!123,\r",
                                                     "str!124,\r", "str!125,AT&F E0 S0=1\r", "cfg!pgm\r"}));
    ASSERT_TRUE(WaitUntil([&] { return !m_dialogs.messages.isEmpty(); }));
    EXPECT_EQ(m_dialogs.messages.last(), window.texts().text(link::TxtModemStored));
    Click(*modem, "ModemAbbrechen");
    EXPECT_FALSE(modem->isVisible());
}

TEST_F(ConfigWindowsTest, TheServiceFormListsVariablesDumpsAndBacksUpAndRestoresCalibration)
{
    auto &window = Open({QStringLiteral("--simulate"), QStringLiteral("/Service")});
    EXPECT_TRUE(window.findChild<QAction *>(QStringLiteral("setKal"))->isVisible());
    ASSERT_TRUE(ConnectToSimulator());
    window.findChild<QAction *>(QStringLiteral("service"))->trigger();
    QWidget *service = TopLevel("test");
    ASSERT_NE(service, nullptr);
    auto *terminal = service->findChild<QPlainTextEdit *>(QStringLiteral("Testfeld"));

    Trigger(*service, "varmas");
    auto *list = service->findChild<QListWidget *>(QStringLiteral("readvar"));
    ASSERT_GT(list->count(), 5);
    const auto d3 = list->findItems(QStringLiteral("#D3"), Qt::MatchEndsWith);
    ASSERT_FALSE(d3.isEmpty());
    list->setCurrentItem(d3.first());
    emit list->itemActivated(d3.first());
    ASSERT_TRUE(Idle());
    EXPECT_TRUE(WaitUntil([&] { return terminal->toPlainText().contains(QStringLiteral("0000 0001")); }))
        << terminal->toPlainText().toStdString();

    Trigger(*service, "konfiguration");
    ASSERT_TRUE(WaitUntil([&] { return terminal->toPlainText().count(QLatin1Char('\n')) >= 48; }));
    EXPECT_TRUE(terminal->toPlainText().startsWith(QStringLiteral("D0: ==")));

    // Back up under the tester's name, and under the name the serial number in SetSRNr makes;
    // then restore the first and store it on OK.
    auto *serial = window.findChild<QLineEdit *>(QStringLiteral("SetSRNr"));
    ASSERT_NE(serial, nullptr);
    EXPECT_EQ(serial->text(), QStringLiteral("0471 1203 5567"));
    Trigger(*service, "readcal");
    auto *name = service->findChild<QLineEdit *>(QStringLiteral("Text1"));
    EXPECT_EQ(name->text(), QStringLiteral("KALVO-01.cal"));
    Click(*service, "speichern");
    auto *offered = service->findChild<QComboBox *>(QStringLiteral("backupNames"));
    ASSERT_NE(offered, nullptr);
    ASSERT_EQ(offered->count(), 2);
    offered->setCurrentIndex(1);
    EXPECT_EQ(name->text(), QStringLiteral("0471120.567"));
    Click(*service, "speichern");
    for (const char *file : {"KALVO-01.cal", "0471120.567"}) {
        QFile backup(m_dir.filePath(QString::fromLatin1(file)));
        ASSERT_TRUE(backup.open(QIODevice::ReadOnly)) << file;
        EXPECT_EQ(backup.readAll().count("\r\n"), 51) << file;
    }

    Trigger(*service, "storecal");
    auto *files = service->findChild<QListWidget *>(QStringLiteral("kalibfiles"));
    ASSERT_EQ(files->count(), 1);
    const qsizetype before = LinesSince(0).size();
    m_dialogs.confirmations.push_back(true);
    files->setCurrentRow(0);
    emit files->itemActivated(files->item(0));
    ASSERT_TRUE(Idle());
    const QList<QByteArray> lines = LinesSince(before);
    ASSERT_GE(lines.size(), 2 + 2 * 51 + 2);
    EXPECT_EQ(lines.first(), QByteArray("idn!99\r"));
    EXPECT_EQ(lines[lines.size() - 2], QByteArray("kal!pgm\r"));
    EXPECT_EQ(lines.last(), QByteArray("kal!aus\r"));
    // The fixed question, what replaces what below it, and Cancel the default.
    const qsizetype asked = m_dialogs.messages.indexOf(QRegularExpression(
        QStringLiteral("^speichern\\?\\?\n\nDie gespeicherten Kalibrierwerte des Kalvomer werden durch 51 "
                       "Einträge aus .+ ersetzt\\.$")));
    ASSERT_GE(asked, 0) << m_dialogs.messages.join('|').toStdString();
    EXPECT_EQ(m_dialogs.defaultButtons.value(asked), int(QMessageBox::Cancel));
    service->resize(900, 600);
    Screenshot(*service, QStringLiteral("service-calibration-restored"));
}

TEST_F(ConfigWindowsTest, TheServiceFormResetsRegisterD3AndTheMainSwitchFollows)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    auto *mitBez = window.findChild<QAction *>(QStringLiteral("mitBez"));
    ASSERT_TRUE(mitBez->isChecked()); // D3 holds 1 in the virtual tester
    window.findChild<QAction *>(QStringLiteral("english"))->trigger();
    window.findChild<QAction *>(QStringLiteral("service"))->trigger();
    QWidget *service = TopLevel("test");
    ASSERT_NE(service, nullptr);
    auto *reset = service->findChild<QAction *>(QStringLiteral("resetD3"));
    ASSERT_NE(reset, nullptr);
    EXPECT_EQ(reset->text(), QStringLiteral("Reset register D3"));
    const qsizetype before = LinesSince(0).size();
    Trigger(*service, "resetD3");
    EXPECT_EQ(LinesSince(before), (QList<QByteArray>{"var!D3,0\r"}));
    EXPECT_TRUE(WaitUntil([&] { return !mitBez->isChecked(); }));
    EXPECT_TRUE(m_dialogs.messages.isEmpty()) << m_dialogs.messages.join('\n').toStdString();

    auto *menu = service->findChild<QMenu *>(QStringLiteral("konfigurationMenu"));
    menu->popup(service->mapToGlobal(QPoint(120, 20)));
    Screenshot(*menu, QStringLiteral("service-configuration-menu"));
    menu->hide();
}

TEST_F(ConfigWindowsTest, AnOverfullDumpBlockRefusesTheDumpButTheVariableListLoads)
{
    QByteArray text = "; ab hier speichern\r\n";
    for (int i = 0; i < 60; ++i)
        text += "V" + QByteArray::number(i) + "\tEQU 0D0H\t; x\r\n";
    text += "; bis hier speichern\r\n";
    QFile file(m_dir.filePath(QStringLiteral("variable.mas")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.close();

    Open();
    ASSERT_TRUE(ConnectToSimulator());
    m_window->findChild<QAction *>(QStringLiteral("service"))->trigger();
    QWidget *service = TopLevel("test");
    ASSERT_NE(service, nullptr);
    Trigger(*service, "varmas");
    EXPECT_EQ(service->findChild<QListWidget *>(QStringLiteral("readvar"))->count(), 60);
    EXPECT_TRUE(m_dialogs.messages.isEmpty()) << m_dialogs.messages.join('\n').toStdString();

    const qsizetype before = LinesSince(0).size();
    Trigger(*service, "konfiguration");
    ASSERT_TRUE(WaitUntil([&] { return !m_dialogs.messages.isEmpty(); }));
    EXPECT_TRUE(m_dialogs.messages[0].contains(QStringLiteral("variable.mas")) &&
                m_dialogs.messages[0].contains(QStringLiteral("gefunden 60")))
        << m_dialogs.messages[0].toStdString();
    EXPECT_TRUE(LinesSince(before).isEmpty());
}

TEST_F(ConfigWindowsTest, ALimitOutsideTheScrollRangeIsReportedAndNotWrittenBackUnasked)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    window.device().RunAndWait(
        [this](link::Link &) { m_tester.load()->model().working().touchCurrentLimit = 120; });
    Trigger(window, "kuschl");
    auto *scroll = window.findChild<QScrollBar *>(QStringLiteral("VScroll1"));
    ASSERT_TRUE(WaitUntil([&] { return !m_dialogs.messages.isEmpty(); }));
    EXPECT_EQ(m_dialogs.messages[0],
              QStringLiteral(
                  "Der Kalvomer meldet 120 mA, einstellbar sind 15 mA bis 95 mA. Angezeigt wird 95 mA."));
    EXPECT_EQ(scroll->value(), 95);
    Screenshot(window, QStringLiteral("main-limit-out-of-range"));

    // OK with the stand-in value asks first; Cancel sends nothing, OK writes it.
    const qsizetype before = LinesSince(0).size();
    m_dialogs.confirmations.push_back(false);
    Click(window, "GWok");
    ASSERT_EQ(m_dialogs.messages.size(), 2);
    EXPECT_TRUE(m_dialogs.messages[1].contains(QStringLiteral("95 mA")))
        << m_dialogs.messages[1].toStdString();
    EXPECT_TRUE(LinesSince(before).isEmpty());
    m_dialogs.confirmations.push_back(true);
    Click(window, "GWok");
    EXPECT_EQ(LinesSince(before), (QList<QByteArray>{"wer!bgwkuschl_ea<095.0 mA\r"}));

    // A value the user chose is written without a question.
    window.device().RunAndWait(
        [this](link::Link &) { m_tester.load()->model().working().touchCurrentLimit = 10; });
    Trigger(window, "kuschl");
    ASSERT_TRUE(WaitUntil([&] { return m_dialogs.messages.size() == 4; }));
    EXPECT_TRUE(m_dialogs.messages[3].contains(QStringLiteral("10 mA")))
        << m_dialogs.messages[3].toStdString();
    scroll->setValue(40);
    const qsizetype chosen = LinesSince(0).size();
    Click(window, "GWok");
    EXPECT_EQ(m_dialogs.messages.size(), 4);
    EXPECT_EQ(LinesSince(chosen), (QList<QByteArray>{"wer!bgwkuschl_ea<040.0 mA\r"}));
}
