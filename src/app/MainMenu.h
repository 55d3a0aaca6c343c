// The menu bar of the main window: its entries, their object names and their captions.
#pragma once

#include <QObject>

class QAction;
class QMenu;
class QMenuBar;

namespace kalvo::link {
class LanguageTable;
}
namespace kalvo::shell::ui {
class LanguageMenu;
}
namespace kalvo::config::ui {
class LimitFrame;
class LimitMenu;
} // namespace kalvo::config::ui

namespace kalvo::app {

class MainMenu : public QObject {
    Q_OBJECT
public:
    // Fills `bar`; the entries do nothing until the window connects them, but the limit entries,
    // which open their limit in `limitFrame`.
    MainMenu(QMenuBar *bar, config::ui::LimitFrame &limitFrame);
    void ApplyTexts(const link::LanguageTable &texts);
    // Entries and buttons that start device work: disabled while an operation runs.
    QList<QAction *> deviceEntries() const;

    QMenu *settings, *help;
    config::ui::LimitMenu *limits;
    shell::ui::LanguageMenu *languages;
    QAction *connection, *config, *clock, *name, *mitBez, *quillbank, *setKal, *modem;
    QAction *kuschl, *ubez, *pzhv;
    QAction *records, *specifications, *archive, *service, *helpContents, *info, *development, *exit;
    // Development mode only: RAS shows or hides the tester's display as it sends it.
    QAction *ras;
};

} // namespace kalvo::app
