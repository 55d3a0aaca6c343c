// The program's own help window: the help page of the current language.
#pragma once

#include <QDialog>

class QTextBrowser;

namespace kalvo::shell::ui {

class HelpWindow : public QDialog {
    Q_OBJECT
public:
    explicit HelpWindow(QWidget *parent = nullptr);
    // Shows `path`; a missing page says so in the window instead of leaving it blank.
    void ShowPage(const QString &path, const QString &title);
    QString html() const;

private:
    QTextBrowser *m_browser;
};

} // namespace kalvo::shell::ui
