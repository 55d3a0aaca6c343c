// The update frames of the main window offscreen: a package run and a single file from the file
// choice, while the window stays alive.
#include "WindowFixture.h"
#include "sim/UpdateFiles.h"
#include "support/SimProcess.h"
#include "support/TestFiles.h"

#include "update/ui/FileChoiceFrame.h"

#include <QComboBox>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>

using namespace kalvo;
using namespace kalvo::testing;

class UpdateWindowTest : public WindowFixture {
protected:
    // A package of the German language in the test's folder, and the file choice pointed at it.
    void WritePackage()
    {
        WriteFile(m_dir.filePath(QStringLiteral("med.hex")), FirmwareLines(12).join("\r\n") + "\r\n");
        WriteFile(m_dir.filePath(QStringLiteral("bilder.p")), Package(PictureBody(3000)));
        WriteFile(m_dir.filePath(QStringLiteral("abge.p")), Package(PictureBody(2000)));
        WriteFile(m_dir.filePath(QStringLiteral("hlfge.p")), Package(PictureBody(2000)));
        m_window->findChild<update::ui::FileChoiceFrame *>(QStringLiteral("SPdownfiles"))
            ->SetDirectory(m_dir.path());
    }
    QList<QByteArray> CommandsSince(qsizetype from)
    {
        QList<QByteArray> commands;
        for (const QByteArray &line : LinesSince(from))
            if (line.size() < 20) // the package streams and HEX lines are not commands
                commands << line;
        return commands;
    }
    template <typename T> T *Child(const char *name)
    {
        return m_window->findChild<T *>(QString::fromLatin1(name));
    }
};

TEST_F(UpdateWindowTest, APackageRunKeepsTheWindowServedMovesTheBarAndLocksCancel)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    WritePackage();
    const qsizetype before = LinesSince(0).size();

    // Watched from the window's own event loop: it must keep turning during the transfer.
    int ticksWhileBusy = 0;
    bool cancelEnabledWhileBusy = false;
    QList<int> bar;
    QStringList files; // what dlFile names, in order
    bool pictureTaken = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (!window.device().busy())
            return;
        ++ticksWhileBusy;
        cancelEnabledWhileBusy |= Child<QPushButton>("updatecancel")->isEnabled();
        const int value = Child<QProgressBar>("ProgressBar1")->value();
        if (bar.isEmpty() || bar.last() != value)
            bar << value;
        const QString file = QFileInfo(Child<QLabel>("dlFile")->text()).fileName();
        if (files.isEmpty() || files.last() != file)
            files << file;
        // One picture of the frame during a package's transfer: the file, the bar, the buttons.
        if (!pictureTaken && file == QLatin1String("bilder.p")) {
            pictureTaken = true;
            Screenshot(window, QStringLiteral("main-update-transfer"));
        }
    });
    watch.start(5);
    Trigger("paket_ge");
    ASSERT_TRUE(WaitUntil([&] { return !window.device().busy(); }, 60000));
    watch.stop();

    EXPECT_GT(ticksWhileBusy, 20);
    // Each file of the package is named as it goes (the folder first, before the run begins).
    files.removeAll(QFileInfo(m_dir.path()).fileName());
    EXPECT_EQ(files, (QStringList{QStringLiteral("med.hex"), QStringLiteral("bilder.p"),
                                  QStringLiteral("abge.p"), QStringLiteral("hlfge.p")}));
    EXPECT_FALSE(cancelEnabledWhileBusy);
    EXPECT_TRUE(std::any_of(bar.begin(), bar.end(), [](int v) { return v > 0 && v < 100; }))
        << "the bar never showed a value between 0 and 100";
    const QList<QByteArray> commands = CommandsSince(before);
    const QList<QByteArray> announces = [&] {
        QList<QByteArray> found;
        for (const QByteArray &c : commands)
            if (c.startsWith("kal!upd") || c.startsWith("rst!0"))
                found << c;
        return found;
    }();
    EXPECT_EQ(announces,
              (QList<QByteArray>{"kal!upd0\r", "kal!upd3\r", "kal!upd1\r", "kal!upd2\r", "rst!0\r"}))
        << QByteArrayList(commands).join(' ').toStdString();
    EXPECT_TRUE(m_dialogs.messages.isEmpty()) << m_dialogs.messages.join('|').toStdString();
    // Over: the settings frame is back, with the identity read after the run.
    EXPECT_TRUE(Child<QWidget>("settingsFrame")->isVisible());
    EXPECT_FALSE(Child<QWidget>("updateframe")->isVisible());
}

TEST_F(UpdateWindowTest, ChoosingAFileInTheListSendsItAtOnceByTheListsMask)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    WritePackage();
    struct Case {
        const char *entry, *file;
        QByteArray announce;
        bool restart; // "rst!0" follows a package; firmware restarts the tester by itself
    };
    const Case cases[] = {{"bilder", "bilder.p", "kal!upd3\r", true},
                          {"ablauf", "abge.p", "kal!upd1\r", true},
                          {"hilfe", "hlfge.p", "kal!upd2\r", true},
                          {"syst", "med.hex", "kal!upd0\r", false}};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.entry);
        Trigger(c.entry);
        auto *files = Child<QListWidget>("File1");
        ASSERT_TRUE(Child<QWidget>("SPdownfiles")->isVisible());
        ASSERT_EQ(files->count(), 1); // the list's mask lets one file of the package through
        EXPECT_EQ(files->item(0)->text(), QString::fromLatin1(c.file));
        if (QByteArray(c.entry) == "bilder")
            Screenshot(window, QStringLiteral("main-update-file-choice"));
        const qsizetype before = LinesSince(0).size();
        emit files->itemActivated(files->item(0));
        ASSERT_TRUE(WaitUntil([&] { return !window.device().busy(); }, 30000));
        const QList<QByteArray> commands = CommandsSince(before);
        EXPECT_EQ(commands.mid(0, 3), (QList<QByteArray>{"idn!99\r", "kal!ein\r", c.announce}))
            << QByteArrayList(commands).join(' ').toStdString();
        EXPECT_EQ(commands.contains("rst!0\r"), c.restart);
        EXPECT_TRUE(Child<QPushButton>("okupdate")->isEnabled()); // the chosen file can be sent again
    }
    EXPECT_TRUE(m_dialogs.messages.isEmpty()) << m_dialogs.messages.join('|').toStdString();
}

TEST_F(UpdateWindowTest, ManualUpdateSendsTheChosenFileAgainByItsName)
{
    auto &window = Open({QStringLiteral("--simulate"), QStringLiteral("/Entw")});
    ASSERT_TRUE(ConnectToSimulator());
    WritePackage();
    // Nothing chosen yet: the frame names the folder and okupdate has nothing to send.
    Trigger("manu");
    ASSERT_TRUE(Child<QWidget>("updateframe")->isVisible());
    EXPECT_FALSE(Child<QPushButton>("okupdate")->isEnabled());
    QMetaObject::invokeMethod(Child<QPushButton>("updatecancel"), "click");
    EXPECT_FALSE(Child<QWidget>("updateframe")->isVisible());

    Trigger("bilder");
    auto *files = Child<QListWidget>("File1");
    ASSERT_EQ(files->count(), 1);
    emit files->itemActivated(files->item(0));
    ASSERT_TRUE(WaitUntil([&] { return !window.device().busy(); }, 30000));
    ASSERT_FALSE(Child<QWidget>("updateframe")->isVisible());

    Trigger("manu");
    ASSERT_TRUE(Child<QWidget>("updateframe")->isVisible());
    EXPECT_EQ(QFileInfo(Child<QLabel>("dlFile")->text()).fileName(), QStringLiteral("bilder.p"));
    auto *start = Child<QPushButton>("okupdate");
    ASSERT_TRUE(start->isEnabled());
    const qsizetype before = LinesSince(0).size();
    QMetaObject::invokeMethod(start, "click");
    ASSERT_TRUE(WaitUntil([&] { return !window.device().busy(); }, 30000));
    const QList<QByteArray> commands = CommandsSince(before);
    EXPECT_EQ(commands.mid(0, 3), (QList<QByteArray>{"idn!99\r", "kal!ein\r", "kal!upd3\r"}))
        << QByteArrayList(commands).join(' ').toStdString();
    EXPECT_TRUE(commands.contains("rst!0\r"));
    EXPECT_TRUE(m_dialogs.messages.isEmpty()) << m_dialogs.messages.join('|').toStdString();
}

TEST_F(UpdateWindowTest, APackageRunFromTheWindowReachesKalvoSimOverAPseudoTerminal)
{
    if (!SimProcess::Available())
        GTEST_SKIP() << "no kalvo-sim on this system";
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    auto &window = Open({});
    window.findChild<QComboBox *>(QStringLiteral("COM"))->setEditText(sim.pty());
    ASSERT_TRUE(ConnectToSimulator());
    const QString picturesBefore = window.findChild<QLabel *>(QStringLiteral("bilderver"))->text();
    WritePackage();
    // The run takes the line's time: longer than a menu entry is waited for.
    window.findChild<QAction *>(QStringLiteral("paket_ge"))->trigger();
    ASSERT_TRUE(WaitUntil([&] { return !window.device().busy(); }, 120000));
    QStringList announces;
    for (const QString &line : sim.ReceivedBytes())
        if (line.startsWith(QLatin1String("kal!upd")) || line.startsWith(QLatin1String("rst!0")))
            announces << line;
    EXPECT_EQ(announces, (QStringList{QStringLiteral("kal!upd0\\r"), QStringLiteral("kal!upd3\\r"),
                                      QStringLiteral("kal!upd1\\r"), QStringLiteral("kal!upd2\\r"),
                                      QStringLiteral("rst!0\\r")}))
        << sim.ReceivedBytes().join(' ').left(400).toStdString();
    EXPECT_TRUE(m_dialogs.messages.isEmpty()) << m_dialogs.messages.join('|').toStdString();
    // The identity read after the run shows the pictures' new date.
    EXPECT_NE(window.findChild<QLabel *>(QStringLiteral("bilderver"))->text(), picturesBefore);
}

TEST_F(UpdateWindowTest, ClosingDuringAnUpdateAsksFirstAndKeepsItRunningUnlessTheUserQuits)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    WritePackage();
    // At the line's pace, so that the run lasts long enough to be closed in the middle.
    window.device().RunAndWait([&](link::Link &) { m_tester.load()->setBaud(9600); });
    // Which button a question offers for Enter, seen the moment it shows (before it is answered).
    struct DefaultWatch : QObject {
        QStringList defaults;
        bool eventFilter(QObject *watched, QEvent *event) override
        {
            if (auto *box = qobject_cast<QMessageBox *>(watched); box && event->type() == QEvent::Show)
                defaults << (box->defaultButton() ? box->defaultButton()->text() : QString());
            return false;
        }
    } watch;
    qApp->installEventFilter(&watch);
    const qsizetype before = LinesSince(0).size();

    // Keep running: the run goes on to its end and reads the identity again.
    window.findChild<QAction *>(QStringLiteral("paket_ge"))->trigger();
    ASSERT_TRUE(WaitUntil([&] { return window.device().transferring(); }));
    m_dialogs.confirmations = {false};
    EXPECT_FALSE(window.close());
    ASSERT_EQ(m_dialogs.messages.size(), 1);
    EXPECT_TRUE(m_dialogs.messages.first().contains(QStringLiteral("ohne vollständigen Inhalt")))
        << m_dialogs.messages.first().toStdString();
    EXPECT_EQ(watch.defaults, QStringList{QStringLiteral("Weiterlaufen lassen")});
    EXPECT_TRUE(window.isVisible());
    ASSERT_TRUE(WaitUntil([&] { return !window.device().busy(); }, 60000));
    EXPECT_TRUE(CommandsSince(before).contains("rst!0\r"));
    EXPECT_EQ(m_dialogs.messages.size(), 1) << m_dialogs.messages.join('|').toStdString();

    // Quit: the transfer stops, the window closes, and nothing more is said afterwards.
    window.findChild<QAction *>(QStringLiteral("paket_ge"))->trigger();
    ASSERT_TRUE(WaitUntil([&] { return window.device().transferring(); }));
    m_dialogs.confirmations = {true};
    EXPECT_TRUE(window.close());
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(window.device().portOpen());
    WaitUntil([] { return false; }, 500);
    EXPECT_EQ(m_dialogs.messages.size(), 2) << m_dialogs.messages.join('|').toStdString();
    qApp->removeEventFilter(&watch);
}
