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

void HelpWindow::ShowPage(const QString &path, const QString &title)
{
    setWindowTitle(title);
    if (QFile::exists(path)) {
        m_browser->setSource(QUrl::fromLocalFile(path));
    } else {
        m_browser->setHtml(QStringLiteral("<p><b>%1</b> nicht gefunden</p>")
                               .arg(QDir::toNativeSeparators(path).toHtmlEscaped()));
    }
    show();
    raise();
}

QString HelpWindow::html() const
{
    return m_browser->toHtml();
}

} // namespace kalvo::shell::ui
