// The file choice `SPdownfiles`: drive (or folder) and directory lists, and the files of one mask.
#include "FileChoiceFrame.h"

#include "gui/FileFilters.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

namespace kalvo::update::ui {

FileChoiceFrame::FileChoiceFrame(QWidget *parent)
    : QGroupBox(parent), m_title(new QLabel(this)), m_drives(new QComboBox(this)),
      m_folder(new QPushButton(this)), m_dirs(new QListWidget(this)), m_files(new QListWidget(this))
{
    setObjectName(QStringLiteral("SPdownfiles"));
    m_title->setObjectName(QStringLiteral("titeldf"));
    m_drives->setObjectName(QStringLiteral("DrvList"));
    m_folder->setObjectName(QStringLiteral("folderChoice"));
    m_dirs->setObjectName(QStringLiteral("dirList"));
    m_files->setObjectName(QStringLiteral("File1"));
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    auto *grid = new QGridLayout(this);
    grid->addWidget(m_title, 0, 0, 1, 2);
    grid->addWidget(m_drives, 1, 0);
    grid->addWidget(m_folder, 1, 0);
    grid->addWidget(m_dirs, 2, 0);
    grid->addWidget(m_files, 1, 1, 2, 1);
    m_dirs->setMinimumHeight(160);
    // A system with drive letters chooses among them; elsewhere one root holds everything, and a
    // folder dialog takes the drive list's place.
    const QFileInfoList drives = QDir::drives();
    for (const QFileInfo &drive : drives)
        m_drives->addItem(QDir::toNativeSeparators(drive.absolutePath()));
    m_drives->setVisible(drives.size() > 1);
    m_folder->setVisible(drives.size() <= 1);
    connect(m_drives, &QComboBox::activated, this,
            [this](int index) { SetDirectory(m_drives->itemText(index)); });
    connect(m_folder, &QPushButton::clicked, this, [this] {
        const QString chosen = QFileDialog::getExistingDirectory(
            this, m_folder->text(), m_directory, QFileDialog::ShowDirsOnly | gui::FileDialogOptions());
        if (!chosen.isEmpty())
            SetDirectory(chosen);
    });
    connect(m_dirs, &QListWidget::itemActivated, this, &FileChoiceFrame::EnterDirectory);
    connect(m_files, &QListWidget::itemActivated, this,
            [this](QListWidgetItem *item) { emit fileChosen(item->text()); });
}

void FileChoiceFrame::Choose(const QString &mask, const QString &title)
{
    m_mask = mask;
    m_title->setText(title);
    Refresh();
}

void FileChoiceFrame::SetDirectory(const QString &directory)
{
    m_directory = QDir(directory).absolutePath();
    Refresh();
    emit directoryChanged(m_directory);
}

void FileChoiceFrame::SetFolderCaption(const QString &caption)
{
    m_folder->setText(caption);
}

void FileChoiceFrame::Refresh()
{
    const QDir dir(m_directory);
    m_dirs->clear();
    if (!dir.isRoot())
        m_dirs->addItem(QStringLiteral(".."));
    m_dirs->addItems(dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase));
    m_files->clear();
    // Name filters ignore case: "A*.P" files show under "a*.p".
    m_files->addItems(QDir(m_directory).entryList({m_mask}, QDir::Files, QDir::Name | QDir::IgnoreCase));
    for (int i = 0; i < m_drives->count(); ++i)
        if (m_directory.startsWith(QDir::fromNativeSeparators(m_drives->itemText(i)), Qt::CaseInsensitive))
            m_drives->setCurrentIndex(i);
}

void FileChoiceFrame::EnterDirectory(QListWidgetItem *item)
{
    SetDirectory(QDir(m_directory).filePath(item->text()));
}

} // namespace kalvo::update::ui
