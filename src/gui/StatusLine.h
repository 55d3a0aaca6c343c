// The status bar of the main window: port, connection, the operation that runs and its progress.
#pragma once

#include <QStatusBar>

class QLabel;
class QProgressBar;

namespace kalvo::gui {

class DeviceThread;
class WaitCountdown;

class StatusLine : public QStatusBar {
    Q_OBJECT
public:
    enum class Connection { NotConnected, Connecting, Connected, LineLost };

    // Follows the operations of `device`: their titles, progress, and how they ended.
    StatusLine(DeviceThread &device, QWidget *parent = nullptr);

    void SetLanguage(const QString &language);
    // For a window of its own (the record window): the operations only, without port and connection.
    void ShowOperationsOnly();
    void ShowPort(const QString &port);
    // `name` and `firmware` are shown with Connected.
    void ShowConnection(Connection state, const QString &name = {}, const QString &firmware = {});
    // What an operation achieved ("Grenzwert gespeichert"); stays until the next operation.
    void ShowDone(const QString &text);

    QString connectionText() const;
    QString operationText() const;
    QProgressBar *progressBar() const { return m_progress; }

private:
    void Started(const QString &title);
    void Finished(const QString &title);
    void Failed(const QString &title);
    void ShowConnectionText();

    QString m_language = QStringLiteral("deutsch");
    QString m_port;
    Connection m_state = Connection::NotConnected;
    QString m_name, m_firmware;
    bool m_failed = false;
    bool m_doneShown = false;
    bool m_running = false;
    QLabel *m_portLabel, *m_connectionLabel, *m_operationLabel;
    QProgressBar *m_progress;
    WaitCountdown *m_countdown;
};

} // namespace kalvo::gui
