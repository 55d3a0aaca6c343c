// A drive (or folder) chooser, the folders of the current directory and its files of one mask.
#include "FolderLists.h"

#include "FileFilters.h"
#include "Phrases.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QListWidget>
#include <QPushButton>

namespace kalvo::gui {

FolderLists::FolderLists(QWidget *parent)
    : QWidget(parent), m_drives(new QComboBox(this)), m_folder(new QPushButton(this)),
      m_dirs(new QListWidget(this)), m_files(new QListWidget(this))
{
    m_drives->setObjectName(QStringLiteral("DrvList"));
    m_folder->setObjectName(QStringLiteral("folderChoice"));
    m_dirs->setObjectName(QStringLiteral("dirList"));
    m_files->setObjectName(QStringLiteral("File1"));
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(m_drives, 0, 0);
    grid->addWidget(m_folder, 0, 0);
    grid->addWidget(m_dirs, 1, 0);
    grid->addWidget(m_files, 0, 1, 2, 1);
    m_dirs->setMinimumHeight(120);
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
            this, m_folder->text(), m_directory, QFileDialog::ShowDirsOnly | FileDialogOptions());
        if (!chosen.isEmpty())
            SetDirectory(chosen);
    });
    connect(m_dirs, &QListWidget::itemActivated, this, &FolderLists::EnterDirectory);
    connect(m_files, &QListWidget::itemActivated, this,
            [this](QListWidgetItem *item) { emit fileChosen(item->text()); });
}

void FolderLists::SetMask(const QString &mask)
{
    m_mask = mask;
    Refresh();
}

void FolderLists::SetDirectory(const QString &directory)
{
    m_directory = QDir(directory).absolutePath();
    Refresh();
    emit directoryChanged(m_directory);
}

void FolderLists::SetLanguage(const QString &language)
{
    static const LanguageTexts kFolder = {u"Ordner …", u"Folder …", u"Dossier …", u"Cartella …",
                                          u"Složka …", u"Map …",    u"Carpeta …"};
    m_folder->setText(InLanguage(kFolder, language));
}

void FolderLists::Refresh()
{
    const QDir dir(m_directory);
    m_dirs->clear();
    if (!dir.isRoot())
        m_dirs->addItem(QStringLiteral(".."));
    m_dirs->addItems(dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase));
    m_files->clear();
    // Name filters ignore case: "A*.P" files show under "a*.p".
    m_files->addItems(dir.entryList({m_mask}, QDir::Files, QDir::Name | QDir::IgnoreCase));
    for (int i = 0; i < m_drives->count(); ++i)
        if (m_directory.startsWith(QDir::fromNativeSeparators(m_drives->itemText(i)), Qt::CaseInsensitive))
            m_drives->setCurrentIndex(i);
}

void FolderLists::EnterDirectory(QListWidgetItem *item)
{
    SetDirectory(QDir(m_directory).filePath(item->text()));
}

} // namespace kalvo::gui
