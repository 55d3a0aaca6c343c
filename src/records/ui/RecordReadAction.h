// The service form's entry that reads every record of the store into its terminal panel.
#pragma once

#include <QAction>
#include <functional>

namespace kalvo::gui {
class DeviceThread;
}

namespace kalvo::records::ui {

class RecordReadAction : public QAction {
    Q_OBJECT
public:
    // `show` gets each record's text as it arrives; `owner` is the window the dialogs belong to.
    RecordReadAction(gui::DeviceThread &device, QWidget *owner, std::function<void(const QString &)> show);

signals:
    // Every record was read (and written to its file): for whoever keeps records.
    void recordsRead(const QList<QByteArray> &records, const QString &file, bool fromAccessory);

private:
    void ReadAll();

    gui::DeviceThread &m_device;
    QWidget *m_owner;
    std::function<void(const QString &)> m_show;
};

} // namespace kalvo::records::ui
