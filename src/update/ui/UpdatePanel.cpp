// The update run on the main window: the update menu, the file choice and the update frame, and
// the runs they start on the device thread.
#include "UpdatePanel.h"

#include "FileChoiceFrame.h"
#include "UpdateCaptions.h"
#include "UpdateFrame.h"
#include "gui/DeviceThread.h"
#include "link/Link.h"
#include "link/VersionDate.h"
#include "update/UpdateRun.h"

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QMenu>
#include <QPointer>
#include <QPushButton>

namespace kalvo::update::ui {

namespace {
// The language entries of the package menu, each in its own language, by package code.
const std::pair<const char *, const char16_t *> kPackageLanguages[] = {
    {"ge", u"Deutsch"},    {"gb", u"English"}, {"fr", u"Français"}, {"it", u"Italiano"},
    {"nl", u"Nederlands"}, {"es", u"Español"}, {"ts", u"Čeština"},  {"pl", u"Polski"}};
} // namespace

UpdatePanel::UpdatePanel(gui::DeviceThread &device, QWidget *owner, const QString &programDir)
    : QObject(owner), m_device(device), m_owner(owner), m_updateFrame(new UpdateFrame),
      m_fileChoice(new FileChoiceFrame)
{
    BuildMenu();
    // The firmware and picture files are the same in every language; the sequence and help files
    // are known once a language entry has named them.
    m_languageFiles = link::PackageFilesFor(QString());
    m_languageFiles.sequences.clear();
    m_languageFiles.help.clear();
    m_fileChoice->SetDirectory(programDir);
    connect(m_fileChoice, &FileChoiceFrame::fileChosen, this, &UpdatePanel::UpdateChosenFile);
    connect(m_updateFrame->startButton(), &QPushButton::clicked, this, &UpdatePanel::UpdateByChosenName);
    connect(m_updateFrame->cancelButton(), &QPushButton::clicked, this, &UpdatePanel::leave);
    connect(&m_device, &gui::DeviceThread::progressed, m_updateFrame, &UpdateFrame::SetProgress);
}

void UpdatePanel::BuildMenu()
{
    m_menu = new QMenu(m_owner);
    m_menu->setObjectName(QStringLiteral("updateMenu"));
    const auto entry = [this](const char *name, ContentKind kind) {
        QAction *a = m_menu->addAction(QString());
        a->setObjectName(QString::fromLatin1(name));
        connect(a, &QAction::triggered, this, [this, a, kind] { OpenChoice(kind, a); });
        return a;
    };
    m_ablauf = entry("ablauf", ContentKind::Sequences);
    m_bilder = entry("bilder", ContentKind::Pictures);
    m_hilfe = entry("hilfe", ContentKind::Help);
    m_syst = entry("syst", ContentKind::System);
    m_menu->addSeparator();
    m_packageMenu = m_menu->addMenu(QString());
    m_packageMenu->setObjectName(QStringLiteral("sprachpaket"));
    for (const auto &[code, caption] : kPackageLanguages) {
        QAction *a = m_packageMenu->addAction(QString::fromUtf16(caption));
        a->setObjectName(QStringLiteral("paket_") + QString::fromLatin1(code));
        connect(a, &QAction::triggered, this,
                [this, code = QString::fromLatin1(code)] { UpdatePackageOf(code); });
        m_deviceEntries << a;
    }
    m_menu->addSeparator();
    m_upoc = m_menu->addAction(QStringLiteral("update ohne Versionskontrolle"));
    m_upoc->setObjectName(QStringLiteral("upoc"));
    m_upoc->setCheckable(true);
    connect(m_upoc, &QAction::toggled, this, [this](bool on) { m_permission.SetUpoc(on); });
    m_manu = m_menu->addAction(QString());
    m_manu->setObjectName(QStringLiteral("manu"));
    m_manu->setVisible(false);
    connect(m_manu, &QAction::triggered, this, &UpdatePanel::ShowManualUpdate);
    m_deviceEntries << m_ablauf << m_bilder << m_hilfe << m_syst << m_manu;
}

void UpdatePanel::ApplyTexts(const link::LanguageTable &texts)
{
    m_texts = texts;
    const QString &language = texts.language();
    m_menu->setTitle(UpdateCaptionText(UpdateCaption::Menu, language));
    m_ablauf->setText(UpdateCaptionText(UpdateCaption::Sequences, language));
    m_bilder->setText(UpdateCaptionText(UpdateCaption::Pictures, language));
    m_hilfe->setText(UpdateCaptionText(UpdateCaption::Help, language));
    m_syst->setText(UpdateCaptionText(UpdateCaption::System, language));
    m_packageMenu->setTitle(UpdateCaptionText(UpdateCaption::Package, language));
    m_manu->setText(UpdateCaptionText(UpdateCaption::Manual, language));
    m_fileChoice->SetLanguage(language);
    m_updateFrame->setTitle(UpdateCaptionText(UpdateCaption::Menu, language));
    m_updateFrame->SetCaptions(texts.text(link::TxtButtonOk), texts.text(link::TxtButtonCancel));
    // A language switch lists the update folder again.
    m_fileChoice->Refresh();
}

void UpdatePanel::SetBusy(bool busy)
{
    for (QAction *a : std::as_const(m_deviceEntries))
        a->setEnabled(!busy);
    m_fileChoice->setEnabled(!busy);
    m_updateFrame->SetBusy(busy);
    if (!busy)
        m_updateFrame->startButton()->setEnabled(!m_selectedFile.isEmpty());
}

void UpdatePanel::SetUpoc(bool on)
{
    m_upoc->setChecked(on);
}

void UpdatePanel::SetDevelopment(bool on)
{
    m_manu->setVisible(on);
}

void UpdatePanel::ShowManualUpdate()
{
    // The frame names what okupdate would send: the file chosen last, else only the folder, and
    // then okupdate stays disabled.
    const QString &dir = m_fileChoice->directory();
    m_updateFrame->ShowFile(m_selectedFile.isEmpty() ? dir : QDir(dir).filePath(m_selectedFile));
    m_updateFrame->SetProgress(0);
    m_updateFrame->startButton()->setEnabled(!m_device.busy() && !m_selectedFile.isEmpty());
    emit showFrame(m_updateFrame);
}

void UpdatePanel::OpenChoice(ContentKind kind, QAction *entry)
{
    m_kind = kind;
    m_fileChoice->Choose(InfoFor(kind).mask, entry->text().remove(QLatin1Char('&')));
    m_fileChoice->setTitle(entry->text().remove(QLatin1Char('&')));
    emit showFrame(m_fileChoice);
}

void UpdatePanel::UpdateChosenFile(const QString &name)
{
    // The list's mask decides what the file is, not its name.
    m_selectedFile = name;
    const QString path = QDir(m_fileChoice->directory()).filePath(name);
    const ContentKind kind = m_kind;
    Start(name, path,
          [kind, path, context = Context()](link::Link &link, link::Prompter &prompter,
                                            UpdatePermission &permission) {
              return UpdateSingleFile(link, prompter, permission, kind, path, context);
          });
}

void UpdatePanel::UpdateByChosenName()
{
    if (m_selectedFile.isEmpty())
        return;
    const QString path = QDir(m_fileChoice->directory()).filePath(m_selectedFile);
    Start(m_selectedFile, path,
          [name = m_selectedFile, files = m_languageFiles,
           context = Context()](link::Link &link, link::Prompter &prompter, UpdatePermission &permission) {
              return UpdateByName(link, prompter, permission, name, files, context);
          });
}

void UpdatePanel::UpdatePackageOf(const QString &code)
{
    m_languageFiles = link::PackageFilesFor(code);
    const QString caption = m_packageMenu->title() + QStringLiteral(": ") + code;
    Start(caption, m_fileChoice->directory(),
          [code, context = Context()](link::Link &link, link::Prompter &prompter,
                                      UpdatePermission &permission) {
              return UpdatePackage(link, prompter, permission, code, context);
          });
}

UpdateContext UpdatePanel::Context() const
{
    // The frame names each file of a package as it starts; the call comes from the device thread.
    const auto showFile = [frame = QPointer<UpdateFrame>(m_updateFrame)](const QString &path) {
        QMetaObject::invokeMethod(QCoreApplication::instance(), [frame, path] {
            if (frame)
                frame->ShowFile(path);
        });
    };
    return UpdateContext{m_fileChoice->directory(), m_texts, showFile};
}

void UpdatePanel::Start(const QString &title, const QString &shownFile, Run run)
{
    m_updateFrame->ShowFile(shownFile);
    m_updateFrame->SetProgress(0);
    emit showFrame(m_updateFrame);
    m_device.Post(m_owner, title,
                  [this, run = std::move(run), permission = m_permission](link::Link &link,
                                                                          link::Prompter &prompter) mutable {
                      std::optional<link::TesterIdentity> identity;
                      if (!link.PortClosed())
                          identity = run(link, prompter, permission).identity;
                      QMetaObject::invokeMethod(
                          this, [this, permission, identity] { Finished(permission, identity); });
                  });
}

void UpdatePanel::Finished(const UpdatePermission &after, const std::optional<link::TesterIdentity> &identity)
{
    // Permission is only ever given, never withdrawn: what the window gave meanwhile stays.
    m_permission.permitted = m_permission.permitted || after.permitted;
    m_updateFrame->SetProgress(0);
    if (identity)
        emit identityRead(*identity);
    emit leave();
}

} // namespace kalvo::update::ui
