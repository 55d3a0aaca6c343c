// The seconds the program still waits for the tester, and the button that stops waiting.
#pragma once

#include <QDeadlineTimer>
#include <QTimer>
#include <QWidget>

class QLabel;
class QPushButton;

namespace kalvo::gui {

class DeviceThread;

// Shown while the device thread waits longer than a moment for an answer; hidden otherwise.
// "Abbrechen" (Escape) ends the wait at once as a time-out would; during a transfer only the
// seconds are shown, since a transfer cannot be cut off.
class WaitCountdown : public QWidget {
    Q_OBJECT
public:
    explicit WaitCountdown(DeviceThread &device, QWidget *parent = nullptr);

    void SetLanguage(const QString &language);
    QString text() const;
    QPushButton *cancelButton() const { return m_cancel; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void Begin(qint64 msLeft, bool cancellable);
    void End();
    void ShowSeconds();

    DeviceThread &m_device;
    QString m_language = QStringLiteral("deutsch");
    QDeadlineTimer m_deadline;
    QTimer m_tick;
    QLabel *m_label;
    QPushButton *m_cancel;
};

} // namespace kalvo::gui
