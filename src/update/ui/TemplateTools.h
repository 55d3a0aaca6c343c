// The print-template entries of the record window: read a template from the tester, edit it in
// the report box, keep it in a ".pr" file and store it into one of the tester's four slots.
#pragma once

#include <QObject>

class QAction;
class QLabel;
class QLineEdit;
class QMenu;
class QPlainTextEdit;
class QWidget;

namespace kalvo::gui {
class DeviceThread;
}

namespace kalvo::update::ui {

class TemplateTools : public QObject {
    Q_OBJECT
public:
    // Works on `box`, the record window's report box; dialogs belong to `owner`.
    TemplateTools(gui::DeviceThread &device, QPlainTextEdit *box, QWidget *owner);

    QMenu *menu() const { return m_menu; }
    QLabel *fileLabel() const { return m_protLabel; } // ProtLabel
    // The template number entry VorTExt with its label, shown while a number is asked for.
    QWidget *numberEntry() const { return m_numberField; }
    const QString &currentFile() const { return m_file; }
    int slot() const { return m_slot; }
    void SetBusy(bool busy);
    // The language of the entry's label, its refusals and questions ("deutsch", ...).
    void SetLanguage(const QString &language);

signals:
    // A template stands in the report box: printing and storing records do not apply to it.
    void templateShown();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void ChooseSlot(int slot);     // vor1..vor4
    void EditTemplate();           // protchange
    void LoadFile();               // opendat
    void AskTemplateNumber();      // protvor: the number goes into VorTExt
    void ReadTemplate(int number); // protvor
    bool Save();                   // speichern
    void SaveAs();                 // speichernUnter
    void StoreInTester();          // Command2
    void ShowTemplate(const QByteArray &text, const QString &file);
    void EnableSaving(bool on);

    gui::DeviceThread &m_device;
    QPlainTextEdit *m_box;
    QWidget *m_owner;
    QString m_file; // the current template file; empty until one is loaded or read
    int m_slot = 1;
    QMenu *m_menu, *m_slots;
    QAction *m_speichern, *m_speichernUnter, *m_command2;
    QList<QAction *> m_deviceEntries;
    QString m_language = QStringLiteral("deutsch");
    QLabel *m_protLabel;
    QWidget *m_numberField;
    QLabel *m_numberLabel;
    QLineEdit *m_vorText;
};

} // namespace kalvo::update::ui
