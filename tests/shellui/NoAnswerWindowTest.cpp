// A tester that does not answer, a port that does not open, and giving up a wait, in the main
// window offscreen: the program stays, the last tester is no longer shown, a new connect works.
#include "WindowFixture.h"

#include "archive/ArchiveLocation.h"
#include "gui/StatusLine.h"
#include "gui/WaitCountdown.h"
#include "support/SimProcess.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace kalvo;
using namespace kalvo::testing;

namespace {

const QString kNoAnswer = QStringLiteral("3:  Kein Kalvomer gefunden");
const char *const kTesterLabels[] = {"SystVer", "KonfigVer", "bilderver", "hilfever", "ablaufVer", "Version"};

} // namespace

class NoAnswerWindowTest : public WindowFixture {
protected:
    gui::StatusLine &Status()
    {
        return *m_window->findChild<gui::StatusLine *>(QStringLiteral("statusLine"));
    }
    QWidget *Child(const char *name) { return m_window->findChild<QWidget *>(QString::fromLatin1(name)); }
    // Whatever the virtual tester is told from now on goes unanswered (or, with none, is answered).
    void Silence(bool on)
    {
        m_window->device().RunAndWait([&](link::Link &) {
            m_tester.load()->faults().clear();
            if (on)
                m_tester.load()->faults().add(QStringLiteral("silence"));
        });
    }
    // Nothing of a tester shown: its version labels, the serial number, the title.
    void ExpectNoTester()
    {
        for (const char *name : kTesterLabels)
            EXPECT_EQ(m_window->findChild<QLabel *>(QString::fromLatin1(name))->text(), QStringLiteral("-"))
                << name;
        EXPECT_TRUE(m_window->findChild<QLineEdit *>(QStringLiteral("SetSRNr"))->text().isEmpty());
        EXPECT_EQ(m_window->windowTitle(), QStringLiteral("kalvo"));
    }
    void ExpectTester()
    {
        for (const char *name : kTesterLabels)
            EXPECT_NE(m_window->findChild<QLabel *>(QString::fromLatin1(name))->text(), QStringLiteral("-"))
                << name;
        EXPECT_NE(m_window->windowTitle(), QStringLiteral("kalvo"));
    }
};

TEST_F(NoAnswerWindowTest, ASilentTesterEndsInTheSettingsFrameWithTheProgramAndItsWindowsStaying)
{
    archive::WriteArchiveSettings({true, m_dir.filePath(QStringLiteral("archiv.sqlite"))});
    auto &window = Open({QStringLiteral("--simulate"), QStringLiteral("--timeout"), QStringLiteral("0.5")});
    ASSERT_TRUE(ConnectToSimulator());
    ExpectTester();
    window.findChild<QAction *>(QStringLiteral("archiv"))->trigger();
    QWidget *archive = nullptr;
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->objectName() == QLatin1String("FRMArchiv"))
            archive = w;
    ASSERT_NE(archive, nullptr);

    // The configuration is asked for and nothing comes back. The program's own event loop runs
    // meanwhile: it must still be running when the time-out has been dealt with.
    Silence(true);
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (!window.device().busy() && Child("settingsFrame")->isVisible() && !m_dialogs.messages.isEmpty())
            QCoreApplication::exit(0);
    });
    watch.start(20);
    QTimer::singleShot(15000, [] { QCoreApplication::exit(99); });
    QTimer::singleShot(0, [&] { window.findChild<QAction *>(QStringLiteral("config"))->trigger(); });
    EXPECT_EQ(QApplication::exec(), 0) << "3: the program ended; 99: the time-out was not dealt with";
    watch.stop();

    ASSERT_EQ(m_dialogs.messages, QStringList{kNoAnswer});
    EXPECT_EQ(m_dialogs.seen.first().owner, &window) << "the message belongs to the window that asked";
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(archive->isVisible());
    EXPECT_TRUE(Child("settingsFrame")->isVisible());
    EXPECT_TRUE(Child("COM")->isEnabled());
    EXPECT_FALSE(window.device().portOpen());
    ExpectNoTester();
    EXPECT_EQ(Status().connectionText(), QStringLiteral("nicht verbunden"));
    Screenshot(window, QStringLiteral("main-after-no-answer"));

    // The tester answers again: connecting works as before.
    Silence(false);
    ASSERT_TRUE(ConnectToSimulator());
    ExpectTester();
    EXPECT_TRUE(Status().connectionText().startsWith(QStringLiteral("verbunden")))
        << Status().connectionText().toStdString();
    EXPECT_EQ(m_dialogs.messages.size(), 1);
}

TEST_F(NoAnswerWindowTest, TheWaitCountsDownAndAbbrechenOrEscapeEndsItAtOnce)
{
    // The button in German, Escape in French: the countdown speaks the program's language.
    const struct {
        bool escape;
        const char *language, *waiting, *cancel, *notConnected;
    } cases[] = {
        {false, "deutsch", "Warte auf den Kalvomer: noch 38 s", "Abbrechen", "nicht verbunden"},
        {true, "französisch", "Attente du Kalvomer : encore 38 s", "Annuler", "non connecté"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.language);
        m_dialogs.messages.clear();
        // The full time-out of the tester: only giving up ends the wait within the test.
        auto &window = Open();
        ASSERT_TRUE(ConnectToSimulator());
        window.SetLanguage(QString::fromUtf8(c.language));
        Silence(true);
        window.findChild<QAction *>(QStringLiteral("config"))->trigger();
        auto *countdown = window.findChild<gui::WaitCountdown *>(QStringLiteral("waitCountdown"));
        ASSERT_TRUE(WaitUntil([&] { return countdown->isVisible(); }, 5000));
        // Counts down from the time-out, in whole seconds.
        ASSERT_TRUE(WaitUntil([&] { return countdown->text() == QString::fromUtf8(c.waiting); }, 5000))
            << countdown->text().toStdString();
        QPushButton *cancel = countdown->cancelButton();
        EXPECT_TRUE(cancel->isVisible());
        EXPECT_EQ(cancel->text(), QString::fromUtf8(c.cancel));
        Screenshot(window,
                   QStringLiteral("main-wait-countdown-%1").arg(QString::fromUtf8(c.language).left(2)));

        if (c.escape) {
            // Where the focus stays after OK: the port box.
            window.activateWindow();
            ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
            Child("COM")->setFocus();
            QTest::keyClick(Child("COM"), Qt::Key_Escape);
        } else {
            cancel->click();
        }
        // Given up: the same end as a time-out, long before the tester's 40 s.
        ASSERT_TRUE(WaitUntil([&] { return !window.device().busy(); }, 5000));
        EXPECT_EQ(m_dialogs.messages, QStringList{kNoAnswer});
        EXPECT_FALSE(countdown->isVisible());
        EXPECT_TRUE(Child("settingsFrame")->isVisible());
        ExpectNoTester();
        EXPECT_EQ(Status().connectionText(), QString::fromUtf8(c.notConnected));
        m_window.reset();
    }
}

TEST_F(NoAnswerWindowTest, AFailedConnectClearsTheLastTesterAtOnceAndSaysWhatFailed)
{
    // Another port is chosen after a tester was shown: one that cannot be opened, and a real
    // serial line (kalvo-sim's pseudo-terminal) on which nothing answers.
    std::unique_ptr<SimProcess> silent;
    if (SimProcess::Available())
        silent =
            std::make_unique<SimProcess>(QStringList{QStringLiteral("--fault"), QStringLiteral("silence")});
    const QString missing = m_dir.filePath(QStringLiteral("kein-port"));
    const struct {
        QString port;
        QString message; // empty: it names the port
    } cases[] = {{missing, {}}, {silent ? silent->pty() : QString(), kNoAnswer}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.port.toStdString());
        if (c.port.isEmpty())
            continue; // no kalvo-sim on this system
        m_dialogs.messages.clear();
        auto &window =
            Open({QStringLiteral("--simulate"), QStringLiteral("--timeout"), QStringLiteral("0.5")});
        ASSERT_TRUE(ConnectToSimulator());
        ExpectTester();
        window.findChild<QComboBox *>(QStringLiteral("COM"))->setEditText(c.port);
        QMetaObject::invokeMethod(Child("activate"), "click");
        // At once, before the device thread has even tried: the old tester is no longer shown.
        ExpectNoTester();
        ASSERT_TRUE(Idle());
        ExpectNoTester();
        EXPECT_EQ(Status().connectionText(), QStringLiteral("nicht verbunden"));
        EXPECT_TRUE(Status().operationText().contains(QStringLiteral("fehlgeschlagen")))
            << Status().operationText().toStdString();
        ASSERT_EQ(m_dialogs.messages.size(), 1);
        if (c.message.isEmpty())
            EXPECT_TRUE(m_dialogs.messages.first().contains(c.port))
                << m_dialogs.messages.first().toStdString();
        else
            EXPECT_EQ(m_dialogs.messages.first(), c.message);
        EXPECT_TRUE(Child("settingsFrame")->isVisible());
        m_window.reset();
    }
}
