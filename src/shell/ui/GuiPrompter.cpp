// The window's Prompter: dialogs on the window's thread, callable from the device thread.
#include "GuiPrompter.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QThread>

namespace kalvo::shell::ui {

GuiPrompter::GuiPrompter(QWidget *window, const QString &title)
    : QObject(window), m_window(window), m_title(title)
{}

template <typename F> auto GuiPrompter::OnWindowThread(F call) -> decltype(call())
{
    using Result = decltype(call());
    if (QThread::currentThread() == thread())
        return call();
    if constexpr (std::is_void_v<Result>) {
        QMetaObject::invokeMethod(this, call, Qt::BlockingQueuedConnection);
    } else {
        Result result{};
        QMetaObject::invokeMethod(
            this, [&] { result = call(); }, Qt::BlockingQueuedConnection);
        return result;
    }
}

static QMessageBox::Icon BoxIcon(link::Prompter::Icon icon)
{
    switch (icon) {
    case link::Prompter::Icon::Information: return QMessageBox::Information;
    case link::Prompter::Icon::Warning: return QMessageBox::Warning;
    case link::Prompter::Icon::Critical: return QMessageBox::Critical;
    case link::Prompter::Icon::Question: return QMessageBox::Question;
    }
    return QMessageBox::NoIcon;
}

void GuiPrompter::message(const QString &text, Icon icon)
{
    OnWindowThread([&] {
        QMessageBox box(BoxIcon(icon), m_title, text, QMessageBox::Ok, m_window);
        box.exec();
    });
}

bool GuiPrompter::confirm(const QString &text)
{
    return OnWindowThread([&] {
        return QMessageBox::question(m_window, m_title, text, QMessageBox::Ok | QMessageBox::Cancel) ==
               QMessageBox::Ok;
    });
}

std::optional<QString> GuiPrompter::askText(const QString &title, const QString &prompt,
                                            const QString &defaultText)
{
    return OnWindowThread([&]() -> std::optional<QString> {
        bool ok = false;
        const QString text = QInputDialog::getText(m_window, title.isEmpty() ? m_title : title, prompt,
                                                   QLineEdit::Normal, defaultText, &ok);
        if (!ok)
            return std::nullopt;
        return text;
    });
}

QString QtFileFilter(const QString &filter)
{
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList entries;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString label = parts[i];
        if (!label.contains(QLatin1Char('(')))
            label += QStringLiteral(" (%1)").arg(parts[i + 1]);
        entries << label;
    }
    return entries.isEmpty() ? filter : entries.join(QStringLiteral(";;"));
}

// Qt's own dialog under a test's offscreen display, so that a test can answer it.
static QFileDialog::Options FileDialogOptions()
{
    if (QGuiApplication::platformName() == QLatin1String("offscreen"))
        return QFileDialog::DontUseNativeDialog;
    return {};
}

QString GuiPrompter::askOpenFile(const QString &filter)
{
    return OnWindowThread([&] {
        return QFileDialog::getOpenFileName(m_window, m_title, m_directory, QtFileFilter(filter), nullptr,
                                            FileDialogOptions());
    });
}

QString GuiPrompter::askSaveFile(const QString &filter)
{
    return OnWindowThread([&] {
        return QFileDialog::getSaveFileName(m_window, m_title, m_directory, QtFileFilter(filter), nullptr,
                                            FileDialogOptions());
    });
}

void GuiPrompter::progress(int percent)
{
    emit progressChanged(percent);
}

void GuiPrompter::busy(bool)
{}

} // namespace kalvo::shell::ui
