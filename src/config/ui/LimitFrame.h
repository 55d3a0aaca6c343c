// The limit frame GWFrame: one of the tester's three limits on a scroll bar, written and stored.
#pragma once

#include "config/Limits.h"

#include <QGroupBox>

class QLabel;
class QPushButton;
class QScrollBar;

namespace kalvo::shell::ui {
class DeviceThread;
}

namespace kalvo::config::ui {

class LimitFrame : public QGroupBox {
    Q_OBJECT
public:
    LimitFrame(shell::ui::DeviceThread &device, link::Prompter &prompter, QWidget *parent = nullptr);

    // A menu entry: reads the limit from the tester and shows the frame.
    void Edit(LimitKind kind, const QString &title);
    void SetCaptions(const QString &ok, const QString &store);
    void SetBusy(bool busy);
    int value() const;

signals:
    void loaded();

private:
    void ShowValue(int value);
    void Write(); // GWok
    void Store(); // GWspeichern

    shell::ui::DeviceThread &m_device;
    link::Prompter &m_prompter;
    std::optional<LimitKind> m_kind;
    QScrollBar *m_scroll; // VScroll1
    QLabel *m_label;      // Label10
    QPushButton *m_ok, *m_store;
};

} // namespace kalvo::config::ui
