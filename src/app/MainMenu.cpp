// The menu bar of the main window: its entries, their object names and their captions.
#include "MainMenu.h"

#include "config/ui/LimitMenu.h"
#include "link/LanguageTable.h"
#include "shell/ui/LanguageMenu.h"

#include <QAction>
#include <QMenuBar>

namespace kalvo::app {

MainMenu::MainMenu(QMenuBar *bar, config::ui::LimitFrame &limitFrame) : QObject(bar)
{
    const auto entry = [bar](QMenu *menu, const char *objectName) {
        QAction *a = menu ? menu->addAction(QString()) : bar->addAction(QString());
        a->setObjectName(QString::fromLatin1(objectName));
        return a;
    };
    const auto menu = [bar](const char *objectName) {
        QMenu *m = bar->addMenu(QString());
        m->setObjectName(QString::fromLatin1(objectName));
        return m;
    };
    settings = menu("einstellungen");
    connection = entry(settings, "verbindung");
    config = entry(settings, "config");
    clock = entry(settings, "UhrStellen");
    name = entry(settings, "Taufe");
    settings->addSeparator();
    mitBez = entry(settings, "mitBez");
    mitBez->setCheckable(true);
    quillbank = entry(settings, "Quillbank");
    quillbank->setCheckable(true);
    quillbank->setEnabled(false);
    setKal = entry(settings, "setKal");
    setKal->setVisible(false);
    modem = entry(settings, "modem");

    limits = new config::ui::LimitMenu(limitFrame, QStringLiteral("grenzwerte"), bar);
    bar->addMenu(limits);
    kuschl = limits->entries().at(0);
    ubez = limits->entries().at(1);
    pzhv = limits->entries().at(2);
    records = entry(nullptr, "protokolle");
    specifications = entry(nullptr, "datenbank");
    archive = entry(nullptr, "archiv");
    service = entry(nullptr, "service");

    languages = new shell::ui::LanguageMenu(bar);
    bar->addMenu(languages);
    help = menu("hilfeMenu");
    helpContents = entry(help, "Inhalt");
    helpContents->setShortcut(QKeySequence::HelpContents);
    info = entry(help, "info");
    development = entry(nullptr, "Entw");
    development->setCheckable(true);
    development->setVisible(false);
    ras = entry(settings, "RAS");
    ras->setCheckable(true);
    ras->setVisible(false);
    exit = entry(nullptr, "Beenden");
    exit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
}

QList<QAction *> MainMenu::deviceEntries() const
{
    return {config, clock, name, mitBez, setKal, kuschl, ubez, pzhv};
}

void MainMenu::ApplyTexts(const link::LanguageTable &texts)
{
    const std::pair<QAction *, link::TextId> captions[] = {{connection, link::TxtMenuConnection},
                                                           {config, link::TxtMenuConfig},
                                                           {clock, link::TxtMenuClock},
                                                           {name, link::TxtMenuName},
                                                           {service, link::TxtMenuService},
                                                           {records, link::TxtMenuRecords},
                                                           {specifications, link::TxtMenuSpecifications},
                                                           {archive, link::TxtMenuArchive},
                                                           {mitBez, link::TxtMenuWithDesignation},
                                                           {quillbank, link::TxtMenuQuillbank},
                                                           {setKal, link::TxtMenuRestoreCalibration},
                                                           {modem, link::TxtMenuModem},
                                                           {helpContents, link::TxtMenuHelpContents},
                                                           {info, link::TxtMenuInfo},
                                                           {exit, link::TxtMenuExit},
                                                           {development, link::TxtMenuDevelopment},
                                                           {ras, link::TxtLabelDisplay}};
    for (const auto &[action, id] : captions)
        action->setText(texts.text(id));
    settings->setTitle(texts.text(link::TxtMenuSettings));
    limits->ApplyTexts(texts);
    languages->setTitle(texts.text(link::TxtMenuLanguage));
    help->setTitle(texts.text(link::TxtMenuHelp));
    languages->ShowChosen(texts.language());
}

} // namespace kalvo::app
