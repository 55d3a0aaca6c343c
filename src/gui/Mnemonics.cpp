// Alt+letter shortcuts for menus and buttons whose captions come from the language table.
#include "Mnemonics.h"

#include <QAction>
#include <QMenu>
#include <QSet>

namespace kalvo::gui {

namespace {

// The position of the mnemonic mark in `text` (the "&" before a letter or digit), or -1; a lone
// "&" before a blank is an ampersand of the language file.
qsizetype MarkOf(const QString &text)
{
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != QLatin1Char('&'))
            continue;
        if (text[i + 1].isLetterOrNumber())
            return i;
        if (text[i + 1] == QLatin1Char('&'))
            ++i; // "&&" is an ampersand shown as such
    }
    return -1;
}

// Where the mark goes in `text`: a free word start first, then any free letter or digit.
qsizetype ChooseLetter(const QString &text, QSet<QChar> &used)
{
    for (const bool wordStartsOnly : {true, false}) {
        for (qsizetype i = 0; i < text.size(); ++i) {
            const QChar c = text[i];
            const bool wordStart = i == 0 || !text[i - 1].isLetterOrNumber();
            if (!c.isLetterOrNumber() || (wordStartsOnly && !wordStart) || used.contains(c.toLower()))
                continue;
            used.insert(c.toLower());
            return i;
        }
    }
    return -1;
}

} // namespace

void AssignMnemonics(const QList<QAction *> &actions)
{
    QSet<QChar> used;
    QList<QAction *> unmarked;
    for (QAction *action : actions) {
        const QString text = action->text();
        if (const qsizetype mark = MarkOf(text); mark >= 0)
            used.insert(text[mark + 1].toLower());
        else if (!action->isSeparator() && !text.isEmpty())
            unmarked << action;
    }
    for (QAction *action : std::as_const(unmarked)) {
        QString text = action->text().replace(QLatin1Char('&'), QStringLiteral("&&"));
        if (const qsizetype at = ChooseLetter(text, used); at >= 0)
            text.insert(at, QLatin1Char('&'));
        action->setText(text);
    }
}

void AssignMenuMnemonics(QWidget *bar)
{
    const QList<QAction *> entries = bar->actions();
    AssignMnemonics(entries);
    for (QAction *entry : entries)
        if (QMenu *menu = entry->menu())
            AssignMenuMnemonics(menu);
}

QString WithoutMnemonic(const QString &text)
{
    QString plain;
    plain.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == QLatin1Char('&') && i + 1 < text.size())
            ++i;
        plain += text[i];
    }
    return plain;
}

} // namespace kalvo::gui
