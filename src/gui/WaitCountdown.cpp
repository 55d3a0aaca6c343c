// The seconds the program still waits for the tester, and the button that stops waiting.
#include "WaitCountdown.h"

#include "DeviceThread.h"
#include "Phrases.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

namespace kalvo::gui {

namespace {
constexpr int kTickMs = 250;
const LanguageTexts kWaiting = {u"Warte auf den Kalvomer: noch %1 s", u"Waiting for the Kalvomer: %1 s left",
                                u"Attente du Kalvomer : encore %1 s", u"In attesa del Kalvomer: ancora %1 s",
                                u"Čekání na Kalvomer: zbývá %1 s",    u"Wachten op de Kalvomer: nog %1 s",
                                u"Esperando al Kalvomer: quedan %1 s"};
const LanguageTexts kCancel = {u"Abbrechen", u"Cancel",    u"Annuler", u"Annulla",
                               u"Zrušit",    u"Annuleren", u"Cancelar"};
const LanguageTexts kCancelTip = {u"Nicht länger warten (Esc)", u"Stop waiting (Esc)",
                                  u"Ne plus attendre (Échap)",  u"Non attendere più (Esc)",
                                  u"Přestat čekat (Esc)",       u"Niet langer wachten (Esc)",
                                  u"Dejar de esperar (Esc)"};
} // namespace

WaitCountdown::WaitCountdown(DeviceThread &device, QWidget *parent)
    : QWidget(parent), m_device(device), m_label(new QLabel(this)), m_cancel(new QPushButton(this))
{
    setObjectName(QStringLiteral("waitCountdown"));
    m_label->setObjectName(QStringLiteral("statusWait"));
    m_cancel->setObjectName(QStringLiteral("cancelWait"));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_label);
    row->addWidget(m_cancel);
    m_tick.setInterval(kTickMs);
    connect(&m_tick, &QTimer::timeout, this, &WaitCountdown::ShowSeconds);
    connect(&device, &DeviceThread::waiting, this, &WaitCountdown::Begin);
    connect(&device, &DeviceThread::waitOver, this, &WaitCountdown::End);
    connect(m_cancel, &QPushButton::clicked, this, [this] {
        m_device.CancelWait();
        m_cancel->setEnabled(false); // taken: the wait ends within a moment
    });
    SetLanguage(m_language);
    hide();
}

void WaitCountdown::SetLanguage(const QString &language)
{
    m_language = language;
    m_cancel->setText(InLanguage(kCancel, language));
    m_cancel->setToolTip(InLanguage(kCancelTip, language));
    if (isVisible())
        ShowSeconds();
}

QString WaitCountdown::text() const
{
    return isVisible() ? m_label->text() : QString();
}

void WaitCountdown::Begin(qint64 msLeft, bool cancellable)
{
    m_deadline = QDeadlineTimer(msLeft);
    m_cancel->setVisible(cancellable);
    m_cancel->setEnabled(cancellable);
    ShowSeconds();
    show();
    m_tick.start();
    qApp->installEventFilter(this);
}

void WaitCountdown::End()
{
    qApp->removeEventFilter(this);
    m_tick.stop();
    hide();
}

bool WaitCountdown::eventFilter(QObject *, QEvent *event)
{
    // Escape wherever the focus is in this window (the port box keeps it after OK): a button's
    // own shortcut would not reach past an editable field.
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->key() != Qt::Key_Escape || key->modifiers() != Qt::NoModifier || !m_cancel->isVisible() ||
        !m_cancel->isEnabled() || QApplication::activeWindow() != window())
        return false;
    m_cancel->click();
    return true;
}

void WaitCountdown::ShowSeconds()
{
    // Rounded up: "noch 1 s" until the very end, never "noch 0 s" while still waiting.
    const qint64 seconds = (m_deadline.remainingTime() + 999) / 1000;
    m_label->setText(InLanguage(kWaiting, m_language).arg(seconds));
}

} // namespace kalvo::gui
