// The windows' Prompter: dialogs that belong to the window that asked, callable from any thread.
#include "GuiPrompter.h"

#include "FileFilters.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QThread>

namespace kalvo::gui {

GuiPrompter::GuiPrompter(QWidget *owner, const QString &title, std::function<void(int)> onProgress)
    : m_owner(owner), m_title(title), m_onProgress(std::move(onProgress))
{}

template <typename F> auto GuiPrompter::OnWindowThread(F call) -> decltype(call())
{
    using Result = decltype(call());
    QCoreApplication *app = QCoreApplication::instance();
    if (QThread::currentThread() == app->thread())
        return call();
    // The application object, not the owner, carries the call: a window closed meanwhile must not
    // leave the device thread waiting for a dialog that never comes.
    if constexpr (std::is_void_v<Result>) {
        QMetaObject::invokeMethod(app, call, Qt::BlockingQueuedConnection);
    } else {
        Result result{};
        QMetaObject::invokeMethod(
            app, [&] { result = call(); }, Qt::BlockingQueuedConnection);
        return result;
    }
}

QString GuiPrompter::title() const
{
    if (!m_title.isEmpty())
        return m_title;
    return m_owner ? m_owner->window()->windowTitle() : QCoreApplication::applicationName();
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
        QMessageBox box(BoxIcon(icon), title(), text, QMessageBox::Ok, m_owner);
        box.exec();
    });
}

bool GuiPrompter::confirm(const QString &text)
{
    return OnWindowThread([&] {
        return QMessageBox::question(m_owner, title(), text, QMessageBox::Ok | QMessageBox::Cancel) ==
               QMessageBox::Ok;
    });
}

bool GuiPrompter::confirmLoss(const QString &text)
{
    return OnWindowThread([&] {
        QMessageBox box(QMessageBox::Warning, title(), text, QMessageBox::Ok | QMessageBox::Cancel, m_owner);
        box.setDefaultButton(QMessageBox::Cancel);
        box.setEscapeButton(QMessageBox::Cancel);
        return box.exec() == QMessageBox::Ok;
    });
}

std::optional<QString> GuiPrompter::askText(const QString &dialogTitle, const QString &prompt,
                                            const QString &defaultText)
{
    return OnWindowThread([&]() -> std::optional<QString> {
        bool ok = false;
        const QString text = QInputDialog::getText(m_owner, dialogTitle.isEmpty() ? title() : dialogTitle,
                                                   prompt, QLineEdit::Normal, defaultText, &ok);
        if (!ok)
            return std::nullopt;
        return text;
    });
}

QString GuiPrompter::askOpenFile(const QString &filter)
{
    return OnWindowThread([&] {
        return QFileDialog::getOpenFileName(m_owner, title(), QString(), QtFileFilter(filter), nullptr,
                                            FileDialogOptions());
    });
}

QString GuiPrompter::askSaveFile(const QString &filter)
{
    return OnWindowThread([&] {
        QFileDialog dialog(m_owner, title(), QString(), QtFileFilter(filter));
        dialog.setOptions(FileDialogOptions());
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setFileMode(QFileDialog::AnyFile);
        // The dialog adds the suffix itself, so that its question before replacing a file asks
        // about the file that will be written.
        dialog.setDefaultSuffix(FilterSuffix(dialog.selectedNameFilter()));
        QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog,
                         [&dialog](const QString &chosen) { dialog.setDefaultSuffix(FilterSuffix(chosen)); });
        if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
            return QString();
        return WithFilterSuffix(dialog.selectedFiles().constFirst(), dialog.selectedNameFilter());
    });
}

void GuiPrompter::progress(int percent)
{
    if (m_onProgress)
        m_onProgress(percent);
}

void GuiPrompter::busy(bool)
{}

} // namespace kalvo::gui
