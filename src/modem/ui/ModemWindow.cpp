// The "Modem Konfiguration" window: the tester's two telephone numbers and its modem's initialisation string.
#include "ModemWindow.h"

#include "gui/DeviceThread.h"
#include "gui/Mnemonics.h"
#include "gui/Phrases.h"
#include "link/LanguageTable.h"
#include "link/Link.h"
#include "modem/ModemSettings.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kalvo::modem::ui {

ModemWindow::ModemWindow(gui::DeviceThread &device, const link::LanguageTable &texts, QWidget *parent)
    : QDialog(parent), m_device(device)
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

void ModemWindow::ApplyTexts(const link::LanguageTable &texts)
{
    m_tel1Label->setText(texts.text(link::TxtLabelTelephone1));
    m_tel2Label->setText(texts.text(link::TxtLabelTelephone2));
    m_initLabel->setText(texts.text(link::TxtLabelModemInit));
    m_ok->setText(texts.text(link::TxtButtonOk));
    m_cancel->setText(texts.text(link::TxtButtonCancel));
    m_storedText = texts.text(link::TxtModemStored);
    m_language = texts.language();
}

void ModemWindow::SetBusy(bool busy)
{
    m_ok->setEnabled(!busy);
    m_store->setEnabled(!busy);
}

void ModemWindow::SendSettings()
{
    const ModemSettings settings{m_tel1->text(), m_tel2->text(), m_init->text()};
    m_device.Post(this, m_ok->text(), [this, settings](link::Link &link, link::Prompter &) {
        if (!link.PortClosed())
            m_refused = WriteModemSettings(link, settings);
    });
}

void ModemWindow::Store()
{
    m_device.Post(this, gui::WithoutMnemonic(m_store->text()),
                  [this, text = m_storedText, done = gui::PhraseText(gui::Phrase::ModemStored, m_language)](
                      link::Link &link, link::Prompter &prompter) {
                      if (!link.PortClosed() && StoreModemSettings(link, prompter, text, m_refused))
                          m_device.Tell(done);
                  });
}

} // namespace kalvo::modem::ui
