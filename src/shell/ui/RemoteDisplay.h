// The panel that mirrors the tester's display while the tester sends it.
#pragma once

#include <QGroupBox>

class QPlainTextEdit;

namespace kalvo::shell::ui {

class RemoteDisplay : public QGroupBox {
    Q_OBJECT
public:
    explicit RemoteDisplay(QWidget *parent = nullptr);
    // Filters a burst of unprompted bytes and shows the panel.
    void Show(const QByteArray &bytes);
    QString text() const;

private:
    QPlainTextEdit *m_text;
};

} // namespace kalvo::shell::ui
