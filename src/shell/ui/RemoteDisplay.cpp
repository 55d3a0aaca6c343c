// The panel that mirrors the tester's display while the tester sends it.
#include "RemoteDisplay.h"

#include "link/DisplayFilter.h"

#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace kalvo::shell::ui {

RemoteDisplay::RemoteDisplay(QWidget *parent) : QGroupBox(parent)
{
    setObjectName(QStringLiteral("remoteDisplay"));
    auto *layout = new QVBoxLayout(this);
    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(QStringLiteral("display"));
    m_text->setReadOnly(true);
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(9.75);
    m_text->setFont(font);
    m_text->setMinimumHeight(120);
    layout->addWidget(m_text);
}

void RemoteDisplay::Show(const QByteArray &bytes)
{
    const link::DisplayUpdate update = link::FilterDisplayStream(bytes);
    if (update.clear)
        m_text->clear();
    // Insert at the caret, the way the tester's characters arrive; CR and LF keep their places.
    QString text = update.text;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    m_text->moveCursor(QTextCursor::End);
    m_text->insertPlainText(text);
}

QString RemoteDisplay::text() const
{
    return m_text->toPlainText();
}

} // namespace kalvo::shell::ui
