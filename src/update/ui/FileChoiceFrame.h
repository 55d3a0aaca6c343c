// The file choice `SPdownfiles`: drive (or folder) and directory lists, and the files of one mask.
#pragma once

#include <QGroupBox>

class QComboBox;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace kalvo::update::ui {

class FileChoiceFrame : public QGroupBox {
    Q_OBJECT
public:
    explicit FileChoiceFrame(QWidget *parent = nullptr);

    // Lists the files of `directory` that fit `mask` ("a*.p", case ignored) under `title`.
    void Choose(const QString &mask, const QString &title);
    void SetDirectory(const QString &directory);
    const QString &directory() const { return m_directory; }
    const QString &mask() const { return m_mask; }
    void SetFolderCaption(const QString &caption);
    // Lists the folder again (after a language switch, or when files may have come).
    void Refresh();

signals:
    // A file of the list was chosen: its name without the folder.
    void fileChosen(const QString &name);
    void directoryChanged(const QString &directory);

private:
    void EnterDirectory(QListWidgetItem *item);

    QString m_directory;
    QString m_mask = QStringLiteral("*.*");
    QLabel *m_title;       // titeldf
    QComboBox *m_drives;   // DrvList, where the system has drives
    QPushButton *m_folder; // otherwise a folder chooser does its job
    QListWidget *m_dirs;   // dirList
    QListWidget *m_files;  // File1
};

} // namespace kalvo::update::ui
