// The set-file side of the database window: the text of the current set file (Text1), its name
// (Text2), and the lists for choosing several set files to store (File1, List2).
#pragma once

#include <QStringList>
#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;

namespace kalvo::specdb::ui {

class SetFilePanel : public QWidget {
    Q_OBJECT
public:
    explicit SetFilePanel(QWidget *parent = nullptr);
    void ApplyTexts(const QString &language);

    // oeffnen: the set file named in prfname.txt, or one chosen in the open dialog, into Text1.
    void OpenSetFile();
    // laden: shows the set files of the current file's folder (File1) and the ones chosen (List2).
    void ShowFileLists();
    void HideFileLists();
    bool fileListsShown() const;
    QStringList chosenFiles() const;

    // The text to store, in the program's bytes (set files are Windows-1252 on the PC).
    QByteArray text() const;
    // The current set file; asks for one when there is none. Empty: the user cancelled.
    QString fileName();
    // Remembers `path` as the last set file (prfname.txt).
    void Remember(const QString &path);

private:
    void Load(const QString &path);
    // A text beyond what the tester's store takes is cut back, once said.
    void Bound();

    QPlainTextEdit *m_text; // Text1
    QLineEdit *m_name;      // Text2
    QListWidget *m_files;   // File1
    QListWidget *m_chosen;  // List2
    QLabel *m_nameLabel;
};

} // namespace kalvo::specdb::ui
