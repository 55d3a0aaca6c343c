// The editor of the database window: regulation, protection class, applied parts, single faults,
// switch position and the 22 limit boxes, all kept in a SpecEditor.
#pragma once

#include "specdb/SpecEditor.h"

#include <QWidget>
#include <array>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QFormLayout;
class QLineEdit;
class QPushButton;

namespace kalvo::specdb::ui {

class EditorPanel : public QWidget {
    Q_OBJECT
public:
    EditorPanel(RegulationRules rules, QWidget *parent = nullptr);

    SpecEditor &editor() { return m_editor; }
    const RegulationRules &rules() const { return m_rules; }
    // The single-fault frame is open; TakeSingleFaults takes its boxes and closes it, as SFCOK.
    bool singleFaultsOpen() const;
    void TakeSingleFaults();
    // Captions, list entries and the limit boxes' tool tips in `language`.
    void ApplyTexts(const QString &language);
    // A record read back from the store (its fields and placed limits); false after saying why
    // when it cannot be read. Limits that could not be placed are said to be unread, the codes shown.
    bool Decode(const QList<QByteArray> &fields, const std::optional<BoxTexts> &limits, int number);
    // Shows what the editor holds.
    void Refresh();

private:
    void BuildLists();
    void BuildSingleFaults();
    void BuildLimits();
    // A limit box left after editing: its text must fit, or the focus goes back to it.
    void LimitEdited(int box);
    // Marks the boxes whose limit is looser than the regulation's (property "looser", a colour and
    // a tool tip), and unmarks the others.
    void MarkLooser();
    // A limit box's tool tip: what it measures, and whether it is looser than the regulation's.
    void ShowLimitTip(int box);

    SpecEditor m_editor;
    RegulationRules m_rules;
    QComboBox *m_regulation, *m_class, *m_type, *m_parts, *m_switch;
    QLabel *m_regulationName; // the regulation a read-back record names, "MENUE" included
    QCheckBox *m_insulated, *m_builtBefore1982;
    QGroupBox *m_singleFaults; // SFC
    QPushButton *m_openSingleFaults;
    std::array<QCheckBox *, 4> m_faultBoxes{};
    std::array<QLineEdit *, kLimitBoxes + 1> m_limits{}; // GWert 1..22
    std::array<QLabel *, kLimitBoxes + 1> m_limitLabels{};
    QGroupBox *m_limitFrame;
    QFormLayout *m_form;
    QString m_language = QStringLiteral("deutsch");
    bool m_checking = false;
};

} // namespace kalvo::specdb::ui
