// The service form's configuration part: the variable list, the configuration dump and store,
// and the calibration backup and restore with their file frame.
#include "ServiceConfigPanel.h"

#include "config/Calibration.h"
#include "config/VariableFile.h"
#include "config/Variables.h"
#include "gui/DeviceThread.h"
#include "gui/FolderLists.h"
#include "gui/GuiPrompter.h"
#include "gui/Phrases.h"
#include "link/Errors.h"
#include "link/LanguageTable.h"
#include "link/Link.h"
#include "link/TextRules.h"
#include "link/UserFiles.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace kalvo::config::ui {

ServiceConfigPanel::ServiceConfigPanel(gui::DeviceThread &device, TextSink show,
                                       std::function<void(const QString &)> command, QWidget *parent)
    : QWidget(parent), m_device(device), m_show(std::move(show)), m_command(std::move(command)),
      m_dir(QDir::currentPath())
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
    m_backupName = new QComboBox(m_calibrationFrame);
    m_backupName->setObjectName(QStringLiteral("backupNames"));
    m_backupName->setEditable(true);
    m_backupName->setInsertPolicy(QComboBox::NoInsert); // a typed name is used, not remembered
    m_text1 = new QLineEdit(m_backupName);
    m_text1->setObjectName(QStringLiteral("Text1"));
    m_backupName->setLineEdit(m_text1);
    m_speichern = new QPushButton(QStringLiteral("speichern"), m_calibrationFrame);
    m_speichern->setObjectName(QStringLiteral("speichern"));
    m_kalibfiles = new QListWidget(m_calibrationFrame);
    m_kalibfiles->setObjectName(QStringLiteral("kalibfiles"));
    m_folders = new gui::FolderLists(m_calibrationFrame);
    m_folders->SetMask(QStringLiteral("*.cal"));
    m_folders->SetDirectory(m_dir);
    auto *nameRow = new QHBoxLayout;
    nameRow->addWidget(m_backupName, 1);
    nameRow->addWidget(m_speichern);
    frame->addWidget(m_label2);
    frame->addLayout(nameRow);
    frame->addWidget(m_folders);
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
    connect(m_folders, &gui::FolderLists::directoryChanged, this, [this](const QString &dir) {
        m_dir = dir;
        ListBackups();
    });
    // A backup listed in File1 is a name to save under again (the save asks before replacing it).
    connect(m_folders->fileList(), &QListWidget::currentTextChanged, this, [this](const QString &name) {
        if (!name.isEmpty())
            m_text1->setText(name);
    });
}

void ServiceConfigPanel::setDirectory(const QString &dir)
{
    m_folders->SetDirectory(dir);
}

void ServiceConfigPanel::ApplyTexts(const link::LanguageTable &texts)
{
    m_language = texts.language();
    m_folders->SetLanguage(m_language);
    m_variablesLabel->setText(texts.text(link::TxtServiceVariables));
    const link::TextId ids[] = {link::TxtServiceLoadVariables,      link::TxtServiceDumpConfiguration,
                                link::TxtServiceStoreConfiguration, link::TxtServiceResetD3,
                                link::TxtServiceBackupCalibration,  link::TxtMenuRestoreCalibration};
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
        gui::GuiPrompter(window(), Title(0)).message(e.message(), link::Prompter::Icon::Warning);
    }
}

QString ServiceConfigPanel::Title(int index) const
{
    return m_actions.value(index) ? m_actions[index]->text().remove(QLatin1Char('&')) : QString();
}

void ServiceConfigPanel::ShowLine(const QString &line)
{
    QMetaObject::invokeMethod(this, [this, line] { m_show(line + QLatin1Char('\n'), false); });
}

void ServiceConfigPanel::ReadChosenVariable()
{
    const QListWidgetItem *item = m_readvar->currentItem();
    if (!item)
        return;
    const QString entry = item->text();
    m_command(QString::fromLatin1(ReadCommandFor(entry)));
    m_device.Post(window(), entry, [this, entry](link::Link &link, link::Prompter &) {
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
        gui::GuiPrompter(window(), Title(1)).message(e.message(), link::Prompter::Icon::Warning);
        return;
    }
    m_show(QString(), true);
    // The lines show as they are read.
    m_device.Post(window(), Title(1), [this, block](link::Link &link, link::Prompter &prompter) {
        if (!link.PortClosed())
            config::DumpConfiguration(link, block, &prompter,
                                      [this](const QString &line) { ShowLine(line); });
    });
}

void ServiceConfigPanel::StoreConfiguration()
{
    m_device.Post(window(), Title(2),
                  [this, stored = gui::PhraseText(gui::Phrase::ConfigurationStored, m_language)](
                      link::Link &link, link::Prompter &prompter) {
                      if (!link.PortClosed() && config::StoreConfiguration(link, prompter))
                          m_device.Tell(stored);
                  });
}

void ServiceConfigPanel::ResetD3()
{
    m_device.Post(window(), Title(3), [this](link::Link &link, link::Prompter &) {
        if (!link.PortClosed() && config::ResetD3(link))
            QMetaObject::invokeMethod(this, [this] { emit d3Reset(); });
    });
}

void ServiceConfigPanel::BeginBackup()
{
    m_label2->setText(QStringLiteral("speichern unter"));
    m_backupName->clear();
    m_backupName->addItems(m_backupNames);
    m_backupName->setCurrentIndex(0);
    m_backupName->show();
    m_speichern->show();
    m_folders->Refresh();
    m_folders->fileList()->show();
    m_kalibfiles->hide();
    m_calibrationFrame->show();
}

void ServiceConfigPanel::BeginRestore()
{
    m_label2->setText(QStringLiteral("rückspeichern aus"));
    m_backupName->hide();
    m_speichern->hide();
    m_folders->Refresh();
    m_folders->fileList()->hide();
    ListBackups();
    m_kalibfiles->show();
    m_calibrationFrame->show();
}

void ServiceConfigPanel::ListBackups()
{
    m_kalibfiles->clear();
    m_kalibfiles->addItems(QDir(m_dir).entryList({m_folders->mask()}, QDir::Files, QDir::Name));
}

void ServiceConfigPanel::SaveBackup()
{
    const QString name = m_text1->text().trimmed();
    if (name.isEmpty())
        return;
    // A read-only folder (the current one of an installed program) sends it to the user's data folder.
    const link::FilePlace place = link::PlaceFile(m_dir, name);
    const QString path = place.path;
    // A backup is the one copy of the tester's calibration: another one is never replaced unasked.
    if (QFileInfo::exists(path) &&
        !gui::GuiPrompter(window(), Title(4))
             .confirmLoss(
                 gui::PhraseText(gui::Phrase::ReplaceFile, m_language).arg(QDir::toNativeSeparators(path))))
        return;
    m_show(QString(), true);
    m_device.Post(window(), Title(4),
                  [this, path,
                   done = gui::PhraseText(gui::Phrase::CalibrationBackedUp, m_language) +
                          (place.moved() ? QStringLiteral("\n") + link::MovedNote(place) : QString())](
                      link::Link &link, link::Prompter &prompter) {
                      if (link.PortClosed())
                          return;
                      const QList<QByteArray> lines = BackupCalibration(
                          link, prompter, path, [this](const QString &line) { ShowLine(line); });
                      // The new backup shows in File1.
                      QMetaObject::invokeMethod(this, [this] { m_folders->Refresh(); });
                      if (!lines.isEmpty())
                          m_device.Tell(done);
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
    m_device.Post(window(), Title(5),
                  [this, path, language = m_language,
                   done = gui::PhraseText(gui::Phrase::CalibrationRestored, m_language)](
                      link::Link &link, link::Prompter &prompter) {
                      if (link.PortClosed())
                          return;
                      const RestoreResult result = RestoreCalibration(
                          link, prompter, path, RestoreSource::ServiceForm,
                          [this](const QString &line) { ShowLine(line); }, language);
                      if (result.stored)
                          m_device.Tell(done);
                  });
}

} // namespace kalvo::config::ui
