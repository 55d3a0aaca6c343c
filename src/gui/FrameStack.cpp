// The central area of a main window: one frame at a time, each with a button that leaves it.
#include "FrameStack.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace kalvo::gui {

namespace {
const char *const kFrameProperty = "kalvoFrame";
}

FrameStack::FrameStack(QWidget *parent) : QStackedWidget(parent), m_empty(new QWidget(this))
{
    setObjectName(QStringLiteral("frames"));
    addWidget(m_empty);
}

void FrameStack::AddFrame(QWidget *frame, QAbstractButton *ownClose)
{
    auto *page = new QWidget(this);
    page->setProperty(kFrameProperty, QVariant::fromValue(frame));
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(frame);
    if (ownClose) {
        connect(ownClose, &QAbstractButton::clicked, this, &FrameStack::CloseFrame);
        layout->addStretch();
        addWidget(page);
        return;
    }
    auto *bar = new QHBoxLayout;
    bar->addStretch();
    auto *close = new QPushButton(page);
    close->setObjectName(frame->objectName() + QStringLiteral("Close"));
    bar->addWidget(close);
    layout->addLayout(bar);
    layout->addStretch();
    m_closeButtons << close;
    connect(close, &QPushButton::clicked, this, &FrameStack::CloseFrame);
    addWidget(page);
}

void FrameStack::ShowFrame(QWidget *frame)
{
    for (int i = 0; i < count(); ++i)
        if (widget(i)->property(kFrameProperty).value<QWidget *>() == frame)
            setCurrentIndex(i);
}

void FrameStack::CloseFrame()
{
    QWidget *frame = shownFrame();
    setCurrentWidget(m_empty);
    if (frame)
        emit frameClosed(frame);
}

QWidget *FrameStack::shownFrame() const
{
    return currentWidget()->property(kFrameProperty).value<QWidget *>();
}

void FrameStack::SetCloseText(const QString &text)
{
    for (QPushButton *button : std::as_const(m_closeButtons))
        button->setText(text);
}

} // namespace kalvo::gui
