// The test-specification database window FRMDB: the tester's store (IdNr), the editor, set files,
// storing and deleting.
#pragma once

#include "DatabaseCaptions.h"
#include "specdb/SpecEditor.h"
#include "specdb/StoreRemoval.h"
#include "specdb/SpecStore.h"

#include <QMainWindow>

class QLabel;
class QListWidget;
class QPushButton;

namespace kalvo::link {
class LanguageTable;
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::gui {
class DeviceThread;
}

namespace kalvo::specdb::ui {

class EditorPanel;
class SetFilePanel;

class DatabaseWindow : public QMainWindow {
    Q_OBJECT
public:
    // `rules` brings the regulations' default limits and the looser-limit check; `texts` the
    // language table's prompt and status texts (it must outlive the window).
    DatabaseWindow(gui::DeviceThread &device, const link::LanguageTable &texts, RegulationRules rules = {},
                   QWidget *parent = nullptr);

    void SetBusy(bool busy);
    // Asked on the window's thread whenever records are about to be deleted: what keeps the test
    // records among them first (the archive), or an empty keeper when nothing keeps them.
    void SetRecordKeeping(std::function<RecordKeeper()> keeper);
    // Captions in the language the texts are in now.
    void ApplyTexts();
    EditorPanel &editor() { return *m_editor; }
    const SpecStore &store() const { return m_store; }

signals:
    // A test record of the store was clicked: the record window shows it.
    void testRecordChosen(int number);
    // The list has been filled again (for whoever waits on it).
    void listed();

private:
    QPushButton *Button(const char *name);
    QString Text(DbCaption caption) const;
    // Runs `job` on the device thread once the port is open; its dialogs carry `title`.
    void Post(const QString &title, std::function<void(link::Link &, link::Prompter &)> job);
    void OnWindow(std::function<void()> call);
    void ShowStore(const SpecStore &store);

    void ReadStore();           // readDB
    void StoreInTester();       // MP
    void DeleteAll();           // ClearDB
    void SaveAndStore();        // speichern
    void EntryClicked(int row); // IdNr
    void DeleteEntry(int row);  // IdNr, right mouse button
    // The job that reads the store again and shows it, for the end of a change.
    static void ReadAgain(DatabaseWindow *window, link::Link &link, link::Prompter &prompter);
    void Status(const QString &text); // Msg1: shown while the store is changed, empty hides it
    Removal RemovalNow() const;       // what a deletion takes, from the store as read

    gui::DeviceThread &m_device;
    const link::LanguageTable &m_texts;
    SpecStore m_store;
    std::function<RecordKeeper()> m_keeper;
    EditorPanel *m_editor;
    SetFilePanel *m_setFiles;
    QListWidget *m_list; // IdNr
    QLabel *m_status;    // Msg1
    QList<QPushButton *> m_deviceButtons;
    QList<std::pair<QPushButton *, DbCaption>> m_captions;
};

} // namespace kalvo::specdb::ui
