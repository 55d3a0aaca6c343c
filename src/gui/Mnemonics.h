// Alt+letter shortcuts for menus and buttons whose captions come from the language table.
#pragma once

#include <QList>
#include <QString>

class QAction;
class QWidget;

namespace kalvo::gui {

// Puts an "&" before one letter of each action's text, a different letter for each within the
// list: the first letter of a word where it is free, else any free letter or digit. Texts that
// already hold a mnemonic keep it; an "&" that marks no letter is doubled, to show as such.
void AssignMnemonics(const QList<QAction *> &actions);
// The same for a menu bar's entries and, each list on its own, for the entries of its menus.
void AssignMenuMnemonics(QWidget *bar);
// `text` without its mnemonic mark, as a message title or status line shows it ("&&" stays "&").
QString WithoutMnemonic(const QString &text);

} // namespace kalvo::gui
