// The limit frame GWFrame: one of the tester's three limits on a scroll bar, written and stored.
#pragma once

#include "config/Limits.h"

#include <QGroupBox>

class QLabel;
class QPushButton;
class QScrollBar;

namespace kalvo::link {
class LanguageTable;
}
namespace kalvo::gui {
class DeviceThread;
}

namespace kalvo::config::ui {

class LimitFrame : public QGroupBox {
    Q_OBJECT
public:
    explicit LimitFrame(gui::DeviceThread &device, QWidget *parent = nullptr);

    // A menu entry: reads the limit from the tester and shows the frame. A value outside the
    // scroll range is shown at the nearest end, and the user is told what the tester holds.
    void Edit(LimitKind kind, const QString &title);
    void ApplyTexts(const link::LanguageTable &texts);
    void SetBusy(bool busy);
    int value() const;

signals:
    void loaded();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void ShowValue(int value);
    // What the tester reported outside the range, the range and the value shown instead, filled
    // into `text` (%1 to %4), each with its unit.
    QString OutOfRangeText(const QString &text) const;
    void Write(); // GWok
    void Store(); // GWspeichern

    gui::DeviceThread &m_device;
    QString m_language;
    std::optional<LimitKind> m_kind;
    std::optional<int> m_readOutside; // the tester's value when it lay outside the scroll range
    QString m_outOfRangeText, m_writeClampedText;
    QScrollBar *m_scroll; // VScroll1
    QLabel *m_label;      // Label10
    QPushButton *m_ok, *m_store;
};

} // namespace kalvo::config::ui
