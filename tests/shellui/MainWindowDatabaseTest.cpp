// The main window hosts the database window: the regulations' defaults in its editor, and a test
// record clicked there shown in the record window.
#include "WindowFixture.h"
#include "gui/Mnemonics.h"

#include "records/ui/RecordWindow.h"
#include "specdb/ui/DatabaseWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>

using namespace kalvo;
using namespace kalvo::testing;

class MainWindowDatabaseTest : public WindowFixture {
protected:
    template <typename T> static T *TopLevel()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *found = qobject_cast<T *>(widget); found && found->isVisible())
                return found;
        }
        return nullptr;
    }
};

TEST_F(MainWindowDatabaseTest, TheEditorProposesTheRegulationsLimitsAndATestRecordOpensItsReport)
{
    Open();
    ASSERT_TRUE(ConnectToSimulator());
    Trigger("datenbank");
    auto *database = TopLevel<specdb::ui::DatabaseWindow>();
    ASSERT_NE(database, nullptr);
    EXPECT_EQ(gui::WithoutMnemonic(m_window->findChild<QAction *>(QStringLiteral("datenbank"))->text()),
              QStringLiteral("Prüfabläufe"));

    // Choosing a regulation fills the boxes from the regulations' table.
    auto *regulation = database->findChild<QComboBox *>(QStringLiteral("Vorschrift"));
    const int entry = regulation->findText(QStringLiteral("VDE 0702"));
    regulation->setCurrentIndex(entry);
    emit regulation->activated(entry); // as a person's choice does
    EXPECT_EQ(database->findChild<QLineEdit *>(QStringLiteral("GWert1"))->text(),
              QStringLiteral("<0.300Ohm"));
    EXPECT_EQ(database->findChild<QLineEdit *>(QStringLiteral("GWert3"))->text(),
              QStringLiteral(">0.500MOhm"));
    EXPECT_EQ(database->findChild<QLineEdit *>(QStringLiteral("GWert5"))->text(), QStringLiteral("<3.500mA"));
    EXPECT_TRUE(database->findChild<QLineEdit *>(QStringLiteral("GWert14"))->text().isEmpty());

    // In a medical regulation the switch position chooses the earth leakage of a permanently
    // connected device, and back.
    const auto limit = [&](int box) {
        return database->findChild<QLineEdit *>(QStringLiteral("GWert%1").arg(box))->text();
    };
    const auto choose = [&](const char *list, int entry) {
        auto *box = database->findChild<QComboBox *>(QString::fromLatin1(list));
        box->setCurrentIndex(entry);
        emit box->activated(entry);
    };
    choose("Vorschrift", regulation->findText(QStringLiteral("EN 60601")));
    EXPECT_EQ(limit(10), QStringLiteral("<0.500mA"));
    choose("Schalterstellung", 3);
    EXPECT_TRUE(database->findChild<QComboBox *>(QStringLiteral("Schalterstellung"))
                    ->currentText()
                    .startsWith(QStringLiteral("02  fest")));
    EXPECT_EQ(limit(10), QStringLiteral("<05.00mA"));
    EXPECT_EQ(limit(11), QStringLiteral("<10.00mA"));
    EXPECT_EQ(limit(2), QStringLiteral(">0.200Ohm"));
    Screenshot(*database, QStringLiteral("database-switch-position"));
    choose("Schalterstellung", 0);
    EXPECT_EQ(limit(11), QStringLiteral("<1.000mA"));
    choose("Vorschrift", entry);

    // A limit looser than the regulation's stands out; a stricter one does not.
    const auto type = [&](const char *box, const QString &text) {
        auto *edit = database->findChild<QLineEdit *>(QString::fromLatin1(box));
        edit->setText(text);
        edit->setModified(true);
        emit edit->editingFinished();
        return edit->property("looser").toBool();
    };
    EXPECT_FALSE(database->findChild<QLineEdit *>(QStringLiteral("GWert1"))->property("looser").toBool());
    EXPECT_TRUE(type("GWert1", QStringLiteral("<1.000Ohm")));
    EXPECT_FALSE(type("GWert3", QStringLiteral(">2.000MOhm")));
    EXPECT_TRUE(type("GWert5", QString())); // the measurement switched off
    EXPECT_FALSE(type("GWert1", QStringLiteral("<0.300Ohm")));

    // The store of the built-in tester holds test records: one of them opens in the record window.
    QSignalSpy listed(database, &specdb::ui::DatabaseWindow::listed);
    database->findChild<QPushButton *>(QStringLiteral("readDB"))->click();
    ASSERT_TRUE(WaitUntil([&] { return listed.count() > 0 && !m_window->device().busy(); }));
    auto *list = database->findChild<QListWidget *>(QStringLiteral("IdNr"));
    ASSERT_GT(list->count(), 0);
    ASSERT_TRUE(list->item(0)->text().startsWith(QStringLiteral("1:measured: ")))
        << list->item(0)->text().toStdString();
    const qsizetype before = LinesSince(0).size();
    emit list->itemClicked(list->item(0));
    ASSERT_TRUE(Idle());
    auto *records = TopLevel<records::ui::RecordWindow>();
    ASSERT_NE(records, nullptr);
    EXPECT_FALSE(records->reportBox()->toPlainText().isEmpty());
    const QList<QByteArray> sent = LinesSince(before);
    ASSERT_FALSE(sent.isEmpty());
    // Record 1 printed by the tester with the chosen template.
    EXPECT_TRUE(std::any_of(sent.begin(), sent.end(), [](const QByteArray &line) {
        return line.startsWith("prn!") && line.endsWith(",1\r");
    })) << QByteArrayList(sent).join(' ').toStdString();
    Screenshot(*database, QStringLiteral("database-window"));
}
