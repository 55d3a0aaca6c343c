// The tester-settings frame: the port chooser, its OK button and what identification found.
#include "SettingsFrame.h"

#include "gui/Phrases.h"
#include "link/LanguageTable.h"
#include "link/PortNames.h"
#include "link/TextRules.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QSerialPortInfo>

namespace kalvo::shell::ui {

namespace {
const char *const kValueNames[6] = {"SystVer", "KonfigVer", "bilderver", "hilfever", "ablaufVer", "Version"};
const link::TextId kCaptionTexts[6] = {link::TxtLabelSystem,    link::TxtLabelConfiguration,
                                       link::TxtLabelPictures,  link::TxtLabelHelp,
                                       link::TxtLabelSequences, link::TxtLabelVersion};
const gui::LanguageTexts kSerialCaption = {u"Seriennummer",    u"Serial number", u"Numéro de série",
                                           u"Numero di serie", u"Výrobní číslo", u"Serienummer",
                                           u"Número de serie"};
} // namespace

SettingsFrame::SettingsFrame(QWidget *parent) : QGroupBox(parent)
{
    setObjectName(QStringLiteral("settingsFrame"));
    auto *grid = new QGridLayout(this);
    m_portLabel = new QLabel(this);
    m_port = new QComboBox(this);
    m_port->setObjectName(QStringLiteral("COM"));
    m_port->setEditable(true); // a typed name such as /dev/ttyUSB0 or a pseudo-terminal
    m_port->setMinimumContentsLength(18);
    m_activate = new QPushButton(this);
    m_activate->setObjectName(QStringLiteral("activate"));
    m_activate->setDefault(true);
    grid->addWidget(m_portLabel, 0, 0);
    grid->addWidget(m_port, 0, 1);
    grid->addWidget(m_activate, 0, 2);
    for (int i = 0; i < 6; ++i) {
        m_captions[i] = new QLabel(this);
        m_values[i] = new QLabel(QStringLiteral("-"), this);
        m_values[i]->setObjectName(QString::fromLatin1(kValueNames[i]));
        m_values[i]->setTextInteractionFlags(Qt::TextSelectableByMouse);
        grid->addWidget(m_captions[i], i + 1, 0);
        grid->addWidget(m_values[i], i + 1, 1, 1, 2);
    }
    // Read-only, but selectable: a technician copies it into a service report.
    m_serialLabel = new QLabel(this);
    m_serial = new QLineEdit(this);
    m_serial->setObjectName(QStringLiteral("SetSRNr"));
    m_serial->setReadOnly(true);
    grid->addWidget(m_serialLabel, 7, 0);
    grid->addWidget(m_serial, 7, 1, 1, 2);
    m_identity = new QLabel(this);
    m_identity->setObjectName(QStringLiteral("identity"));
    m_identity->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_update = new QLabel(this);
    m_update->setObjectName(QStringLiteral("updateDue"));
    m_update->setStyleSheet(QStringLiteral("color: #a05000; font-weight: bold"));
    m_update->hide();
    grid->addWidget(m_identity, 8, 0, 1, 3);
    grid->addWidget(m_update, 9, 0, 1, 3);
    grid->setColumnStretch(1, 1);
    connect(m_port, &QComboBox::currentTextChanged, this, &SettingsFrame::portChanged);
    connect(m_activate, &QPushButton::clicked, this, &SettingsFrame::activateRequested);
    // Enter in the port box is OK, as in a dialog; the name typed is not added to the list.
    m_port->setInsertPolicy(QComboBox::NoInsert);
    connect(m_port->lineEdit(), &QLineEdit::returnPressed, this, &SettingsFrame::activateRequested);
}

void SettingsFrame::FillPorts(bool withSimulator)
{
    m_port->clear();
    QStringList system;
    for (const QSerialPortInfo &info : QSerialPortInfo::availablePorts())
        system << info.systemLocation();
    m_port->addItems(link::PortChoices(system));
    if (withSimulator)
        m_port->addItem(link::kSimulatorPortName);
}

void SettingsFrame::SelectPort(const QString &name)
{
    const int index = m_port->findText(name);
    if (index >= 0)
        m_port->setCurrentIndex(index);
    else
        m_port->setEditText(name);
}

QString SettingsFrame::port() const
{
    return m_port->currentText().trimmed();
}

void SettingsFrame::ShowIdentity(const link::TesterIdentity &id, const link::LanguageTable &texts)
{
    const QLocale locale; // the user's
    for (int part = 0; part < link::kVersionParts; ++part) {
        const auto p = static_cast<size_t>(part);
        const QString text = link::VersionDateText(id.versionTexts[p], id.versionDates[p], locale);
        m_values[part]->setText(text.isEmpty() ? QStringLiteral("-") : text);
    }
    // With the accessory in front, its own version stands here instead of the tester's.
    const QByteArray version = id.VersionText();
    m_values[5]->setText(version.isEmpty() ? QStringLiteral("-") : link::DecodeTesterText(version));
    m_serial->setText(link::DecodeTesterText(id.serialNumber).trimmed());
    QStringList identity;
    for (qsizetype i = 1; i < id.identityFields.size(); ++i)
        if (!id.identityFields[i].trimmed().isEmpty())
            identity << link::DecodeTesterText(id.identityFields[i]).trimmed();
    m_identity->setText(identity.join(QStringLiteral("  ·  ")));
    m_updateDue = id.updateNeeded;
    m_update->setVisible(m_updateDue);
    ApplyTexts(texts);
}

void SettingsFrame::ApplyTexts(const link::LanguageTable &texts)
{
    setTitle(texts.text(link::TxtFrameSettings));
    m_portLabel->setText(texts.text(link::TxtLabelPort));
    m_activate->setText(texts.text(link::TxtButtonOk));
    for (int i = 0; i < 6; ++i)
        m_captions[i]->setText(texts.text(kCaptionTexts[i]));
    m_update->setText(texts.text(link::TxtUpdateDue));
    m_serialLabel->setText(gui::InLanguage(kSerialCaption, texts.language()));
}

} // namespace kalvo::shell::ui
