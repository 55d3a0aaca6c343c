// The window "Archiv": searching the record archive, a device's history and next test, a record's
// report, and the selection exported as PDF or CSV.
#pragma once

#include "ArchiveCaptions.h"
#include "archive/ArchiveLocation.h"
#include "archive/ArchiveTypes.h"

#include <QMainWindow>
#include <memory>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QLabel;
class QPushButton;
class QLineEdit;
class QPlainTextEdit;
class QTableView;

namespace kalvo::archive {
class Archive;
}

namespace kalvo::archive::ui {

class ArchiveTableModel;

class ArchiveWindow : public QMainWindow {
    Q_OBJECT
public:
    // Opens the archive at `target`; when that fails the window says why and searches nothing.
    explicit ArchiveWindow(const ArchiveTarget &target, QWidget *parent = nullptr);
    ~ArchiveWindow() override;

    // Every caption in `language` (the language table's names; German for one it does not know).
    void SetLanguage(const QString &language);
    // Lists what the search fields and filters find, newest first.
    void Search();
    // The selected record's device: its history, newest first, and its next test.
    void ShowHistory();
    // The selected records (all listed ones when none is selected) into `path`; false, with the
    // reason shown, when that failed (the old file stays).
    bool ExportPdf(const QString &path);
    bool ExportCsv(const QString &path);

    ArchiveTableModel *model() const { return m_model; }
    QTableView *table() const { return m_table; }
    QPlainTextEdit *report() const { return m_report; }
    QLabel *status() const { return m_status; }

private:
    void BuildForm();
    QString Text(Caption caption) const;
    ArchiveFilter Filter() const;
    void ShowSelectedReport();
    void ShowDeviceStatus(const QString &deviceId);
    QList<ArchivedRecord> Chosen() const;
    void Fail(const QString &message);
    void AskAndExport(const QString &filter, bool (ArchiveWindow::*exporter)(const QString &));

    std::unique_ptr<Archive> m_archive;
    ArchiveTableModel *m_model;
    QTableView *m_table;
    QPlainTextEdit *m_report;
    QLabel *m_status;
    QLineEdit *m_device, *m_type, *m_customer, *m_text;
    QComboBox *m_verdict, *m_regulation;
    QCheckBox *m_useFrom, *m_useTo, *m_useDue;
    QDateEdit *m_from, *m_to, *m_due;
    QString m_language;
    QList<std::pair<QLabel *, Caption>> m_labels;
    QList<std::pair<QPushButton *, Caption>> m_buttons;
};

} // namespace kalvo::archive::ui
