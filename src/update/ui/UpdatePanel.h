// The update run on the main window: the update menu, the file choice and the update frame, and
// the runs they start on the device thread.
#pragma once

#include "link/Identification.h"
#include "link/LanguageTable.h"
#include "link/PackageFiles.h"
#include "update/UpdateKinds.h"
#include "update/UpdatePermission.h"
#include "update/UpdateRun.h"

#include <QObject>
#include <functional>
#include <optional>

class QAction;
class QMenu;
class QWidget;

namespace kalvo::gui {
class DeviceThread;
}
namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::update::ui {

class FileChoiceFrame;
class UpdateFrame;

class UpdatePanel : public QObject {
    Q_OBJECT
public:
    // `owner` is the window the frames and dialogs belong to; downloads start in `programDir`.
    UpdatePanel(gui::DeviceThread &device, QWidget *owner, const QString &programDir);

    QMenu *menu() const { return m_menu; }
    UpdateFrame *updateFrame() const { return m_updateFrame; }
    FileChoiceFrame *fileChoice() const { return m_fileChoice; }
    const UpdatePermission &permission() const { return m_permission; }

    void ApplyTexts(const link::LanguageTable &texts);
    void SetBusy(bool busy);
    // The settings file's option: `upoc` checked at start.
    void SetUpoc(bool on);
    // Development mode offers `manu`: the update frame by hand, to send the chosen file again.
    void SetDevelopment(bool on);

signals:
    // A frame of the update wants the main window's central area.
    void showFrame(QWidget *frame);
    // The update is over or cancelled: the settings frame takes the area again.
    void leave();
    // The tester's identity as read after a run.
    void identityRead(const link::TesterIdentity &identity);

private:
    void BuildMenu();
    void OpenChoice(ContentKind kind, QAction *entry);
    void UpdateChosenFile(const QString &name); // File1
    void UpdateByChosenName();                  // okupdate
    void UpdatePackageOf(const QString &code);  // a language entry
    void ShowManualUpdate();                    // manu
    // Runs `run` with a copy of the permission; the permission it leaves is taken back.
    using Run = std::function<UpdateOutcome(link::Link &, link::Prompter &, UpdatePermission &)>;
    void Start(const QString &title, const QString &shownFile, Run run);
    void Finished(const UpdatePermission &after, const std::optional<link::TesterIdentity> &identity);
    // What a run needs to know: the folder, the texts of the program's language, the date form.
    UpdateContext Context() const;

    gui::DeviceThread &m_device;
    QWidget *m_owner;
    link::LanguageTable m_texts;
    UpdatePermission m_permission;
    QString m_selectedFile;             // the name chosen in File1
    link::PackageFiles m_languageFiles; // set by the language entries
    ContentKind m_kind = ContentKind::System;

    QMenu *m_menu, *m_packageMenu;
    QAction *m_ablauf, *m_bilder, *m_hilfe, *m_syst, *m_upoc, *m_manu;
    QList<QAction *> m_deviceEntries;
    UpdateFrame *m_updateFrame;
    FileChoiceFrame *m_fileChoice;
};

} // namespace kalvo::update::ui
