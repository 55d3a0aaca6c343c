// The configuration frame: the tester's configuration bytes and registers as bits, and the store button.
#pragma once

#include "link/Registers.h"

#include <QGroupBox>

class QPushButton;
class QTableWidget;

namespace kalvo::link {
class LanguageTable;
}

namespace kalvo::shell::ui {

class ConfigFrame : public QGroupBox {
    Q_OBJECT
public:
    explicit ConfigFrame(QWidget *parent = nullptr);

    void ShowRegisters(const link::RegisterTable &table);
    void ApplyTexts(const link::LanguageTable &texts);
    QPushButton *storeButton() const { return m_store; }
    // The button that leaves the frame; whoever shows the frame decides what leaving means.
    QPushButton *closeButton() const { return m_close; }
    QTableWidget *table() const { return m_table; }

signals:
    void storeRequested();

private:
    QTableWidget *m_table;
    QPushButton *m_store;
    QPushButton *m_close;
};

} // namespace kalvo::shell::ui
