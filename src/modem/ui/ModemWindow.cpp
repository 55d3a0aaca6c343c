// The "Modem Konfiguration" window: the tester's two telephone numbers and its modem's initialisation string.
#include "ModemWindow.h"

#include "link/Link.h"
#include "modem/ModemSettings.h"
#include "shell/LanguageTable.h"
#include "shell/ui/DeviceThread.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kalvo::modem::ui {

ModemWindow::ModemWindow(shell::ui::DeviceThread &device, link::Prompter &prompter,
                         const shell::LanguageTable &texts, QWidget *parent)
    : QDialog(parent), m_device(device), m_prompter(prompter)
{
    setObjectName(QStringLiteral("Modem"));
    setWindowTitle(QStringLiteral("Modem Konfiguration"));
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    const auto field = [this, form](const char *name, QLabel *&label) {
        auto *edit = new QLineEdit(this);
        edit->setObjectName(QString::fromLatin1(name));
        label = new QLabel(this);
        form->addRow(label, edit);
        return edit;
    };
    m_tel1 = field("TelNr1", m_tel1Label);
    m_tel2 = field("TelNr2", m_tel2Label);
    m_init = field("ModemIni", m_initLabel);
    m_init->setMinimumWidth(280);
    layout->addLayout(form);
    auto *buttons = new QHBoxLayout;
    m_ok = new QPushButton(this);
    m_ok->setObjectName(QStringLiteral("ModemOK"));
    m_store = new QPushButton(QStringLiteral("&Speichern"), this);
    m_store->setObjectName(QStringLiteral("ModemStore"));
    m_cancel = new QPushButton(this);
    m_cancel->setObjectName(QStringLiteral("ModemAbbrechen"));
    buttons->addStretch();
    buttons->addWidget(m_ok);
    buttons->addWidget(m_store);
    buttons->addWidget(m_cancel);
    layout->addLayout(buttons);
    connect(m_ok, &QPushButton::clicked, this, &ModemWindow::SendSettings);
    connect(m_store, &QPushButton::clicked, this, &ModemWindow::Store);
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::close);
    ApplyTexts(texts);
}

void ModemWindow::ApplyTexts(const shell::LanguageTable &texts)
{
    m_tel1Label->setText(texts.text(shell::TxtLabelTelephone1));
    m_tel2Label->setText(texts.text(shell::TxtLabelTelephone2));
    m_initLabel->setText(texts.text(shell::TxtLabelModemInit));
    m_ok->setText(texts.text(shell::TxtButtonOk));
    m_cancel->setText(texts.text(shell::TxtButtonCancel));
    m_storedText = texts.text(shell::TxtModemStored);
}

void ModemWindow::SetBusy(bool busy)
{
    m_ok->setEnabled(!busy);
    m_store->setEnabled(!busy);
}

void ModemWindow::SendSettings()
{
    const ModemSettings settings{m_tel1->text(), m_tel2->text(), m_init->text()};
    m_device.Post([this, settings](link::Link &link) {
        if (!link.PortClosed())
            m_refused = WriteModemSettings(link, settings);
    });
}

void ModemWindow::Store()
{
    m_device.Post([this, text = m_storedText](link::Link &link) {
        if (!link.PortClosed())
            StoreModemSettings(link, m_prompter, text, m_refused);
    });
}

} // namespace kalvo::modem::ui
