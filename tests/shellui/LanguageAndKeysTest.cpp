// Every window in every language of the program, on a 1024x768 screen, and worked by keyboard.
#include "WindowFixture.h"

#include "app/ChildWindows.h"
#include "archive/ui/ArchiveWindow.h"
#include "link/LanguageTable.h"
#include "modem/ui/ModemWindow.h"
#include "records/ui/RecordWindow.h"
#include "shell/ui/ServiceWindow.h"
#include "specdb/ui/DatabaseWindow.h"
#include "specdb/ui/EditorPanel.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollBar>
#include <QTableWidget>
#include <QTest>
#include <QToolButton>

using namespace kalvo;
using namespace kalvo::testing;

namespace {

// A frame of 1024x768 less a title bar and a task bar.
constexpr int kScreenWidth = 1024;
constexpr int kScreenHeight = 740;

// The letters marked with "&" in `actions`; empty for an entry without one.
QStringList Mnemonics(const QList<QAction *> &actions)
{
    QStringList letters;
    for (const QAction *action : actions) {
        if (action->isSeparator() || !action->isVisible())
            continue;
        const QString text = action->text();
        const qsizetype mark = text.indexOf(QRegularExpression(QStringLiteral("&[^&]")));
        letters << (mark < 0 ? QString() : text.mid(mark + 1, 1).toLower());
    }
    return letters;
}

} // namespace

class LanguageAndKeysTest : public WindowFixture {
protected:
    void Choose(const link::LanguageColumn &language)
    {
        m_window->findChild<QAction *>(language.menuEntry)->trigger();
        QApplication::processEvents();
    }
    specdb::ui::DatabaseWindow *Database() { return m_window->windows().OpenDatabase(m_window->texts()); }
    static void ExpectWhole(QWidget &window, const std::string &what)
    {
        QApplication::processEvents();
        const QSize frame = window.frameGeometry().size();
        EXPECT_LE(frame.width(), kScreenWidth) << what;
        EXPECT_LE(frame.height(), kScreenHeight) << what << " is " << frame.height() << " high";
        EXPECT_LE(window.minimumSizeHint().height(), kScreenHeight) << what;
        EXPECT_LE(window.minimumSizeHint().width(), kScreenWidth) << what;
    }
};

TEST_F(LanguageAndKeysTest, TheMenuBarShowsEveryEntryWithItsOwnAltLetterInEveryLanguage)
{
    auto &window = Open();
    auto *bar = window.menuBar();
    for (const link::LanguageColumn &language : link::LanguageColumns()) {
        SCOPED_TRACE(language.name.toStdString());
        Choose(language);
        // Qt puts the entries that do not fit behind a "»" button.
        auto *more = bar->findChild<QToolButton *>(QStringLiteral("qt_menubar_ext_button"));
        ASSERT_NE(more, nullptr);
        EXPECT_FALSE(more->isVisible()) << "entries hidden behind »";
        EXPECT_LE(window.frameGeometry().width(), kScreenWidth);
        QList<QList<QAction *>> lists{bar->actions()};
        for (QAction *entry : bar->actions())
            if (entry->menu())
                lists << entry->menu()->actions();
        for (const QList<QAction *> &list : std::as_const(lists)) {
            const QStringList letters = Mnemonics(list);
            EXPECT_FALSE(letters.contains(QString())) << letters.join(',').toStdString();
            EXPECT_EQ(QSet<QString>(letters.begin(), letters.end()).size(), letters.size())
                << letters.join(',').toStdString();
        }
    }
    // Alt and the letter open the menu.
    Choose(link::LanguageColumns()[0]);
    auto *settings = window.findChild<QMenu *>(QStringLiteral("einstellungen"));
    const QString title = settings->title();
    const QChar letter = title.at(title.indexOf(QLatin1Char('&')) + 1);
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, letter.toLatin1(), Qt::AltModifier);
    EXPECT_TRUE(WaitUntil([&] { return settings->isVisible(); }, 2000)) << title.toStdString();
    settings->close();
}

TEST_F(LanguageAndKeysTest, TheDatabaseWindowFitsWithItsSingleFaultsOpenAndSpeaksEveryLanguage)
{
    Open();
    QSet<QString> captions;
    for (const link::LanguageColumn &language : link::LanguageColumns()) {
        SCOPED_TRACE(language.name.toStdString());
        Choose(language);
        auto *database = Database();
        EXPECT_EQ(database->windowTitle(), m_window->texts().text(link::TxtMenuSpecifications));
        captions << database->findChild<QPushButton *>(QStringLiteral("readDB"))->text();
        database->findChild<QPushButton *>(QStringLiteral("SFCOpen"))->click();
        ASSERT_TRUE(database->editor().singleFaultsOpen());
        ExpectWhole(*database, "the database window with its single faults");
        // The last limit box lies inside the window, not below it.
        auto *last = database->findChild<QLineEdit *>(QStringLiteral("GWert22"));
        const QRect box(last->mapTo(database, QPoint(0, 0)), last->size());
        EXPECT_TRUE(database->rect().contains(box)) << box.bottom() << " below " << database->height();

        // Every limit box says what it holds, in the language chosen.
        QSet<QString> tips;
        for (int n = 1; n <= 22; ++n) {
            auto *edit = database->findChild<QLineEdit *>(QStringLiteral("GWert%1").arg(n));
            EXPECT_FALSE(edit->toolTip().isEmpty()) << "box " << n;
            tips << edit->toolTip();
        }
        EXPECT_GE(tips.size(), 20); // boxes 6 and 7 are both protective extra-low voltage
        if (language.name == QLatin1String("englisch")) {
            EXPECT_EQ(database->findChild<QLineEdit *>(QStringLiteral("GWert3"))->toolTip(),
                      QStringLiteral("Insulation resistance"));
        }
        if (language.code == QLatin1String("de") || language.code == QLatin1String("en") ||
            language.code == QLatin1String("fr"))
            Screenshot(*database, QStringLiteral("database-single-faults-%1").arg(language.code));
        database->close();
    }
    // Each language has its own caption: a window left in German would show one for all.
    EXPECT_EQ(captions.size(), 7) << QStringList(captions.begin(), captions.end()).join('|').toStdString();
}

TEST_F(LanguageAndKeysTest, AnOpenDatabaseWindowFollowsALanguageSwitch)
{
    Open();
    auto *database = Database();
    EXPECT_EQ(database->findChild<QPushButton *>(QStringLiteral("ClearDB"))->text(),
              QStringLiteral("Alle löschen"));
    Choose(link::LanguageColumns()[1]);
    EXPECT_EQ(database->findChild<QPushButton *>(QStringLiteral("ClearDB"))->text(),
              QStringLiteral("Delete all"));
    EXPECT_EQ(database->findChild<QComboBox *>(QStringLiteral("Typ"))->itemText(0), QStringLiteral("none"));
    EXPECT_EQ(database->findChild<QComboBox *>(QStringLiteral("Schalterstellung"))->itemText(3),
              QStringLiteral("02  permanently connected with protective conductor"));
    EXPECT_EQ(database->findChild<QLineEdit *>(QStringLiteral("GWert1"))->toolTip(),
              QStringLiteral("Protective conductor resistance"));
}

TEST_F(LanguageAndKeysTest, StoringWithTheSingleFaultsOpenTakesThemAndStores)
{
    Open();
    ASSERT_TRUE(ConnectToSimulator());
    auto *database = Database();
    auto *regulation = database->findChild<QComboBox *>(QStringLiteral("Vorschrift"));
    const int entry = regulation->findText(QStringLiteral("VDE 0702"));
    regulation->setCurrentIndex(entry);
    emit regulation->activated(entry);
    database->findChild<QPushButton *>(QStringLiteral("SFCOpen"))->click();
    database->findChild<QCheckBox *>(QStringLiteral("Check1_2"))->setChecked(true); // PE unterbrochen
    m_dialogs.inputs = {QStringLiteral("TEST")};
    const qsizetype before = LinesSince(0).size();
    database->findChild<QPushButton *>(QStringLiteral("MP"))->click();
    ASSERT_TRUE(Idle());
    EXPECT_FALSE(database->editor().singleFaultsOpen());
    // The regulation's "N unterbrochen" and the "PE unterbrochen" ticked.
    EXPECT_EQ(database->editor().editor().record().codes[8], QByteArray("60"));
    const QList<QByteArray> sent = LinesSince(before);
    EXPECT_TRUE(std::any_of(sent.begin(), sent.end(), [](const QByteArray &line) {
        return line.startsWith("prx!");
    })) << QByteArrayList(sent).join(' ').toStdString();
}

TEST_F(LanguageAndKeysTest, EscapeClosesTheSecondaryWindowsButNotTheMainWindow)
{
    auto &window = Open();
    app::ChildWindows &windows = window.windows();
    const std::pair<const char *, std::function<QWidget *()>> opened[] = {
        {"records", [&] { return static_cast<QWidget *>(windows.OpenRecords(window.texts())); }},
        {"database", [&] { return static_cast<QWidget *>(windows.OpenDatabase(window.texts())); }},
        {"service", [&] { return static_cast<QWidget *>(windows.OpenService(window.texts(), {})); }},
        {"archive", [&] { return static_cast<QWidget *>(windows.OpenArchive(window.texts().language())); }},
        {"modem", [&] { return static_cast<QWidget *>(windows.OpenModem(window.texts())); }},
    };
    for (const auto &[name, open] : opened) {
        SCOPED_TRACE(name);
        QPointer<QWidget> child = open();
        ASSERT_TRUE(QTest::qWaitForWindowActive(child));
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : child.data(),
                        Qt::Key_Escape);
        EXPECT_TRUE(WaitUntil([&] { return child.isNull() || !child->isVisible(); }, 2000));
    }
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_Escape);
    QApplication::processEvents();
    EXPECT_TRUE(window.isVisible());
}

TEST_F(LanguageAndKeysTest, TheStoreListIsWorkedByKeyboard)
{
    Open();
    ASSERT_TRUE(ConnectToSimulator());
    auto *database = Database();
    database->findChild<QPushButton *>(QStringLiteral("readDB"))->click();
    auto *list = database->findChild<QListWidget *>(QStringLiteral("IdNr"));
    ASSERT_TRUE(WaitUntil([&] { return list->count() > 0 && !m_window->device().busy(); }));
    ASSERT_TRUE(QTest::qWaitForWindowActive(database));
    list->setFocus();
    list->setCurrentRow(0);
    // Delete asks as the right mouse button does (and Cancel keeps the record).
    m_dialogs.confirmations = {false};
    const qsizetype dialogs = m_dialogs.seen.size();
    QTest::keyClick(list, Qt::Key_Delete);
    ASSERT_TRUE(WaitUntil([&] { return m_dialogs.seen.size() > dialogs; }));
    ASSERT_TRUE(Idle());
    // Enter opens the test record in the record window, as a click does.
    QPointer<records::ui::RecordWindow> records;
    QTest::keyClick(list, Qt::Key_Return);
    ASSERT_TRUE(WaitUntil([&] {
        for (QWidget *w : QApplication::topLevelWidgets())
            if (auto *found = qobject_cast<records::ui::RecordWindow *>(w); found && found->isVisible())
                records = found;
        return !records.isNull();
    }));
    ASSERT_TRUE(Idle());
}

TEST_F(LanguageAndKeysTest, EnterInThePortBoxConnects)
{
    auto &window = Open();
    bool identified = false;
    QObject::connect(&window, &app::MainWindow::identified, [&identified] { identified = true; });
    auto *port = window.findChild<QComboBox *>(QStringLiteral("COM"));
    const int entries = port->count();
    port->setFocus();
    QTest::keyClick(port->lineEdit(), Qt::Key_Return);
    EXPECT_TRUE(WaitUntil([&] { return identified; }));
    EXPECT_TRUE(window.device().portOpen());
    EXPECT_EQ(port->count(), entries); // the name is not added to the list a second time
}

TEST_F(LanguageAndKeysTest, TheStatusBarSpeaksTheLanguageChosen)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    Trigger("config");
    auto *operation = window.findChild<QLabel *>(QStringLiteral("statusOperation"));
    ASSERT_TRUE(operation->text().endsWith(QStringLiteral("fertig"))) << operation->text().toStdString();
    Choose(link::LanguageColumns()[1]);
    EXPECT_FALSE(operation->text().contains(QStringLiteral("fertig"))) << operation->text().toStdString();
    EXPECT_EQ(window.findChild<QLabel *>(QStringLiteral("statusConnection"))->text().left(10),
              QStringLiteral("connected:"));
    Trigger("config");
    EXPECT_TRUE(operation->text().endsWith(QStringLiteral("done"))) << operation->text().toStdString();
}

TEST_F(LanguageAndKeysTest, TheLimitScrollBarTakesTheFocusAndTheArrowKeysMoveTheLimit)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    Trigger("kuschl");
    auto *scroll = window.findChild<QScrollBar *>(QStringLiteral("VScroll1"));
    auto *label = window.findChild<QLabel *>(QStringLiteral("Label10"));
    ASSERT_TRUE(WaitUntil([&] { return scroll->isVisible(); }));
    EXPECT_TRUE(scroll->focusPolicy() & Qt::TabFocus);
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    scroll->setFocus();
    ASSERT_TRUE(scroll->hasFocus());
    const int start = scroll->value();
    const QString shown = label->text();
    // Up is more, as the bar shows it.
    QTest::keyClick(scroll, Qt::Key_Up);
    EXPECT_EQ(scroll->value(), start + 1);
    EXPECT_NE(label->text(), shown);
    QTest::keyClick(scroll, Qt::Key_Down);
    QTest::keyClick(scroll, Qt::Key_Down);
    EXPECT_EQ(scroll->value(), start - 1);
}

TEST_F(LanguageAndKeysTest, TheConfigurationBitsAreShownAsNotChangeable)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    Trigger("config");
    auto *table = window.findChild<QTableWidget *>(QStringLiteral("registers"));
    ASSERT_TRUE(WaitUntil([&] { return table->rowCount() > 0; }));
    for (int row = 0; row < table->rowCount(); ++row)
        for (int column = 2; column < table->columnCount(); ++column) {
            const Qt::ItemFlags flags = table->item(row, column)->flags();
            EXPECT_FALSE(flags & (Qt::ItemIsEnabled | Qt::ItemIsUserCheckable)) << row << "," << column;
        }
}

TEST_F(LanguageAndKeysTest, EveryWindowOpensWholeInGermanEnglishAndFrench)
{
    auto &window = Open();
    ASSERT_TRUE(ConnectToSimulator());
    QMap<QString, QString> germanTitles;
    for (const link::LanguageColumn &language : link::LanguageColumns()) {
        if (language.code != QLatin1String("de") && language.code != QLatin1String("en") &&
            language.code != QLatin1String("fr"))
            continue;
        SCOPED_TRACE(language.name.toStdString());
        Choose(language);
        const QString code = language.code;
        Trigger("verbindung");
        ExpectWhole(window, "main");
        Screenshot(window, QStringLiteral("lang-main-settings-%1").arg(code));
        Trigger("config");
        ExpectWhole(window, "main with configuration");
        Screenshot(window, QStringLiteral("lang-main-config-%1").arg(code));
        Trigger("kuschl");
        Screenshot(window, QStringLiteral("lang-main-limit-%1").arg(code));
        app::ChildWindows &windows = window.windows();
        const std::pair<const char *, QWidget *> children[] = {
            {"records", static_cast<QWidget *>(windows.OpenRecords(window.texts()))},
            {"database", static_cast<QWidget *>(windows.OpenDatabase(window.texts()))},
            {"service", static_cast<QWidget *>(windows.OpenService(window.texts(), {}))},
            {"archive", static_cast<QWidget *>(windows.OpenArchive(window.texts().language()))},
            {"modem", static_cast<QWidget *>(windows.OpenModem(window.texts()))},
        };
        for (const auto &[name, child] : children) {
            ExpectWhole(*child, name);
            EXPECT_TRUE(child->screen()->availableGeometry().contains(child->frameGeometry())) << name;
            Screenshot(*child, QStringLiteral("lang-%1-%2").arg(QString::fromLatin1(name), code));
            // The titles of the program's own follow the language (the record and modem windows
            // bear fixed ones, and the service window's is "Service" in German and English).
            const QString window = QString::fromLatin1(name);
            if (code == QLatin1String("de")) {
                germanTitles[window] = child->windowTitle();
            } else if (window == QLatin1String("database") || window == QLatin1String("archive")) {
                EXPECT_NE(child->windowTitle(), germanTitles[window]) << name;
            }
            child->close();
        }
    }
}
