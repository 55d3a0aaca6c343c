// The language menu of the main window: seven languages, each by its own name.
#pragma once

#include <QMenu>

namespace kalvo::shell::ui {

class LanguageMenu : public QMenu {
    Q_OBJECT
public:
    explicit LanguageMenu(QWidget *parent = nullptr);

    // Checks the entry of `language` ("deutsch", "englisch", ...) and clears the others.
    void ShowChosen(const QString &language);

signals:
    // The language name the language switch takes.
    void chosen(const QString &language);
};

} // namespace kalvo::shell::ui
