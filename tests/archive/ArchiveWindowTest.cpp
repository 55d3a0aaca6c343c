// The window "Archiv" on an SQLite archive, offscreen: searching, scrolling, a device's history,
// a record's report, and the selection as PDF and CSV.
#include "ArchiveSamples.h"

#include "archive/ArchiveQueries.h"
#include "archive/RecordImport.h"
#include "archive/ui/ArchiveTableModel.h"
#include "archive/ui/ArchiveWindow.h"
#include "support/TestFiles.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QTableView>

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
    ui::ArchiveWindow &Open()
    {
        m_window = std::make_unique<ui::ArchiveWindow>(ParseArchiveUrl(Path()));
        m_window->show();
        return *m_window;
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
    Child<QPushButton>("verlauf")->click();
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
        Child<QPushButton>("suchen")->click();
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

    const QString pdf = m_dir.filePath(QStringLiteral("auswahl.pdf"));
    ASSERT_TRUE(window.ExportPdf(pdf)) << window.status()->text().toStdString();
    QProcess pdftotext;
    pdftotext.start(QStringLiteral("pdftotext"), {pdf, QStringLiteral("-")});
    ASSERT_TRUE(pdftotext.waitForFinished(30000));
    const QStringList pages =
        QString::fromUtf8(pdftotext.readAllStandardOutput()).split(QLatin1Char('\f'), Qt::SkipEmptyParts);
    ASSERT_EQ(pages.size(), 2);
    EXPECT_TRUE(pages[0].contains(QStringLiteral("SHA-256: ") + QString::fromLatin1(first.sha256)));
    EXPECT_TRUE(pages[1].contains(QStringLiteral("R-1")));

    const QString csv = m_dir.filePath(QStringLiteral("auswahl.csv"));
    ASSERT_TRUE(window.ExportCsv(csv));
    const QList<QByteArray> lines = ReadFile(csv).split('\n');
    ASSERT_EQ(lines.size(), 4); // header, two records, the end
    EXPECT_TRUE(lines[1].contains(";R-3;"));
    EXPECT_TRUE(lines[2].contains(";R-1;"));
}

TEST_F(ArchiveWindowTest, ACorruptArchiveIsNamedAndLeftAlone)
{
    const QByteArray junk = "kein Archiv";
    ASSERT_TRUE(WriteFile(Path(), junk));
    auto &window = Open();
    EXPECT_TRUE(window.status()->text().contains(Path())) << window.status()->text().toStdString();
    EXPECT_EQ(window.model()->rowCount(), 0);
    window.Search();
    EXPECT_FALSE(window.ExportCsv(m_dir.filePath(QStringLiteral("x.csv"))));
    EXPECT_FALSE(window.ExportPdf(m_dir.filePath(QStringLiteral("x.pdf"))));
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
        {"englisch", "Archive", "Search", "all", "due before", "Test date", "1 test records"},
        {"französisch", "Archives", "Rechercher", "tous", "échéance avant", "Date d'essai",
         "1 procès-verbaux"},
        {"unbekannt", "Archiv", "Suchen", "alle", "fällig vor", "Prüfdatum", "1 Protokolle"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.language);
        window.SetLanguage(QString::fromUtf8(c.language));
        window.Search();
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
