// The window "Archiv": searching the record archive, a device's history and next test, a record's
// report, and the selection exported as PDF or CSV.
#pragma once

#include "ArchiveCaptions.h"
#include "archive/ArchiveLocation.h"
#include "archive/ArchiveTypes.h"

#include <QMainWindow>

class QCheckBox;
class QDialog;
class QComboBox;
class QDateEdit;
class QLabel;
class QPushButton;
class QLineEdit;
class QPlainTextEdit;
class QTableView;

namespace kalvo::archive {
class ArchiveSession;
}

namespace kalvo::archive::ui {

class ArchiveTableModel;
struct IntervalChanges;

class ArchiveWindow : public QMainWindow {
    Q_OBJECT
public:
    // Opens the archive at `target`; when that fails the window says why and finds nothing.
    // Every query runs on the archive's own thread (ArchiveSession): a slow server never stops
    // the window, which shows that it waits.
    explicit ArchiveWindow(const ArchiveTarget &target, QWidget *parent = nullptr);
    ~ArchiveWindow() override;

    // Every caption in `language` (the language table's names; German for one it does not know).
    void SetLanguage(const QString &language);
    // Lists what the search fields and filters find, newest first.
    void Search();
    // The selected record's device: its history, newest first, and its next test.
    void ShowHistory();
    // The selected records (everything the search finds when none is selected) into `path`; the
    // status line says how many, or why nothing was written (the old file stays). `exported`
    // follows.
    void ExportPdf(const QString &path);
    void ExportCsv(const QString &path);
    // The re-test intervals, with the selected record's device, in a dialog of this window; what
    // is changed there moves the next tests, and the list is searched again.
    void EditIntervals();
    // Whether records read go into the archive and which archive, in a dialog of this window;
    // a new address is opened here at once and searched.
    void EditSettings();
    // Queries asked for and not yet answered.
    bool busy() const;

    ArchiveTableModel *model() const { return m_model; }
    QTableView *table() const { return m_table; }
    QPlainTextEdit *report() const { return m_report; }
    QLabel *status() const { return m_status; }

signals:
    // An export has ended; `ok` false when nothing was written.
    void exported(const QString &path, bool ok);
    // The interval or the settings dialog is open (window-modal; for whoever needs to see or
    // answer it).
    void intervalsShown(QDialog *dialog);
    void settingsShown(QDialog *dialog);

private:
    void BuildForm();
    QString Text(Caption caption) const;
    ArchiveFilter Filter() const;
    void ShowSelectedReport();
    void ShowDeviceStatus(const QString &deviceId);
    QList<ArchivedRecord> Selected() const;
    DeviceKey CurrentDevice() const;
    void Fail(const QString &message);
    void AskAndExport(const QString &filter, void (ArchiveWindow::*exporter)(const QString &));
    // Runs `job(Archive &)` on the archive's thread: `done(path, count)` says what was saved.
    template <typename Job> void Export(const QString &path, Caption saved, Job job);
    void ApplyIntervals(const IntervalChanges &changes);
    void ShowStatus(const QString &text);

    // Opens `dialog` window-modal; `accepted` runs when it is accepted.
    template <typename Dialog, typename Accepted> void OpenDialog(Dialog *dialog, Accepted accepted);

    ArchiveSession *m_session;
    ArchiveTableModel *m_model;
    QTableView *m_table;
    QPlainTextEdit *m_report;
    QLabel *m_status;
    QLineEdit *m_device, *m_type, *m_customer, *m_text;
    QComboBox *m_archiveCustomer; // item 0: every customer
    void LoadCustomers();
    QComboBox *m_verdict, *m_regulation;
    QCheckBox *m_useFrom, *m_useTo, *m_useDue;
    QDateEdit *m_from, *m_to, *m_due;
    QString m_language;
    QString m_statusText; // what the status line says when the window does not wait
    QList<std::pair<QLabel *, Caption>> m_labels;
    QList<std::pair<QPushButton *, Caption>> m_buttons;
};

} // namespace kalvo::archive::ui
