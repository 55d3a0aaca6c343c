// The service form's configuration part: the variable list, the configuration dump and store,
// and the calibration backup and restore with their file frame.
#include "ServiceConfigPanel.h"

#include "config/Calibration.h"
#include "config/VariableFile.h"
#include "config/Variables.h"
#include "link/Errors.h"
#include "link/Link.h"
#include "link/TextRules.h"
#include "shell/LanguageTable.h"
#include "shell/ui/DeviceThread.h"

#include <QAction>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace kalvo::config::ui {

ServiceConfigPanel::ServiceConfigPanel(shell::ui::DeviceThread &device, link::Prompter &prompter,
                                       TextSink show, std::function<void(const QString &)> command,
                                       QWidget *parent)
    : QWidget(parent), m_device(device), m_prompter(prompter), m_show(std::move(show)),
      m_command(std::move(command)), m_dir(QDir::currentPath())
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_variablesLabel = new QLabel(this);
    m_readvar = new QListWidget(this);
    m_readvar->setObjectName(QStringLiteral("readvar"));
    m_readvar->setMinimumWidth(180);
    layout->addWidget(m_variablesLabel);
    layout->addWidget(m_readvar, 1);

    m_calibrationFrame = new QWidget(this);
    m_calibrationFrame->setObjectName(QStringLiteral("kalibFrame"));
    auto *frame = new QVBoxLayout(m_calibrationFrame);
    frame->setContentsMargins(0, 0, 0, 0);
    m_label2 = new QLabel(m_calibrationFrame);
    m_label2->setObjectName(QStringLiteral("Label2"));
    m_text1 = new QLineEdit(m_calibrationFrame);
    m_text1->setObjectName(QStringLiteral("Text1"));
    m_speichern = new QPushButton(QStringLiteral("speichern"), m_calibrationFrame);
    m_speichern->setObjectName(QStringLiteral("speichern"));
    m_kalibfiles = new QListWidget(m_calibrationFrame);
    m_kalibfiles->setObjectName(QStringLiteral("kalibfiles"));
    auto *nameRow = new QHBoxLayout;
    nameRow->addWidget(m_text1, 1);
    nameRow->addWidget(m_speichern);
    frame->addWidget(m_label2);
    frame->addLayout(nameRow);
    frame->addWidget(m_kalibfiles);
    layout->addWidget(m_calibrationFrame);
    m_calibrationFrame->hide();

    const auto action = [this](const char *name, auto slot) {
        auto *a = new QAction(this);
        a->setObjectName(QString::fromLatin1(name));
        connect(a, &QAction::triggered, this, slot);
        m_actions << a;
    };
    action("varmas", &ServiceConfigPanel::LoadVariables);
    action("konfiguration", &ServiceConfigPanel::DumpConfiguration);
    action("bitstore", &ServiceConfigPanel::StoreConfiguration);
    action("resetD3", &ServiceConfigPanel::ResetD3);
    action("readcal", &ServiceConfigPanel::BeginBackup);
    action("storecal", &ServiceConfigPanel::BeginRestore);
    connect(m_readvar, &QListWidget::itemActivated, this, &ServiceConfigPanel::ReadChosenVariable);
    connect(m_speichern, &QPushButton::clicked, this, &ServiceConfigPanel::SaveBackup);
    connect(m_kalibfiles, &QListWidget::itemActivated, this, &ServiceConfigPanel::RestoreChosenFile);
}

void ServiceConfigPanel::ApplyTexts(const shell::LanguageTable &texts)
{
    m_variablesLabel->setText(texts.text(shell::TxtServiceVariables));
    const shell::TextId ids[] = {shell::TxtServiceLoadVariables,      shell::TxtServiceDumpConfiguration,
                                 shell::TxtServiceStoreConfiguration, shell::TxtServiceResetD3,
                                 shell::TxtServiceBackupCalibration,  shell::TxtMenuRestoreCalibration};
    for (size_t i = 0; i < std::size(ids); ++i)
        m_actions[static_cast<qsizetype>(i)]->setText(texts.text(ids[i]));
}

void ServiceConfigPanel::SetBusy(bool busy)
{
    for (int i = 1; i < m_actions.size(); ++i) // loading the list needs no tester
        m_actions[i]->setEnabled(!busy);
    m_readvar->setEnabled(!busy);
    m_speichern->setEnabled(!busy);
    m_kalibfiles->setEnabled(!busy);
}

void ServiceConfigPanel::LoadVariables()
{
    m_readvar->clear();
    try {
        m_readvar->addItems(VariableFile::Load(VariableFile::Locate()).entries());
    } catch (const link::KalvoError &e) {
        m_prompter.message(e.message(), link::Prompter::Icon::Warning);
    }
}

void ServiceConfigPanel::ReadChosenVariable()
{
    const QListWidgetItem *item = m_readvar->currentItem();
    if (!item)
        return;
    const QString entry = item->text();
    m_command(QString::fromLatin1(ReadCommandFor(entry)));
    m_device.Post([this, entry](link::Link &link) {
        if (link.PortClosed())
            return;
        const VariableReading reading = ReadVariable(link, entry);
        QMetaObject::invokeMethod(this, [this, entry, reading] {
            m_show(QStringLiteral("%1  %2  %3  %4\n")
                       .arg(entry, QString::fromLatin1(reading.value))
                       .arg(reading.number)
                       .arg(reading.binary),
                   false);
        });
    });
}

void ServiceConfigPanel::DumpConfiguration()
{
    QStringList block;
    try {
        block = VariableFile::Load(VariableFile::Locate()).blockEntries();
    } catch (const link::KalvoError &e) {
        m_prompter.message(e.message(), link::Prompter::Icon::Warning);
        return;
    }
    m_show(QString(), true);
    m_device.Post([this, block](link::Link &link) {
        if (link.PortClosed())
            return;
        const ConfigurationDump dump = config::DumpConfiguration(link, block);
        QMetaObject::invokeMethod(this, [this, text = dump.Text()] {
            m_show(QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")), true);
        });
    });
}

void ServiceConfigPanel::StoreConfiguration()
{
    m_device.Post([this](link::Link &link) {
        if (!link.PortClosed())
            config::StoreConfiguration(link, m_prompter);
    });
}

void ServiceConfigPanel::ResetD3()
{
    m_device.Post([this](link::Link &link) {
        if (!link.PortClosed() && config::ResetD3(link))
            QMetaObject::invokeMethod(this, [this] { emit d3Reset(); });
    });
}

void ServiceConfigPanel::BeginBackup()
{
    m_label2->setText(QStringLiteral("speichern unter"));
    m_text1->setText(m_defaultBackup);
    m_text1->show();
    m_speichern->show();
    m_kalibfiles->hide();
    m_calibrationFrame->show();
}

void ServiceConfigPanel::BeginRestore()
{
    m_label2->setText(QStringLiteral("rückspeichern aus"));
    m_text1->hide();
    m_speichern->hide();
    m_kalibfiles->clear();
    m_kalibfiles->addItems(QDir(m_dir).entryList({QStringLiteral("*.cal")}, QDir::Files, QDir::Name));
    m_kalibfiles->show();
    m_calibrationFrame->show();
}

void ServiceConfigPanel::SaveBackup()
{
    const QString name = m_text1->text().trimmed();
    if (name.isEmpty())
        return;
    const QString path = QDir(m_dir).filePath(name);
    m_show(QString(), true);
    m_device.Post([this, path](link::Link &link) {
        if (link.PortClosed())
            return;
        BackupCalibration(link, m_prompter, path, [this](const QString &line) {
            QMetaObject::invokeMethod(this, [this, line] { m_show(line + QLatin1Char('\n'), false); });
        });
    });
}

void ServiceConfigPanel::RestoreChosenFile()
{
    const QListWidgetItem *item = m_kalibfiles->currentItem();
    if (!item)
        return;
    m_calibrationFrame->hide();
    const QString path = QDir(m_dir).filePath(item->text());
    m_show(QString(), true);
    m_device.Post([this, path](link::Link &link) {
        if (link.PortClosed())
            return;
        RestoreCalibration(link, m_prompter, path, RestoreSource::ServiceForm, [this](const QString &line) {
            QMetaObject::invokeMethod(this, [this, line] { m_show(line + QLatin1Char('\n'), false); });
        });
    });
}

} // namespace kalvo::config::ui
