// The window "Archiv": a device's own data and its history of who did what.
#include "ArchiveWindow.h"

#include "DeviceCaptions.h"
#include "DeviceDataDialog.h"

#include "archive/ArchiveSession.h"
#include "archive/Customers.h"
#include "archive/DeviceData.h"

#include <QComboBox>

namespace kalvo::archive::ui {

void ArchiveWindow::EditDeviceData()
{
    const DeviceKey device = CurrentDevice();
    if (device.deviceId.isEmpty()) {
        ShowStatus(DeviceCaptionText(DeviceCaption::ChooseRecord, m_language));
        return;
    }
    m_session->Ask(
        this,
        [device](Archive &archive) {
            DeviceSheet sheet{LoadDeviceData(archive, device), DeviceHistory(archive, device), {}};
            for (const Customer &customer : ListCustomers(archive))
                sheet.customers.append(customer.name);
            return sheet;
        },
        [this](const DeviceSheet &sheet) {
            auto *dialog = new DeviceDataDialog(sheet, m_language, this);
            OpenDialog(dialog, [this, dialog] { ApplyDeviceData(dialog->Changes()); });
            emit deviceDataShown(dialog);
        },
        [this](const QString &message) { Fail(message); });
}

void ArchiveWindow::ApplyDeviceData(const DeviceDataChanges &changes)
{
    if (changes.IsEmpty())
        return;
    m_session->Ask(
        this,
        [changes](Archive &archive) {
            // The move first: refused (that customer has a device of this ID-Nr), nothing is changed.
            const DeviceKey device = changes.moveTo.isEmpty()
                                         ? changes.device
                                         : MoveDevice(archive, changes.device, changes.moveTo);
            ChangeDeviceData(archive, device, changes.edit);
        },
        [this, moveTo = changes.moveTo] {
            // A device that moved is followed to its new customer when the list showed its old one.
            if (!moveTo.isEmpty() && m_archiveCustomer->currentIndex() > 0)
                ChooseCustomer(CustomerName(moveTo));
            Search();
        },
        [this](const QString &message) { Fail(message); });
}

} // namespace kalvo::archive::ui
