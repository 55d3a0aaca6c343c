// The record window FRMProt ("Protokoll utility"): the record list, the report box, reading,
// printing, PDF, files and the CSV export.
#pragma once

#include <QMainWindow>

class QAction;
class QActionGroup;
class QDockWidget;
class QHBoxLayout;
class QListWidget;
class QMenu;
class QPlainTextEdit;

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::gui {
class DeviceThread;
class GuiPrompter;
class StatusLine;
} // namespace kalvo::gui

namespace kalvo::records::ui {

class RecordWindow : public QMainWindow {
    Q_OBJECT
public:
    // `programDir` holds "log.tmp" of the last accessory read; "proto.txt" goes to the current folder;
    // either goes to the user's data folder when its folder is read-only.
    RecordWindow(gui::DeviceThread &device, const QString &programDir, QWidget *parent = nullptr);

    void SetBusy(bool busy);
    // The report box, where print templates are edited too.
    QPlainTextEdit *reportBox() const { return m_report; }
    // The template entries another part of the program brings: their menu, the label with the
    // template's file and the template number entry, placed above the report box.
    void AddTemplateTools(QMenu *menu, QWidget *fileLabel, QWidget *numberEntry);
    // The limit entries and frame another part of the program brings: the menu joins the bar, the
    // frame waits in a dock beside the report until ShowLimitFrame (a limit has been read).
    void AddLimitTools(QMenu *menu, QWidget *frame);
    void ShowLimitFrame();
    // A template, not a record, stands in the report box: nothing to print or store as a record.
    void ShowingTemplate();
    // Record `number` of the tester's store, printed by the tester with the chosen template (a test
    // record clicked in the database window).
    void ShowStoredRecord(int number);
    // The language of the status texts ("deutsch", ...); the window's captions are its own.
    void SetLanguage(const QString &language);
    QString reportText() const;
    int templateNumber() const { return m_template; }

signals:
    // A list or report has been filled (for whoever waits on it).
    void shown();
    // Records were read from the tester, the accessory or a record file (`file` when known), and
    // the read ended well: whoever keeps records (the archive) takes them from here.
    void recordsRead(const QList<QByteArray> &records, const QString &file, bool fromAccessory);

private:
    // Where the entries of the record list come from: that decides what selecting one does.
    enum class Source { None, TesterStore, Records };

    void BuildMenus();
    // Runs `job` for the menu entry `entry` (its caption titles the dialogs) once the port is open.
    void Post(QAction *entry, std::function<void(link::Link &, link::Prompter &)> job);
    // The dialogs of `entry`'s work on the window's thread.
    gui::GuiPrompter Asker(QAction *entry);
    // A record arrived while a read runs: listed at once.
    void AddRecord(const QByteArray &record);
    void ClearList(Source source);
    // From the device thread: a read that did not end well lists nothing of what it showed.
    void Unlist();
    // The status bar says where a file went.
    void TellSaved(const QString &path);
    void OnWindow(std::function<void()> call);
    void ShowReport(const QString &text);
    // A print text the tester rendered; warns once shown when the font cannot draw its frames.
    void ShowPrintText(const QString &text);
    void ShowRecords(const QList<QByteArray> &records, Source source);
    void EnableOutput(bool on);
    QAction *Entry(const char *name) const;

    void ShowCurrentRecord();        // aktuellProt
    void StoreCurrentRecordToFile(); // storesingle
    void ShowStoreListing();         // dbProt
    void StoreAllRecordsToFile();    // storeall
    void ReadAccessory();            // kymAscii
    void StoreAccessory();           // protStore
    void ExportCsv();                // fexcel
    void LoadRecordsFromFile();      // ausDatei
    void MakeReport();               // PrintProt
    void PrintReport();              // drucken
    void SaveReportAsPdf();
    void RecordSelected(int row);

    gui::DeviceThread &m_device;
    QString m_programDir;
    QString m_language = QStringLiteral("deutsch");
    Source m_source = Source::None;
    QList<QByteArray> m_records; // the records behind the list when it came from a file or the accessory
    QList<int> m_numbers;        // the store's record numbers when it came from the tester
    int m_template = 1;

    QHBoxLayout *m_templateBar;
    QDockWidget *m_limitDock = nullptr;
    QListWidget *m_list;       // lb1
    QPlainTextEdit *m_report;  // Protokol
    gui::StatusLine *m_status; // the window's own: its operations, their progress and results
    QAction *m_drucken, *m_pdf, *m_protStore, *m_fexcel, *m_printProt;
    QList<QAction *> m_deviceActions;
};

} // namespace kalvo::records::ui
