// The language menu of the main window: seven languages, each by its own name.
#include "LanguageMenu.h"

namespace kalvo::shell::ui {

namespace {
struct LanguageEntry {
    const char *objectName;
    const char *caption; // each language by its own name, whatever the program speaks
    const char *language;
};
const LanguageEntry kLanguageEntries[] = {
    {"deutsch", "Deutsch", "deutsch"},
    {"english", "English", "englisch"},
    {"france", "Français", "französisch"},
    {"italiano", "Italiano", "italienisch"},
    {"nederlandske", "Nederlands", "nederlandske"},
    {"spain", "Español", "spain"},
    {"tschech", "Čeština", "tschechisch"},
};
} // namespace

LanguageMenu::LanguageMenu(QWidget *parent) : QMenu(parent)
{
    setObjectName(QStringLiteral("sprache"));
    for (const LanguageEntry &entry : kLanguageEntries) {
        QAction *a = addAction(QString::fromUtf8(entry.caption));
        a->setObjectName(QString::fromLatin1(entry.objectName));
        a->setCheckable(true);
        a->setData(QString::fromUtf8(entry.language));
        connect(a, &QAction::triggered, this, [this, a] { emit chosen(a->data().toString()); });
    }
}

void LanguageMenu::ShowChosen(const QString &language)
{
    for (QAction *a : actions())
        a->setChecked(a->data().toString() == language);
}

} // namespace kalvo::shell::ui
