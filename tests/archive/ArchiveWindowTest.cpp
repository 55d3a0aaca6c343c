// The window "Archiv" offscreen: searching, scrolling, a device's history, a record's report, the
// selection as PDF and CSV, the re-test intervals, and a window that keeps going while the
// database server makes it wait.
#include "ArchiveSamples.h"

#include "archive/ArchiveQueries.h"
#include "archive/BackupReminder.h"
#include "archive/DeviceData.h"
#include "archive/RecordImport.h"
#include "archive/ReportSettings.h"
#include "archive/TestLabels.h"
#include "archive/ui/ArchiveSettingsDialog.h"
#include "archive/ui/ArchiveTableModel.h"
#include "archive/ui/ArchiveWindow.h"
#include "archive/ui/CustomerQuestion.h"
#include "archive/ui/DeviceDataDialog.h"
#include "archive/ui/IntervalDialog.h"
#include "archive/ui/LabelOptionsDialog.h"
#include "archive/ui/ReportSettingsDialog.h"
#include "records/print/ReportDocument.h"
#include "support/TestFiles.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDateEdit>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFontMetricsF>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>
#include <QTableWidget>
#include <QTimer>

using namespace kalvo;
using namespace kalvo::archive;
using namespace kalvo::testing;

namespace {

class ArchiveWindowTest : public ::testing::Test {
protected:
    void Fill(const QList<QByteArray> &records)
    {
        Archive archive(ParseArchiveUrl(Path()));
        ImportRecords(archive, records, {});
    }
    ui::ArchiveWindow &Open(const QString &url = QString())
    {
        m_window = std::make_unique<ui::ArchiveWindow>(ParseArchiveUrl(url.isEmpty() ? Path() : url));
        m_window->show();
        EXPECT_TRUE(Idle());
        return *m_window;
    }
    // Serves events until the window's queries are answered (at most 20 s).
    bool Idle() const
    {
        QElapsedTimer clock;
        clock.start();
        while (m_window->busy() && clock.elapsed() < 20'000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::processEvents();
        return !m_window->busy();
    }
    void Click(const char *button)
    {
        Child<QPushButton>(button)->click();
        EXPECT_TRUE(Idle()) << button;
    }
    // Exports through `exporter` and says whether the window reported success.
    bool Export(void (ui::ArchiveWindow::*exporter)(const QString &), const QString &path)
    {
        std::optional<bool> ok;
        QObject::connect(
            m_window.get(), &ui::ArchiveWindow::exported, m_window.get(),
            [&ok](const QString &, bool done) { ok = done; }, Qt::SingleShotConnection);
        (m_window.get()->*exporter)(path);
        EXPECT_TRUE(Idle());
        return ok.value_or(false);
    }
    template <typename W> W *Child(const char *name) const
    {
        W *child = m_window->findChild<W *>(QString::fromLatin1(name));
        EXPECT_TRUE(child) << name;
        return child;
    }
    QStringList ListedDevices() const
    {
        QStringList devices;
        for (int row = 0; row < m_window->model()->rowCount(); ++row)
            devices << m_window->model()->record(row).deviceId;
        return devices;
    }
    void Select(const QList<int> &rows)
    {
        QTableView *table = m_window->table();
        table->clearSelection();
        for (const int row : rows)
            table->selectionModel()->select(m_window->model()->index(row, 0),
                                            QItemSelectionModel::Select | QItemSelectionModel::Rows);
        table->selectionModel()->setCurrentIndex(m_window->model()->index(rows.first(), 0),
                                                 QItemSelectionModel::NoUpdate);
        EXPECT_TRUE(Idle());
    }
    QString Path() const { return m_dir.filePath(QStringLiteral("archive.sqlite")); }

    QTemporaryDir m_dir;
    std::unique_ptr<ui::ArchiveWindow> m_window;
};

TEST_F(ArchiveWindowTest, ALongListIsFetchedAsItIsScrolled)
{
    Fill(ManyRecords(450, 9));
    auto &window = Open();
    EXPECT_EQ(window.model()->total(), 450);
    EXPECT_EQ(window.model()->rowCount(), ui::ArchiveTableModel::kPage);
    EXPECT_TRUE(window.status()->text().startsWith(QStringLiteral("450 Protokolle")));
    for (int i = 0; i < 10 && window.model()->rowCount() < 450; ++i) {
        window.table()->scrollToBottom();
        QCoreApplication::processEvents();
        ASSERT_TRUE(Idle());
    }
    ASSERT_EQ(window.model()->rowCount(), 450);
    for (int row = 1; row < 450; ++row)
        ASSERT_GE(window.model()->record(row - 1).testedAt, window.model()->record(row).testedAt) << row;
}

TEST_F(ArchiveWindowTest, ADevicesHistoryNewestFirstWithItsNextTest)
{
    Fill({MakeRecord({.device = "H-1", .date = "05.03.21"}),
          MakeRecord({.device = "OTHER", .date = "01.01.23"}),
          MakeRecord({.device = "H-1", .date = "05.03.22", .result = '9'}),
          MakeRecord({.device = "H-1", .date = "04.03.20"})});
    auto &window = Open();
    ASSERT_EQ(ListedDevices(), (QStringList{"OTHER", "H-1", "H-1", "H-1"}));
    Select({2});
    Click("verlauf");
    EXPECT_EQ(ListedDevices(), (QStringList{"H-1", "H-1", "H-1"}));
    EXPECT_EQ(window.model()->record(0).testedAt.date(), QDate(2022, 3, 5));
    EXPECT_EQ(window.model()->record(2).testedAt.date(), QDate(2020, 3, 4));
    EXPECT_TRUE(
        window.status()->text().contains(QStringLiteral("nächste Prüfung 05.03.2023 (alle 12 Monate)")))
        << window.status()->text().toStdString();
}

TEST_F(ArchiveWindowTest, TheFieldsAndFiltersNarrowTheList)
{
    Fill({MakeRecord({.device = "A", .type = "Bohrmaschine", .date = "01.02.22"}),
          MakeRecord({.device = "B", .type = "Toaster", .date = "01.06.22", .result = 'A'}),
          MakeRecord({.device = "C",
                      .type = "Bohrhammer",
                      .date = "01.09.22",
                      .regulation = '6',
                      .more = {{61, "Klinik Nord"}}})});
    Open();
    const auto search = [&] {
        Click("suchen");
        return ListedDevices();
    };
    Child<QLineEdit>("typ")->setText(QStringLiteral("bohr"));
    EXPECT_EQ(search(), (QStringList{"C", "A"}));
    Child<QComboBox>("vorschrift")->setCurrentText(QStringLiteral("DIN VDE 0751"));
    EXPECT_EQ(search(), QStringList{"C"});
    Child<QLineEdit>("typ")->clear();
    Child<QComboBox>("vorschrift")->setCurrentIndex(0);
    Child<QComboBox>("ergebnis")->setCurrentIndex(2);
    EXPECT_EQ(search(), QStringList{"B"});
    Child<QComboBox>("ergebnis")->setCurrentIndex(0);
    Child<QLineEdit>("kunde")->setText(QStringLiteral("klinik"));
    EXPECT_EQ(search(), QStringList{"C"});
    Child<QLineEdit>("kunde")->clear();
    // The archive's customers to choose from: the one a record names, and "ohne Kunde".
    auto *customers = Child<QComboBox>("kundenwahl");
    ASSERT_EQ(customers->count(), 3);
    customers->setCurrentText(QStringLiteral("ohne Kunde"));
    EXPECT_EQ(search(), (QStringList{"B", "A"}));
    EXPECT_EQ(customers->currentText(), QStringLiteral("ohne Kunde")); // the choice stays
    EXPECT_EQ(m_window->model()->index(0, 6).data().toString(), QStringLiteral("ohne Kunde"));
    // For a person to look at: build/bin/screenshots/archiv-kunden.png.
    QDir(QCoreApplication::applicationDirPath()).mkpath(QStringLiteral("screenshots"));
    m_window->grab().save(QCoreApplication::applicationDirPath() +
                          QStringLiteral("/screenshots/archiv-kunden.png"));
    customers->setCurrentIndex(0);
    Child<QCheckBox>("mitFaellig")->setChecked(true);
    Child<QDateEdit>("faellig")->setDate(QDate(2023, 6, 2));
    EXPECT_EQ(search(), (QStringList{"A", "B"}));
}

TEST_F(ArchiveWindowTest, ARecordShowsItsReportAndTheSelectionGoesToPdfAndCsv)
{
    Fill({MakeRecord({.device = "R-1", .date = "01.01.22"}),
          MakeRecord({.device = "R-2", .date = "02.01.22"}),
          MakeRecord({.device = "R-3", .date = "03.01.22"})});
    auto &window = Open();
    Select({0, 2});
    const ArchivedRecord first = window.model()->record(0);
    EXPECT_TRUE(window.report()->toPlainText().contains(QStringLiteral("R-3")));
    EXPECT_TRUE(window.report()->toPlainText().contains(QStringLiteral("SHA-256: ") +
                                                        QString::fromLatin1(first.sha256)));
    // Set as the record window sets its reports: the report font, a tab stop every 8 columns.
    EXPECT_EQ(window.report()->font(), records::ReportFont());
    EXPECT_DOUBLE_EQ(window.report()->tabStopDistance(),
                     QFontMetricsF(records::ReportFont()).horizontalAdvance(QLatin1Char(' ')) * 8);

    const QString pdf = m_dir.filePath(QStringLiteral("auswahl.pdf"));
    ASSERT_TRUE(Export(&ui::ArchiveWindow::ExportPdf, pdf)) << window.status()->text().toStdString();
    const std::optional<QString> text = PdfText(pdf);
    if (!text)
        GTEST_SKIP() << "no pdftotext on this system";
    const QStringList pages = text->split(QLatin1Char('\f'), Qt::SkipEmptyParts);
    ASSERT_EQ(pages.size(), 2);
    EXPECT_TRUE(pages[0].contains(QStringLiteral("SHA-256: ") + QString::fromLatin1(first.sha256)));
    EXPECT_TRUE(pages[1].contains(QStringLiteral("R-1")));

    const QString csv = m_dir.filePath(QStringLiteral("auswahl.csv"));
    ASSERT_TRUE(Export(&ui::ArchiveWindow::ExportCsv, csv));
    const QList<QByteArray> lines = ReadFile(csv).split('\n');
    ASSERT_EQ(lines.size(), 4); // header, two records, the end
    EXPECT_TRUE(lines[1].contains(";R-3;"));
    EXPECT_TRUE(lines[2].contains(";R-1;"));

    // Nothing selected: everything the search finds, not only the rows fetched so far.
    window.table()->clearSelection();
    Child<QLineEdit>("idNr")->setText(QStringLiteral("R-2"));
    Click("suchen");
    ASSERT_TRUE(Export(&ui::ArchiveWindow::ExportCsv, csv));
    const QList<QByteArray> found = ReadFile(csv).split('\n');
    ASSERT_EQ(found.size(), 3);
    EXPECT_TRUE(found[1].contains(";R-2;"));
}

TEST_F(ArchiveWindowTest, ACorruptArchiveIsNamedAndLeftAlone)
{
    const QByteArray junk = "kein Archiv";
    ASSERT_TRUE(WriteFile(Path(), junk));
    auto &window = Open();
    EXPECT_TRUE(window.status()->text().contains(QDir::toNativeSeparators(Path())))
        << window.status()->text().toStdString();
    EXPECT_EQ(window.model()->rowCount(), 0);
    window.Search();
    EXPECT_TRUE(Idle());
    EXPECT_TRUE(window.status()->text().contains(QDir::toNativeSeparators(Path())));
    EXPECT_FALSE(Export(&ui::ArchiveWindow::ExportCsv, m_dir.filePath(QStringLiteral("x.csv"))));
    EXPECT_FALSE(Export(&ui::ArchiveWindow::ExportPdf, m_dir.filePath(QStringLiteral("x.pdf"))));
    EXPECT_FALSE(QFile::exists(m_dir.filePath(QStringLiteral("x.csv"))));
    EXPECT_EQ(ReadFile(Path()), junk);
}

} // namespace

TEST_F(ArchiveWindowTest, TheWindowSpeaksTheProgramsLanguage)
{
    Fill({MakeRecord({.device = "H-1", .date = "05.03.21"})});
    auto &window = Open();
    const struct {
        const char *language;
        const char *title, *search, *verdictAll, *dueBefore, *secondColumn, *status;
    } cases[] = {
        {"englisch", "Archive", "Search", "all", "due before", "Test date", "1 test record"},
        {"französisch", "Archives", "Rechercher", "tous", "échéance avant", "Date d'essai",
         "1 procès-verbal"},
        {"unbekannt", "Archiv", "Suchen", "alle", "fällig vor", "Prüfdatum", "1 Protokoll"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.language);
        window.SetLanguage(QString::fromUtf8(c.language));
        window.Search();
        ASSERT_TRUE(Idle());
        EXPECT_EQ(window.windowTitle(), QString::fromUtf8(c.title));
        EXPECT_EQ(Child<QPushButton>("suchen")->text(), QString::fromUtf8(c.search));
        EXPECT_EQ(Child<QComboBox>("ergebnis")->itemText(0), QString::fromUtf8(c.verdictAll));
        EXPECT_EQ(Child<QComboBox>("vorschrift")->itemText(0), QString::fromUtf8(c.verdictAll));
        EXPECT_EQ(Child<QCheckBox>("mitFaellig")->text(), QString::fromUtf8(c.dueBefore));
        EXPECT_EQ(window.model()->headerData(1, Qt::Horizontal).toString(),
                  QString::fromUtf8(c.secondColumn));
        EXPECT_EQ(window.status()->text(), QString::fromUtf8(c.status));
    }
}

namespace {

QDate NextTestOf(const ui::ArchiveTableModel &model, const char *device)
{
    for (int row = 0; row < model.rowCount(); ++row)
        if (model.record(row).deviceId == QLatin1String(device))
            return model.record(row).nextTest;
    return {};
}

} // namespace

TEST_F(ArchiveWindowTest, IntervalsSetInTheWindowMoveTheNextTests)
{
    Fill({MakeRecord({.device = "A", .date = "01.02.22"}), MakeRecord({.device = "B", .date = "01.06.22"}),
          MakeRecord({.device = "C", .date = "01.09.22", .regulation = '6'})});
    auto &window = Open();
    const ui::ArchiveTableModel &model = *window.model();
    ASSERT_EQ(ListedDevices(), (QStringList{"C", "B", "A"}));
    const QString regulation = model.record(2).regulation;
    EXPECT_EQ(NextTestOf(model, "C"), QDate(2024, 9, 1)); // medical: 24 months

    ui::IntervalDialog *dialog = nullptr;
    QObject::connect(&window, &ui::ArchiveWindow::intervalsShown, &window,
                     [&dialog](QDialog *shown) { dialog = qobject_cast<ui::IntervalDialog *>(shown); });
    const auto openFor = [&](int row) {
        dialog = nullptr;
        Select({row});
        Click("intervalle");
        return dialog;
    };
    ASSERT_TRUE(openFor(2));
    EXPECT_EQ(dialog->windowModality(), Qt::WindowModal);
    EXPECT_EQ(dialog->parentWidget(), &window);
    QTableWidget *table = dialog->table();
    ASSERT_EQ(table->rowCount(), 10);
    int regulationRow = -1;
    for (int row = 0; row < table->rowCount(); ++row)
        if (table->item(row, 0)->text() == regulation)
            regulationRow = row;
    ASSERT_GE(regulationRow, 0) << regulation.toStdString();
    auto *months = qobject_cast<QSpinBox *>(table->cellWidget(regulationRow, 1));
    EXPECT_EQ(months->value(), 12);
    months->setValue(36);
    EXPECT_FALSE(dialog->ownInterval()->isChecked());
    dialog->ownInterval()->setChecked(true);
    dialog->deviceMonths()->setValue(6);
    dialog->accept();
    ASSERT_TRUE(Idle());
    EXPECT_EQ(NextTestOf(model, "A"), QDate(2022, 8, 1)); // its own 6 months
    EXPECT_EQ(NextTestOf(model, "B"), QDate(2025, 6, 1)); // the regulation's 36
    EXPECT_EQ(NextTestOf(model, "C"), QDate(2024, 9, 1)); // another regulation

    // The dialog shows what is set now; without its own interval A follows its regulation again.
    ASSERT_TRUE(openFor(ListedDevices().indexOf(QStringLiteral("A"))));
    EXPECT_EQ(qobject_cast<QSpinBox *>(dialog->table()->cellWidget(regulationRow, 1))->value(), 36);
    ASSERT_TRUE(dialog->ownInterval()->isChecked());
    EXPECT_EQ(dialog->deviceMonths()->value(), 6);
    dialog->ownInterval()->setChecked(false);
    dialog->accept();
    ASSERT_TRUE(Idle());
    EXPECT_EQ(NextTestOf(model, "A"), QDate(2025, 2, 1));

    // Cancelled, nothing changes.
    ASSERT_TRUE(openFor(0));
    qobject_cast<QSpinBox *>(dialog->table()->cellWidget(regulationRow, 1))->setValue(1);
    dialog->reject();
    ASSERT_TRUE(Idle());
    Click("suchen");
    EXPECT_EQ(NextTestOf(model, "B"), QDate(2025, 6, 1));
}

TEST_F(ArchiveWindowTest, TheWindowKeepsServingWhileTheServerMakesItWaitAndClosesWithoutIt)
{
    if (!kalvo::testing::PostgresCluster::Available())
        GTEST_SKIP() << "no PostgreSQL server on this system";
    ArchivePlace place(Backend::PostgreSQL);
    ASSERT_TRUE(place.error().isEmpty()) << place.error().toStdString();
    ImportRecords(*place.Open(), ManyRecords(30, 3), {});
    auto &window = Open(place.url());
    ASSERT_EQ(window.model()->total(), 30) << window.status()->text().toStdString();

    // Another program holds the records table: every query of the window waits for it.
    const auto holdTheTable = [&place] {
        auto locker = place.Open();
        EXPECT_TRUE(locker->database().transaction());
        locker->Exec(QStringLiteral("LOCK TABLE records IN ACCESS EXCLUSIVE MODE"));
        return locker;
    };
    const auto serveFor = [](int ms) {
        int ticks = 0;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
        timer.start(10);
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < ms)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        return ticks;
    };
    auto locker = holdTheTable();
    window.Search();
    EXPECT_GE(serveFor(800), 20); // the window's thread serves its events
    EXPECT_TRUE(window.busy());
    EXPECT_EQ(window.status()->text(), QStringLiteral("Bitte warten ..."));
    EXPECT_EQ(window.cursor().shape(), Qt::BusyCursor);
    ASSERT_TRUE(locker->database().commit());
    ASSERT_TRUE(Idle());
    EXPECT_EQ(window.status()->text(), QStringLiteral("30 Protokolle"));
    EXPECT_NE(window.cursor().shape(), Qt::BusyCursor);

    // Closed while it waits: the window goes after a short wait, its query ends on its own thread
    // when the table is free, and its answer is dropped.
    locker = holdTheTable();
    window.Search();
    serveFor(100);
    m_window.reset();
    ASSERT_TRUE(locker->database().commit());
    serveFor(500);
    locker.reset();
    EXPECT_EQ(place.Open()->Exec(QStringLiteral("SELECT COUNT(*) FROM records")).next(), true);
}

TEST_F(ArchiveWindowTest, TheSettingsTakeOnlyAnAddressThatCanBeUsedAndTheWindowOpensIt)
{
    const ArchiveSettings saved = ReadArchiveSettings();
    Fill({MakeRecord({.device = "HIER"})});
    const QString other = m_dir.filePath(QStringLiteral("anderes.sqlite"));
    ImportRecords(*std::make_unique<Archive>(ParseArchiveUrl(other)),
                  {MakeRecord({.device = "DORT-1", .date = "01.01.22"}),
                   MakeRecord({.device = "DORT-2", .date = "02.01.22"})},
                  {});
    WriteArchiveSettings({true, Path()});
    auto &window = Open();
    ASSERT_EQ(ListedDevices(), QStringList{"HIER"});

    ui::ArchiveSettingsDialog *dialog = nullptr;
    QObject::connect(&window, &ui::ArchiveWindow::settingsShown, &window, [&dialog](QDialog *shown) {
        dialog = qobject_cast<ui::ArchiveSettingsDialog *>(shown);
    });
    Click("einstellungen");
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->windowModality(), Qt::WindowModal);
    EXPECT_TRUE(dialog->keepRead()->isChecked());
    EXPECT_EQ(dialog->address()->text(), Path());

    dialog->address()->setText(QStringLiteral("mysql://server/archiv"));
    dialog->accept();
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(dialog->problem()->text().contains(QStringLiteral("mysql://server/archiv")));
    EXPECT_EQ(ReadArchiveSettings().url, Path()); // nothing taken

    dialog->address()->setText(other);
    dialog->keepRead()->setChecked(false);
    dialog->accept();
    ASSERT_TRUE(Idle());
    EXPECT_EQ(ListedDevices(), (QStringList{"DORT-2", "DORT-1"}));
    EXPECT_EQ(ReadArchiveSettings().url, other);
    EXPECT_FALSE(ReadArchiveSettings().enabled);
    WriteArchiveSettings(saved);
}

TEST_F(ArchiveWindowTest, ABackupIsMadeAndRestoredHereAndTheWindowRemindsOfAnOldOne)
{
    Fill({MakeRecord({.device = "S-1"}), MakeRecord({.device = "S-2"}), MakeRecord({.device = "S-3"})});
    const QString backup = m_dir.filePath(QStringLiteral("sicherung.sqlite"));
    {
        auto &window = Open();
        QLabel *note = window.backupNote();
        EXPECT_FALSE(note->isHidden());
        EXPECT_TRUE(note->text().contains(QStringLiteral("noch keine Sicherung")))
            << note->text().toStdString();
        EXPECT_EQ(Child<QAction>("sichern")->text(), QStringLiteral("Sicherung ..."));
        EXPECT_EQ(Child<QAction>("wiederherstellen")->text(), QStringLiteral("Wiederherstellen ..."));
        if (qEnvironmentVariableIsSet("KALVO_SCREENSHOTS"))
            window.grab().save(qEnvironmentVariable("KALVO_SCREENSHOTS") +
                               QStringLiteral("/archiv-hinweis.png"));
        window.BackupTo(backup);
        EXPECT_TRUE(Idle());
        EXPECT_TRUE(window.status()->text().contains(QStringLiteral("geschrieben (Protokolle: 3)")))
            << window.status()->text().toStdString();
        EXPECT_TRUE(note->isHidden());
        EXPECT_TRUE(Child<QProgressBar>("fortschritt")->isHidden());
        // Not into an archive that holds records.
        window.RestoreFrom(backup);
        EXPECT_TRUE(Idle());
        EXPECT_TRUE(window.status()->text().contains(QStringLiteral("nur in ein leeres Archiv")))
            << window.status()->text().toStdString();
        EXPECT_EQ(window.model()->rowCount(), 3);
    }
    Archive verify(ParseArchiveUrl(backup), ArchiveAccess::Read);
    EXPECT_TRUE(VerifyArchive(verify).changed.isEmpty());

    // An empty archive needs no reminder and takes the backup.
    const QString empty = m_dir.filePath(QStringLiteral("leer.sqlite"));
    Archive{ParseArchiveUrl(empty)};
    auto &restored = Open(empty);
    EXPECT_TRUE(restored.backupNote()->isHidden());
    restored.RestoreFrom(backup);
    EXPECT_TRUE(Idle());
    EXPECT_TRUE(restored.status()->text().contains(QStringLiteral("wiederhergestellt (Protokolle: 3)")))
        << restored.status()->text().toStdString();
    EXPECT_EQ(restored.model()->rowCount(), 3);

    // Thirty days pass without one: the note names the last backup, in the program's language.
    RememberBackup(ParseArchiveUrl(Path()), QDateTime::currentDateTimeUtc().addDays(-40));
    auto &old = Open();
    const QString day = QDate::currentDate().addDays(-40).toString(QStringLiteral("dd.MM.yyyy"));
    EXPECT_TRUE(old.backupNote()->text().contains(QStringLiteral("vom ") + day +
                                                  QStringLiteral(", älter als 30 Tage")))
        << old.backupNote()->text().toStdString();
    old.SetLanguage(QStringLiteral("englisch"));
    EXPECT_TRUE(Idle());
    EXPECT_TRUE(
        old.backupNote()->text().startsWith(QStringLiteral("The last backup of this archive is from ") + day))
        << old.backupNote()->text().toStdString();
    EXPECT_EQ(Child<QAction>("sichern")->text(), QStringLiteral("Back up ..."));
    if (qEnvironmentVariableIsSet("KALVO_SCREENSHOTS"))
        old.grab().save(qEnvironmentVariable("KALVO_SCREENSHOTS") + QStringLiteral("/archiv-alt.png"));
}

namespace {

// A picture of `widget` next to the test programs, for a person to look at.
void Screenshot(QWidget &widget, const QString &name)
{
    QDir dir(QCoreApplication::applicationDirPath());
    dir.mkpath(QStringLiteral("screenshots"));
    widget.grab().save(dir.filePath(QStringLiteral("screenshots/%1.png").arg(name)));
}

// Answers the next application-modal dialog that `answer` takes, once it is shown.
template <typename Dialog> void AnswerNext(const std::function<void(Dialog &)> &answer)
{
    QTimer::singleShot(50, [answer] {
        if (auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget()))
            answer(*dialog);
        else
            AnswerNext<Dialog>(answer);
    });
}

TEST_F(ArchiveWindowTest, SignedReportsAndLabelsOfTheSelectionWithTheReportSettings)
{
    const ReportSettings saved = ReadReportSettings();
    WriteReportSettings({});
    Fill({MakeRecord({.device = "E-0815", .date = "12.01.09", .more = {{61, "Praxis Dr. M\x81ller"}}}),
          MakeRecord({.device = "K-12", .date = "13.01.09", .result = '7'})});
    auto &window = Open();

    ui::ReportSettingsDialog *settings = nullptr;
    QObject::connect(&window, &ui::ArchiveWindow::reportSettingsShown, &window, [&settings](QDialog *shown) {
        settings = qobject_cast<ui::ReportSettingsDialog *>(shown);
    });
    Click("berichtEinstellungen");
    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->windowModality(), Qt::WindowModal);
    settings->company()->setText(QStringLiteral("Elektro Prüfdienst GmbH"));
    settings->address()->setPlainText(QStringLiteral("Werkstraße 5\n12345 Neustadt"));
    settings->logo()->setText(m_dir.filePath(QStringLiteral("fehlt.png")));
    settings->accept();
    EXPECT_TRUE(settings->isVisible());
    EXPECT_TRUE(settings->problem()->text().contains(QStringLiteral("fehlt.png")));
    Screenshot(*settings, QStringLiteral("archive-report-settings"));
    EXPECT_TRUE(ReadReportSettings().company.isEmpty()); // nothing taken
    settings->logo()->clear();
    settings->accept();
    EXPECT_EQ(ReadReportSettings().address, QStringLiteral("Werkstraße 5\n12345 Neustadt"));

    // No inspector yet: the window asks for the name once and keeps it (the file dialog that
    // follows is cancelled).
    AnswerNext<QInputDialog>([](QInputDialog &ask) {
        ask.setTextValue(QStringLiteral("Erika Mustermann"));
        AnswerNext<QFileDialog>([](QFileDialog &file) { file.reject(); });
        ask.accept();
    });
    Click("signiert");
    EXPECT_EQ(ReadReportSettings().inspector, QStringLiteral("Erika Mustermann"));

    Select({1});
    const QString signedPdf = m_dir.filePath(QStringLiteral("signiert.pdf"));
    ASSERT_TRUE(Export(&ui::ArchiveWindow::ExportSignedPdf, signedPdf));
    EXPECT_TRUE(window.status()->text().startsWith(QStringLiteral("1 Prüfprotokoll -> ")))
        << window.status()->text().toStdString();

    ui::LabelOptionsDialog *options = nullptr;
    QObject::connect(&window, &ui::ArchiveWindow::labelOptionsShown, &window,
                     [&options](QDialog *shown) { options = qobject_cast<ui::LabelOptionsDialog *>(shown); });
    Click("etiketten");
    ASSERT_TRUE(options);
    EXPECT_EQ(options->windowModality(), Qt::WindowModal);
    EXPECT_EQ(options->firstFree()->maximum(), 24);
    options->sheet()->setCurrentIndex(1);
    EXPECT_FALSE(options->firstFree()->isEnabled()); // a roll has no started sheet
    Screenshot(*options, QStringLiteral("archive-label-options"));
    options->reject();

    window.table()->clearSelection();
    const QString labels = m_dir.filePath(QStringLiteral("etiketten.pdf"));
    std::optional<bool> ok;
    QObject::connect(
        &window, &ui::ArchiveWindow::exported, &window, [&ok](const QString &, bool done) { ok = done; },
        Qt::SingleShotConnection);
    window.ExportLabelsPdf(labels, LabelSheets().constFirst(), 3);
    ASSERT_TRUE(Idle());
    EXPECT_TRUE(ok.value_or(false));
    EXPECT_TRUE(window.status()->text().startsWith(QStringLiteral("2 Etiketten -> ")))
        << window.status()->text().toStdString();
    Screenshot(window, QStringLiteral("archive-paper-buttons"));
    WriteReportSettings(saved);

    const std::optional<QString> signedText = PdfText(signedPdf);
    const std::optional<QString> labelText = PdfText(labels);
    if (!signedText || !labelText)
        GTEST_SKIP() << "no pdftotext on this system";
    EXPECT_TRUE(signedText->contains(QStringLiteral("Elektro Prüfdienst GmbH"))) << signedText->toStdString();
    EXPECT_TRUE(signedText->contains(QStringLiteral("Erika Mustermann"))) << signedText->toStdString();
    EXPECT_TRUE(signedText->contains(QStringLiteral("E-0815"))) << signedText->toStdString();
    EXPECT_FALSE(signedText->contains(QStringLiteral("K-12"))) << signedText->toStdString();
    EXPECT_TRUE(labelText->contains(QStringLiteral("Kunde: Praxis Dr. Müller"))) << labelText->toStdString();
    EXPECT_TRUE(labelText->contains(QStringLiteral("ID-Nr: K-12"))) << labelText->toStdString();
}

TEST_F(ArchiveWindowTest, ADevicesDataMovesAndHistoryBelongToItsCustomer)
{
    {
        Archive archive(ParseArchiveUrl(Path()));
        ImportRecords(
            archive,
            {MakeRecord({.device = "E-0815", .date = "01.02.22"}),
             MakeRecord({.device = "E-0815", .date = "01.02.23"})},
            {QStringLiteral("PRUEF-7"), QStringLiteral("123456"), {}, {}, QStringLiteral("Kunde A")});
        ImportRecords(
            archive, {MakeRecord({.device = "E-0815", .date = "01.06.23", .regulation = '6'})},
            {QStringLiteral("PRUEF-8"), QStringLiteral("654321"), {}, {}, QStringLiteral("Kunde B")});
    }
    auto &window = Open();
    // Without a chosen record there is no device: the window says so and opens nothing.
    ui::DeviceDataDialog *dialog = nullptr;
    QObject::connect(&window, &ui::ArchiveWindow::deviceDataShown, &window,
                     [&dialog](QDialog *shown) { dialog = qobject_cast<ui::DeviceDataDialog *>(shown); });
    Click("geraetedaten");
    EXPECT_FALSE(dialog);
    EXPECT_EQ(window.status()->text(), QStringLiteral("Bitte zuerst ein Protokoll des Geräts wählen."));

    // One ID-Nr, two devices: each with its own next test, and only Kunde A's is due by mid-2024.
    Child<QLineEdit>("idNr")->setText(QStringLiteral("E-0815"));
    Click("suchen");
    EXPECT_EQ(window.status()->text(),
              QStringLiteral("3 Protokolle - E-0815 (Kunde A): zuletzt geprüft 01.02.2023, nächste Prüfung "
                             "01.02.2024 (alle 12 Monate) - E-0815 (Kunde B): zuletzt geprüft 01.06.2023, "
                             "nächste Prüfung 01.06.2025 (alle 24 Monate)"));
    Child<QCheckBox>("mitFaellig")->setChecked(true);
    Child<QDateEdit>("faellig")->setDate(QDate(2024, 6, 1));
    Click("suchen");
    ASSERT_EQ(window.model()->rowCount(), 1);
    EXPECT_EQ(window.model()->record(0).customerName, QStringLiteral("Kunde A"));
    Child<QCheckBox>("mitFaellig")->setChecked(false);
    Child<QLineEdit>("idNr")->clear();
    Click("suchen");

    // The history of Kunde A's E-0815 leaves Kunde B's device of that ID-Nr out.
    ASSERT_EQ(window.model()->record(0).customerName, QStringLiteral("Kunde B"));
    Select({1});
    Click("verlauf");
    ASSERT_EQ(ListedDevices(), (QStringList{"E-0815", "E-0815"}));
    EXPECT_EQ(window.model()->record(1).customerName, QStringLiteral("Kunde A"));
    EXPECT_EQ(Child<QComboBox>("kundenwahl")->currentText(), QStringLiteral("Kunde A"));
    EXPECT_TRUE(
        window.status()->text().endsWith(QStringLiteral("nächste Prüfung 01.02.2024 (alle 12 Monate)")))
        << window.status()->text().toStdString();

    const auto openFor = [&](int row) {
        dialog = nullptr;
        Select({row});
        Click("geraetedaten");
        return dialog;
    };
    ASSERT_TRUE(openFor(0));
    EXPECT_EQ(dialog->windowModality(), Qt::WindowModal);
    EXPECT_EQ(dialog->parentWidget(), &window);
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Gerät E-0815 bei Kunde A"));
    EXPECT_EQ(dialog->customer()->currentText(), QStringLiteral("Kunde A"));
    EXPECT_TRUE(dialog->type()->placeholderText().contains(QStringLiteral("Bohrmaschine")));
    // Who did what: the import that brought the records, from which tester, by whom.
    const auto historyRow = [&](int row) {
        QStringList cells;
        for (int column = 0; column < dialog->history()->columnCount(); ++column)
            cells << dialog->history()->item(row, column)->text();
        return cells;
    };
    ASSERT_EQ(dialog->history()->rowCount(), 1);
    EXPECT_TRUE(historyRow(0)[2].startsWith(QStringLiteral("Import ")));
    EXPECT_TRUE(historyRow(0)[3].contains(QStringLiteral("2 neu, 0 schon im Archiv; PRUEF-7 123456")))
        << historyRow(0)[3].toStdString();
    dialog->manufacturer()->setText(QStringLiteral("Muster Werkzeuge"));
    dialog->location()->setText(QStringLiteral("Werkstatt 2"));
    dialog->outOfService()->setChecked(true);
    dialog->accept();
    ASSERT_TRUE(Idle());
    {
        Archive archive(ParseArchiveUrl(Path()), ArchiveAccess::Read);
        const DeviceData a =
            FindDevices(archive, QStringLiteral("E-0815"), QStringLiteral("Kunde A")).value(0);
        EXPECT_EQ(a.manufacturer, QStringLiteral("Muster Werkzeuge"));
        EXPECT_EQ(a.location, QStringLiteral("Werkstatt 2"));
        EXPECT_TRUE(a.outOfService);
        const DeviceData b =
            FindDevices(archive, QStringLiteral("E-0815"), QStringLiteral("Kunde B")).value(0);
        EXPECT_TRUE(b.manufacturer.isEmpty());
        EXPECT_FALSE(b.outOfService);
    }

    // Opened again: the data as kept, and each change a row of its own, newest first.
    ASSERT_TRUE(openFor(0));
    EXPECT_EQ(dialog->manufacturer()->text(), QStringLiteral("Muster Werkzeuge"));
    EXPECT_TRUE(dialog->outOfService()->isChecked());
    ASSERT_EQ(dialog->history()->rowCount(), 4);
    QStringList what;
    for (int row = 0; row < 3; ++row)
        what << historyRow(row)[2] + QStringLiteral(": ") + historyRow(row)[3];
    what.sort();
    EXPECT_EQ(what, (QStringList{"Hersteller: - -> Muster Werkzeuge", "Standort: - -> Werkstatt 2",
                                 "außer Betrieb: nein -> ja"}));
    EXPECT_TRUE(historyRow(3)[2].startsWith(QStringLiteral("Import ")));
    Screenshot(*dialog, QStringLiteral("archive-device-data"));

    // Kunde B has an E-0815 of its own: the move is refused and nothing changes.
    dialog->customer()->setCurrentText(QStringLiteral("Kunde B"));
    dialog->location()->setText(QStringLiteral("Lager"));
    dialog->accept();
    ASSERT_TRUE(Idle());
    EXPECT_TRUE(window.status()->text().contains(QStringLiteral("gibt es schon ein Gerät mit dieser ID-Nr")))
        << window.status()->text().toStdString();
    {
        Archive archive(ParseArchiveUrl(Path()), ArchiveAccess::Read);
        EXPECT_EQ(FindDevices(archive, QStringLiteral("E-0815"), QStringLiteral("Kunde A")).value(0).location,
                  QStringLiteral("Werkstatt 2"));
    }

    // To a new customer: the device goes with its records and its changes, and the list follows it.
    Click("suchen");
    ASSERT_TRUE(openFor(0));
    dialog->customer()->setCurrentText(QStringLiteral("Kunde C"));
    dialog->retired()->setChecked(true);
    dialog->accept();
    ASSERT_TRUE(Idle());
    EXPECT_EQ(Child<QComboBox>("kundenwahl")->currentText(), QStringLiteral("Kunde C"));
    ASSERT_EQ(ListedDevices(), (QStringList{"E-0815", "E-0815"}));
    EXPECT_EQ(window.model()->record(0).customerName, QStringLiteral("Kunde C"));
    {
        Archive archive(ParseArchiveUrl(Path()), ArchiveAccess::Read);
        EXPECT_TRUE(FindDevices(archive, QStringLiteral("E-0815"), QStringLiteral("Kunde A")).isEmpty());
        // Retired, it is no longer due; Kunde B's device of that ID-Nr still is.
        QStringList due;
        for (const DueDevice &device : DueDevices(archive, QDate(2100, 1, 1)))
            due << device.customerName + QLatin1Char('/') + device.deviceId;
        EXPECT_EQ(due, (QStringList{"Kunde B/E-0815"}));
    }
    ASSERT_TRUE(openFor(0));
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Gerät E-0815 bei Kunde C"));
    EXPECT_EQ(dialog->history()->rowCount(), 6);
    EXPECT_EQ(historyRow(0)[2] + historyRow(1)[2], QStringLiteral("ausgemustert (nicht mehr fällig)Kunde"))
        << (historyRow(0)[2] + historyRow(1)[2]).toStdString();
    EXPECT_EQ(historyRow(1)[3], QStringLiteral("Kunde A -> Kunde C"));

    // Cancelled, nothing is kept; in English the dialog speaks English.
    dialog->location()->setText(QStringLiteral("verworfen"));
    dialog->reject();
    ASSERT_TRUE(Idle());
    window.SetLanguage(QStringLiteral("englisch"));
    ASSERT_TRUE(openFor(0));
    EXPECT_EQ(dialog->location()->text(), QStringLiteral("Werkstatt 2"));
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Device E-0815 at Kunde C"));
    EXPECT_EQ(historyRow(1)[2], QStringLiteral("Customer"));
    EXPECT_EQ(historyRow(0)[3], QStringLiteral("no -> yes"));
    EXPECT_EQ(Child<QPushButton>("geraetedaten")->text(), QStringLiteral("Device data ..."));
    dialog->reject();
}

// A window closed while it asks for the customer of a read takes the question with it, not the
// records: they are kept under "ohne Kunde" as on Cancel.
TEST(CustomerQuestion, AWindowClosedWhileItAsksLeavesTheRecordsToNoCustomer)
{
    auto owner = std::make_unique<QWidget>();
    owner->show();
    std::optional<QString> answer;
    ui::AskCustomerOfRead(owner.get(), QString(), [&answer](const QString &customer) { answer = customer; });
    ASSERT_TRUE(owner->findChild<QInputDialog *>(QStringLiteral("kundeDerLesung")));
    EXPECT_FALSE(answer);
    owner.reset();
    ASSERT_TRUE(answer);
    EXPECT_EQ(*answer, QString());
}

} // namespace
