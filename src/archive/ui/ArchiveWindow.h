// The window "Archiv": searching the record archive, a device's history and next test, a record's
// report, and the selection exported as PDF or CSV.
#pragma once

#include "ArchiveCaptions.h"
#include "PaperCaptions.h"
#include "archive/ArchiveLocation.h"
#include "archive/ArchiveTypes.h"

#include <QDialog>
#include <QMainWindow>
#include <atomic>
#include <functional>
#include <memory>

class QAction;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QLabel;
class QMenu;
class QProgressBar;
class QTimer;
class QHBoxLayout;
class QVBoxLayout;
class QPushButton;
class QLineEdit;
class QPlainTextEdit;
class QTableView;

namespace kalvo::archive {
class Archive;
class ArchiveSession;
struct LabelSheet;
} // namespace kalvo::archive

namespace kalvo::archive::ui {

class ArchiveTableModel;
struct DeviceDataChanges;
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
    // Signed reports and test labels of the selection (everything the search finds when nothing is
    // selected), like ExportPdf: the signed report with the report settings' header and inspector,
    // the labels for the devices of the records on `sheet` from label `firstFree` on.
    void ExportSignedPdf(const QString &path);
    void ExportLabelsPdf(const QString &path, const LabelSheet &sheet, int firstFree);
    // Company, address, logo and inspector of the signed reports, in a dialog of this window.
    void EditReportSettings();
    // The selected record's device: its own data, its customer and its history of who did what, in a
    // dialog of this window (ArchiveWindowDevice.cpp); what is changed there is kept with its change
    // rows, and the list is searched again. Without a selected record the status line says so.
    void EditDeviceData();
    // Queries asked for and not yet answered.
    bool busy() const;

    // Backups (ArchiveWindowBackup.cpp). A copy of the archive into `path`, replacing a file there
    // (the save dialog asked), with its progress; the status line says what was written or why not.
    void BackupTo(const QString &path);
    // The backup at `path` into this archive, which must hold no record; then searched again.
    void RestoreFrom(const QString &path);
    // The reminder shown while the last backup is more than 30 days old, or there is none of an
    // archive with records; hidden otherwise.
    QLabel *backupNote() const { return m_backupNote; }

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
    void reportSettingsShown(QDialog *dialog);
    void labelOptionsShown(QDialog *dialog);
    void deviceDataShown(QDialog *dialog);

private:
    void BuildForm();
    QString Text(Caption caption) const;
    ArchiveFilter Filter() const;
    void ShowSelectedReport();
    void ShowDeviceStatus(const QString &deviceId, const QString &customer);
    QList<ArchivedRecord> Selected() const;
    DeviceKey CurrentDevice() const;
    void Fail(const QString &message);
    void AskAndExport(const QString &filter, void (ArchiveWindow::*exporter)(const QString &));
    // Runs `job(Archive &)` on the archive's thread: `done(path, count)` says what was saved.
    template <typename Job> void Export(const QString &path, Caption saved, Job job);
    void ApplyIntervals(const IntervalChanges &changes);
    void ApplyDeviceData(const DeviceDataChanges &changes);
    // Chooses `name` among the archive's customers, adding it when the list does not hold it yet.
    void ChooseCustomer(const QString &name);
    void ShowStatus(const QString &text);
    // The ids of the selected records, or of everything the search finds: asked on the archive's
    // thread.
    std::function<QList<qint64>(Archive &)> ChosenIds() const;
    // The buttons of signed reports and labels, and what they open.
    QWidget *PaperButtons();
    void AskSignedPdf();
    void AskLabelsPdf();
    // Like Export, for jobs that return how many and what the user should know besides.
    template <typename Job> void ExportPaper(const QString &path, PaperCaption saved, Job job);

    // Opens `dialog` window-modal; `accepted` runs when it is accepted.
    template <typename Dialog, typename Accepted> void OpenDialog(Dialog *dialog, Accepted accepted);

    void BuildBackupParts(QVBoxLayout *window, QHBoxLayout *statusRow);
    void SetBackupLanguage();
    void AskAndBackup();
    void AskAndRestore();
    void CheckBackupAge();
    // Runs `job(Archive &, progress)` on the archive's thread with the progress bar shown.
    template <typename Job, typename Done> void RunWithProgress(Job job, Done done);

    QMenu *m_backupMenu = nullptr;
    QAction *m_backupAction = nullptr;
    QAction *m_restoreAction = nullptr;
    QLabel *m_backupNote = nullptr;
    QProgressBar *m_progress = nullptr;
    QTimer *m_progressTimer = nullptr;
    std::shared_ptr<std::atomic<int>> m_percent = std::make_shared<std::atomic<int>>(0);

    ArchiveSession *m_session;
    ArchiveTableModel *m_model;
    QTableView *m_table;
    QPlainTextEdit *m_report;
    QLabel *m_status;
    QLineEdit *m_device, *m_type, *m_customer, *m_text;
    QPushButton *m_deviceButton = nullptr;
    QComboBox *m_archiveCustomer; // item 0: every customer
    void LoadCustomers();
    QComboBox *m_verdict, *m_regulation;
    QCheckBox *m_useFrom, *m_useTo, *m_useDue;
    QDateEdit *m_from, *m_to, *m_due;
    QString m_language;
    QString m_statusText; // what the status line says when the window does not wait
    QList<std::pair<QLabel *, Caption>> m_labels;
    QList<std::pair<QPushButton *, Caption>> m_buttons;
    QList<std::pair<QPushButton *, PaperCaption>> m_paperButtons;
};

template <typename Dialog, typename Accepted>
void ArchiveWindow::OpenDialog(Dialog *dialog, Accepted accepted)
{
    // Opened, not executed: the archive's answers keep coming while it is open.
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, accepted);
    dialog->open();
}

} // namespace kalvo::archive::ui
