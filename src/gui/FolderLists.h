// A drive (or folder) chooser, the folders of the current directory and its files of one mask:
// the file choice that update packages and calibration backups are picked from.
#pragma once

#include <QWidget>

class QComboBox;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace kalvo::gui {

class FolderLists : public QWidget {
    Q_OBJECT
public:
    // The children are named DrvList, folderChoice, dirList and File1.
    explicit FolderLists(QWidget *parent = nullptr);

    // Lists the files that fit `mask` ("a*.p", "*.cal"; case ignored).
    void SetMask(const QString &mask);
    const QString &mask() const { return m_mask; }
    void SetDirectory(const QString &directory);
    const QString &directory() const { return m_directory; }
    // The folder chooser that stands in for the drive list speaks `language` (the language
    // table's names).
    void SetLanguage(const QString &language);
    // Lists the folder again (files may have come or gone).
    void Refresh();
    QListWidget *fileList() const { return m_files; }

signals:
    // A file of the list was chosen (double-click or Enter): its name without the folder.
    void fileChosen(const QString &name);
    void directoryChanged(const QString &directory);

private:
    void EnterDirectory(QListWidgetItem *item);

    QString m_directory;
    QString m_mask = QStringLiteral("*.*");
    QComboBox *m_drives;   // DrvList, where the system has drives
    QPushButton *m_folder; // otherwise a folder chooser does its job
    QListWidget *m_dirs;   // dirList
    QListWidget *m_files;  // File1
};

} // namespace kalvo::gui
