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

namespace kalvo::app {

class MainMenu : public QObject {
    Q_OBJECT
public:
    // Fills `bar`; the entries do nothing until the window connects them.
    explicit MainMenu(QMenuBar *bar);
    void ApplyTexts(const link::LanguageTable &texts);
    // Entries and buttons that start device work: disabled while an operation runs.
    QList<QAction *> deviceEntries() const;

    QMenu *settings, *limits, *help;
    shell::ui::LanguageMenu *languages;
    QAction *connection, *config, *clock, *name, *mitBez, *quillbank, *setKal, *modem;
    QAction *kuschl, *ubez, *pzhv;
    QAction *records, *specifications, *archive, *service, *helpContents, *info, *development, *exit;
    // Development mode only: RAS shows or hides the tester's display as it sends it.
    QAction *ras;
};

} // namespace kalvo::app
