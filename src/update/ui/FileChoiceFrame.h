// The file choice `SPdownfiles`: its title `titeldf` over the drive, folder and file lists.
#pragma once

#include <QGroupBox>

class QLabel;

namespace kalvo::gui {
class FolderLists;
}

namespace kalvo::update::ui {

class FileChoiceFrame : public QGroupBox {
    Q_OBJECT
public:
    explicit FileChoiceFrame(QWidget *parent = nullptr);

    // Lists the files of the directory that fit `mask` ("a*.p", case ignored) under `title`.
    void Choose(const QString &mask, const QString &title);
    void SetDirectory(const QString &directory);
    const QString &directory() const;
    const QString &mask() const;
    void SetLanguage(const QString &language);
    // Lists the folder again (after a language switch, or when files may have come).
    void Refresh();

signals:
    // A file of the list was chosen: its name without the folder.
    void fileChosen(const QString &name);
    void directoryChanged(const QString &directory);

private:
    QLabel *m_title; // titeldf
    gui::FolderLists *m_lists;
};

} // namespace kalvo::update::ui
