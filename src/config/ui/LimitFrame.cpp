// The limit frame GWFrame: one of the tester's three limits on a scroll bar, written and stored.
#include "LimitFrame.h"

#include "gui/DeviceThread.h"
#include "gui/GuiPrompter.h"
#include "gui/Phrases.h"
#include "link/LanguageTable.h"
#include "link/Link.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <algorithm>

namespace kalvo::config::ui {

LimitFrame::LimitFrame(gui::DeviceThread &device, QWidget *parent) : QGroupBox(parent), m_device(device)
{
    setObjectName(QStringLiteral("GWFrame"));
    auto *grid = new QGridLayout(this);
    m_scroll = new QScrollBar(Qt::Vertical, this);
    m_scroll->setObjectName(QStringLiteral("VScroll1"));
    // Up is more, as on a dial.
    m_scroll->setInvertedAppearance(true);
    m_scroll->setInvertedControls(true);
    m_scroll->setMinimumHeight(120);
    // Reached with Tab and moved with the arrow and page keys: no limit needs a mouse.
    m_scroll->setFocusPolicy(Qt::StrongFocus);
    m_label = new QLabel(this);
    m_label->setObjectName(QStringLiteral("Label10"));
    QFont big = m_label->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    m_label->setFont(big);
    m_ok = new QPushButton(this);
    m_ok->setObjectName(QStringLiteral("GWok"));
    m_store = new QPushButton(this);
    m_store->setObjectName(QStringLiteral("GWspeichern"));
    grid->addWidget(m_scroll, 0, 0, 3, 1);
    grid->addWidget(m_label, 0, 1);
    grid->addWidget(m_ok, 1, 1);
    grid->addWidget(m_store, 2, 1);
    grid->setColumnStretch(2, 1); // the buttons keep their size; the room goes to the right
    m_scroll->installEventFilter(this);
    connect(m_scroll, &QScrollBar::valueChanged, this, &LimitFrame::ShowValue);
    connect(m_ok, &QPushButton::clicked, this, &LimitFrame::Write);
    connect(m_store, &QPushButton::clicked, this, &LimitFrame::Store);
}

bool LimitFrame::eventFilter(QObject *watched, QEvent *event)
{
    // The bar's inverted controls turn its wheel the dial's way, but would send Up down: the
    // arrow and page keys go the way the bar shows.
    if (watched != m_scroll || event->type() != QEvent::KeyPress)
        return QGroupBox::eventFilter(watched, event);
    const std::pair<int, QAbstractSlider::SliderAction> keys[] = {
        {Qt::Key_Up, QAbstractSlider::SliderSingleStepAdd},
        {Qt::Key_Down, QAbstractSlider::SliderSingleStepSub},
        {Qt::Key_PageUp, QAbstractSlider::SliderPageStepAdd},
        {Qt::Key_PageDown, QAbstractSlider::SliderPageStepSub}};
    const int key = static_cast<QKeyEvent *>(event)->key();
    for (const auto &[pressed, action] : keys) {
        if (key == pressed) {
            m_scroll->triggerAction(action);
            return true;
        }
    }
    return QGroupBox::eventFilter(watched, event);
}

void LimitFrame::ApplyTexts(const link::LanguageTable &texts)
{
    m_ok->setText(texts.text(link::TxtButtonOk));
    m_store->setText(texts.text(link::TxtButtonStore));
    m_outOfRangeText = texts.text(link::TxtLimitOutOfRange);
    m_writeClampedText = texts.text(link::TxtLimitWriteClamped);
    m_language = texts.language();
}

void LimitFrame::SetBusy(bool busy)
{
    m_ok->setEnabled(!busy);
    m_store->setEnabled(!busy);
}

int LimitFrame::value() const
{
    return m_scroll->value();
}

void LimitFrame::ShowValue(int value)
{
    if (m_kind)
        m_label->setText(LimitLabel(*m_kind, value));
}

void LimitFrame::Edit(LimitKind kind, const QString &title)
{
    m_device.Post(window(), title, [this, kind, title](link::Link &link, link::Prompter &) {
        if (link.PortClosed())
            return;
        const int value = ReadLimit(link, kind);
        QMetaObject::invokeMethod(this, [this, kind, title, value] {
            const LimitInfo &info = Limit(kind);
            m_kind = kind;
            setTitle(title);
            m_scroll->setRange(info.minimum, info.maximum);
            m_scroll->setValue(value);
            ShowValue(m_scroll->value());
            m_readOutside.reset();
            if (!InRange(kind, value))
                m_readOutside = value;
            emit loaded();
            if (m_readOutside)
                gui::GuiPrompter(window(), title)
                    .message(OutOfRangeText(m_outOfRangeText), link::Prompter::Icon::Warning);
        });
    });
}

QString LimitFrame::OutOfRangeText(const QString &text) const
{
    const LimitInfo &info = Limit(*m_kind);
    const auto label = [this](int value) { return LimitLabel(*m_kind, value).trimmed(); };
    return text.arg(label(m_readOutside.value_or(0)), label(info.minimum), label(info.maximum),
                    label(m_scroll->value()));
}

void LimitFrame::Write()
{
    if (!m_kind)
        return;
    // The end of the range stands in for what the tester holds: never written back unasked.
    if (m_readOutside &&
        m_scroll->value() == std::clamp(*m_readOutside, m_scroll->minimum(), m_scroll->maximum()) &&
        !gui::GuiPrompter(window(), title()).confirmLoss(OutOfRangeText(m_writeClampedText)))
        return;
    m_readOutside.reset(); // asked once; from now on the tester holds what is written
    m_device.Post(window(), m_ok->text() + QStringLiteral(": ") + title(),
                  [kind = *m_kind, value = m_scroll->value()](link::Link &link, link::Prompter &prompter) {
                      if (!link.PortClosed())
                          WriteLimit(link, prompter, kind, value);
                  });
}

void LimitFrame::Store()
{
    m_device.Post(window(), m_store->text() + QStringLiteral(": ") + title(),
                  [this, stored = gui::PhraseText(gui::Phrase::LimitStored, m_language)](
                      link::Link &link, link::Prompter &prompter) {
                      if (!link.PortClosed() && StoreLimits(link, prompter))
                          m_device.Tell(stored);
                  });
}

} // namespace kalvo::config::ui
