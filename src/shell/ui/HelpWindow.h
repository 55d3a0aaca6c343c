// The program's own help window: the help page of the current language.
#pragma once

#include <QDialog>

class QTextBrowser;

namespace kalvo::shell::ui {

// Chapters that every language's help page has under the same name; F1 in the window they
// describe opens the help there.
inline constexpr char kHelpUpdate[] = "update";
inline constexpr char kHelpSpecifications[] = "pruefablaeufe";
inline constexpr char kHelpArchive[] = "archiv";

class HelpWindow : public QDialog {
    Q_OBJECT
public:
    explicit HelpWindow(QWidget *parent = nullptr);
    // Shows `path` at `chapter` (its top when empty); a missing page says so in the window
    // instead of leaving it blank.
    void ShowPage(const QString &path, const QString &title, const QString &chapter = QString());
    QString html() const;

private:
    QTextBrowser *m_browser;
};

} // namespace kalvo::shell::ui
