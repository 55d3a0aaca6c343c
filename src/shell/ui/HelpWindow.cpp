// The program's own help window: the help page of the current language.
#include "HelpWindow.h"

#include <QDir>
#include <QFile>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace kalvo::shell::ui {

HelpWindow::HelpWindow(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("helpWindow"));
    auto *layout = new QVBoxLayout(this);
    m_browser = new QTextBrowser(this);
    m_browser->setOpenExternalLinks(false);
    layout->addWidget(m_browser);
    resize(720, 640);
}

void HelpWindow::ShowPage(const QString &path, const QString &title, const QString &chapter)
{
    setWindowTitle(title);
    // Shown first: a chapter is scrolled to by the layout of the window as it is on the screen.
    show();
    if (QFile::exists(path)) {
        QUrl page = QUrl::fromLocalFile(path);
        if (!chapter.isEmpty())
            page.setFragment(chapter);
        m_browser->setSource(page);
    } else {
        m_browser->setHtml(QStringLiteral("<p><b>%1</b> nicht gefunden</p>")
                               .arg(QDir::toNativeSeparators(path).toHtmlEscaped()));
    }
    raise();
}

QString HelpWindow::html() const
{
    return m_browser->toHtml();
}

} // namespace kalvo::shell::ui
