// The window "Archiv": signed reports and test labels of the selection, and the report settings.
#include "ArchiveWindow.h"

#include "LabelOptionsDialog.h"
#include "ReportSettingsDialog.h"

#include "archive/ArchiveSession.h"
#include "archive/LabelDevices.h"
#include "archive/ReportSettings.h"
#include "archive/SignedReport.h"
#include "archive/TestLabels.h"
#include "gui/GuiPrompter.h"

#include <QDir>
#include <QHBoxLayout>
#include <QPushButton>

namespace kalvo::archive::ui {

namespace {

// How many were written, and what the user should know besides.
using PaperResult = std::pair<qint64, QStringList>;

const QString kPdfFilter = QStringLiteral("PDF (*.pdf)|*.pdf");

} // namespace

QWidget *ArchiveWindow::PaperButtons()
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addStretch();
    const std::tuple<const char *, PaperCaption, void (ArchiveWindow::*)()> buttons[] = {
        {"berichtEinstellungen", PaperCaption::ReportSettings, &ArchiveWindow::EditReportSettings},
        {"signiert", PaperCaption::SignedPdf, &ArchiveWindow::AskSignedPdf},
        {"etiketten", PaperCaption::LabelsPdf, &ArchiveWindow::AskLabelsPdf}};
    for (const auto &[name, caption, action] : buttons) {
        auto *button = new QPushButton;
        button->setObjectName(QString::fromLatin1(name));
        m_paperButtons.append({button, caption});
        connect(button, &QPushButton::clicked, this, action);
        layout->addWidget(button);
    }
    return row;
}

template <typename Job> void ArchiveWindow::ExportPaper(const QString &path, PaperCaption saved, Job job)
{
    m_session->Ask(
        this, std::move(job),
        [this, path, saved](const PaperResult &result) {
            QStringList lines{
                CountedPaperCaption(saved, result.first, m_language).arg(QDir::toNativeSeparators(path))};
            ShowStatus((lines + result.second).join(QLatin1Char('\n')));
            emit exported(path, true);
        },
        [this, path](const QString &message) {
            Fail(message);
            emit exported(path, false);
        });
}

void ArchiveWindow::ExportSignedPdf(const QString &path)
{
    ExportPaper(path, PaperCaption::SignedSaved,
                [chosen = ChosenIds(), settings = ReadReportSettings(), path](Archive &archive) {
                    const QList<qint64> ids = chosen(archive);
                    const QStringList notes = ExportSignedReportPdf(archive, ids, settings, path);
                    return PaperResult{ids.size(), notes};
                });
}

void ArchiveWindow::ExportLabelsPdf(const QString &path, const LabelSheet &sheet, int firstFree)
{
    ExportPaper(path, PaperCaption::LabelsSaved,
                [chosen = ChosenIds(), sheet, firstFree, path](Archive &archive) {
                    const QList<LabelDevice> devices = LabelDevices(archive, chosen(archive));
                    WriteLabelsPdf(devices, sheet, firstFree, path);
                    return PaperResult{devices.size(), {}};
                });
}

void ArchiveWindow::AskSignedPdf()
{
    gui::GuiPrompter prompter(this, windowTitle());
    ReportSettings settings = ReadReportSettings();
    if (settings.inspector.trimmed().isEmpty()) {
        // Asked once: the name is kept in the report settings.
        const std::optional<QString> name =
            prompter.askText(PaperCaptionText(PaperCaption::ReportSettings, m_language),
                             PaperCaptionText(PaperCaption::AskInspector, m_language), QString());
        if (!name || name->trimmed().isEmpty())
            return;
        settings.inspector = name->trimmed();
        WriteReportSettings(settings);
    }
    const QString path = prompter.askSaveFile(kPdfFilter);
    if (!path.isEmpty())
        ExportSignedPdf(path);
}

void ArchiveWindow::AskLabelsPdf()
{
    auto *dialog = new LabelOptionsDialog(m_language, this);
    OpenDialog(dialog, [this, dialog] {
        const QString path = gui::GuiPrompter(this, windowTitle()).askSaveFile(kPdfFilter);
        if (!path.isEmpty())
            ExportLabelsPdf(path, dialog->Sheet(), dialog->FirstFree());
    });
    emit labelOptionsShown(dialog);
}

void ArchiveWindow::EditReportSettings()
{
    auto *dialog = new ReportSettingsDialog(ReadReportSettings(), m_language, this);
    OpenDialog(dialog, [dialog] { WriteReportSettings(dialog->Settings()); });
    emit reportSettingsShown(dialog);
}

} // namespace kalvo::archive::ui
