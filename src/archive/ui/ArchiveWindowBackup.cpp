// The window "Archiv": backups of the archive, restoring one into an empty archive, and the
// reminder when the last backup is too old.
#include "ArchiveWindow.h"

#include "BackupCaptions.h"

#include "archive/Archive.h"
#include "archive/ArchiveBackup.h"
#include "archive/ArchiveSession.h"
#include "archive/BackupReminder.h"
#include "archive/TableCopy.h"
#include "gui/GuiPrompter.h"

#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QTimer>
#include <QVBoxLayout>

namespace kalvo::archive::ui {

namespace {

constexpr int kProgressMs = 100;

struct BackupAge {
    bool holdsRecords = false;
    QDateTime last;
};

} // namespace

void ArchiveWindow::BuildBackupParts(QVBoxLayout *window, QHBoxLayout *statusRow)
{
    m_backupMenu = menuBar()->addMenu(QString());
    m_backupMenu->setObjectName(QStringLiteral("sicherung"));
    m_backupAction = m_backupMenu->addAction(QString(), this, &ArchiveWindow::AskAndBackup);
    m_backupAction->setObjectName(QStringLiteral("sichern"));
    m_restoreAction = m_backupMenu->addAction(QString(), this, &ArchiveWindow::AskAndRestore);
    m_restoreAction->setObjectName(QStringLiteral("wiederherstellen"));

    // A note, not a box: it does not stand in the way at every start.
    m_backupNote = new QLabel;
    m_backupNote->setObjectName(QStringLiteral("sicherungHinweis"));
    m_backupNote->setWordWrap(true);
    m_backupNote->setStyleSheet(QStringLiteral("QLabel { background: #fff3c4; border: 1px solid #d9b200; "
                                               "padding: 4px; }"));
    m_backupNote->hide();
    window->addWidget(m_backupNote);

    m_progress = new QProgressBar;
    m_progress->setObjectName(QStringLiteral("fortschritt"));
    m_progress->setRange(0, 100);
    m_progress->setMaximumWidth(160);
    m_progress->hide();
    statusRow->insertWidget(1, m_progress);
    m_progressTimer = new QTimer(this);
    m_progressTimer->setInterval(kProgressMs);
    connect(m_progressTimer, &QTimer::timeout, this, [this] { m_progress->setValue(m_percent->load()); });
}

void ArchiveWindow::SetBackupLanguage()
{
    m_backupMenu->setTitle(BackupText(BackupCaption::Menu, m_language));
    m_backupAction->setText(BackupText(BackupCaption::Backup, m_language));
    m_restoreAction->setText(BackupText(BackupCaption::Restore, m_language));
    if (!m_backupNote->isHidden())
        CheckBackupAge();
}

template <typename Job, typename Done> void ArchiveWindow::RunWithProgress(Job job, Done done)
{
    m_percent->store(0);
    m_progress->setValue(0);
    m_progress->show();
    m_progressTimer->start();
    m_backupMenu->setEnabled(false);
    const auto finished = [this] {
        m_progressTimer->stop();
        m_progress->hide();
        m_backupMenu->setEnabled(true);
    };
    // The job reports to a counter it shares with the window, which shows it on its own timer:
    // nothing on the archive's thread touches a widget, and a window closed meanwhile is no matter.
    m_session->Ask(
        this,
        [job = std::move(job), percent = m_percent](Archive &archive) {
            return job(archive, [percent](int p) { percent->store(p); });
        },
        [finished, done = std::move(done)](const auto &result) {
            finished();
            done(result);
        },
        [this, finished](const QString &message) {
            finished();
            Fail(message);
        });
}

void ArchiveWindow::BackupTo(const QString &path)
{
    RunWithProgress(
        [path](Archive &archive, const BackupProgress &progress) {
            return BackupArchive(archive, path, progress, true);
        },
        [this, path](const BackupResult &result) {
            ShowStatus(BackupText(BackupCaption::Written, m_language)
                           .arg(QDir::toNativeSeparators(path))
                           .arg(result.records));
            m_backupNote->hide();
        });
}

void ArchiveWindow::RestoreFrom(const QString &path)
{
    RunWithProgress(
        [path](Archive &archive, const BackupProgress &progress) {
            return RestoreArchive(archive, path, progress);
        },
        [this, path](const RestoreResult &result) {
            Search();
            CheckBackupAge();
            // Said once the search has counted (the session answers in order), not overwritten by it.
            const QString said = BackupText(BackupCaption::Restored, m_language)
                                     .arg(QDir::toNativeSeparators(path))
                                     .arg(result.records);
            m_session->Ask(
                this, [](Archive &) { return 0; }, [this, said](int) { ShowStatus(said); },
                [this](const QString &message) { Fail(message); });
        });
}

void ArchiveWindow::AskAndBackup()
{
    // The program's save dialog: it belongs to this window and asks before replacing a file.
    const QString path =
        gui::GuiPrompter(this, windowTitle()).askSaveFile(BackupText(BackupCaption::FileFilter, m_language));
    if (!path.isEmpty())
        BackupTo(path);
}

void ArchiveWindow::AskAndRestore()
{
    gui::GuiPrompter prompter(this, windowTitle());
    const QString path = prompter.askOpenFile(BackupText(BackupCaption::FileFilter, m_language));
    if (path.isEmpty())
        return;
    m_session->Ask(
        this, [](Archive &archive) { return archive.target().Describe(); },
        [this, path](const QString &archive) {
            // The intervals of the archive give way to the backup's: Cancel is the default.
            if (gui::GuiPrompter(this, windowTitle())
                    .confirmLoss(BackupText(BackupCaption::RestoreQuestion, m_language)
                                     .arg(QDir::toNativeSeparators(path), archive)))
                RestoreFrom(path);
        },
        [this](const QString &message) { Fail(message); });
}

void ArchiveWindow::CheckBackupAge()
{
    m_session->Ask(
        this,
        [](Archive &archive) {
            return BackupAge{CountRows(archive, QStringLiteral("records")) > 0, LastBackup(archive.target())};
        },
        [this](const BackupAge &age) {
            if (!BackupIsDue(age.last, QDateTime::currentDateTimeUtc(), age.holdsRecords)) {
                m_backupNote->hide();
                return;
            }
            m_backupNote->setText(age.last.isValid() ? BackupText(BackupCaption::TooOld, m_language)
                                                           .arg(age.last.toLocalTime().date().toString(
                                                               QStringLiteral("dd.MM.yyyy")))
                                                     : BackupText(BackupCaption::NoneYet, m_language));
            m_backupNote->show();
        },
        [](const QString &) {}); // the searches say why the archive cannot be read
}

} // namespace kalvo::archive::ui
