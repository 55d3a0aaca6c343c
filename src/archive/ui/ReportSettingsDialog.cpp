// Who issues the signed reports: company, address, logo and inspector.
#include "ReportSettingsDialog.h"

#include "PaperCaptions.h"

#include "gui/GuiPrompter.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kalvo::archive::ui {

ReportSettingsDialog::ReportSettingsDialog(const ReportSettings &current, const QString &language,
                                           QWidget *parent)
    : QDialog(parent), m_company(new QLineEdit(current.company)),
      m_address(new QPlainTextEdit(current.address)), m_logo(new QLineEdit(current.logoFile)),
      m_inspector(new QLineEdit(current.inspector)), m_problem(new QLabel)
{
    const auto text = [&language](PaperCaption caption) { return PaperCaptionText(caption, language); };
    setObjectName(QStringLiteral("berichtEinstellungen"));
    setWindowTitle(text(PaperCaption::ReportSettings));
    m_company->setObjectName(QStringLiteral("firma"));
    m_address->setObjectName(QStringLiteral("anschrift"));
    m_address->setTabChangesFocus(true);
    m_address->setFixedHeight(m_address->fontMetrics().lineSpacing() * 5);
    m_logo->setObjectName(QStringLiteral("logo"));
    m_inspector->setObjectName(QStringLiteral("pruefer"));
    m_company->setMinimumWidth(360);
    auto *choose = new QPushButton(text(PaperCaption::Choose));
    choose->setObjectName(QStringLiteral("logoWaehlen"));
    connect(choose, &QPushButton::clicked, this, &ReportSettingsDialog::ChooseLogo);
    auto *logoRow = new QHBoxLayout;
    logoRow->addWidget(m_logo, 1);
    logoRow->addWidget(choose);
    auto *form = new QFormLayout;
    form->addRow(text(PaperCaption::Company), m_company);
    form->addRow(text(PaperCaption::Address), m_address);
    form->addRow(text(PaperCaption::Logo), logoRow);
    form->addRow(text(PaperCaption::Inspector), m_inspector);
    m_problem->setObjectName(QStringLiteral("problem"));
    m_problem->setWordWrap(true);
    m_problem->setStyleSheet(QStringLiteral("color: darkred"));
    m_problem->hide();
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &ReportSettingsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_problem);
    layout->addWidget(buttons);
}

ReportSettings ReportSettingsDialog::Settings() const
{
    return {m_company->text().trimmed(), m_address->toPlainText().trimmed(), m_logo->text().trimmed(),
            m_inspector->text().trimmed()};
}

void ReportSettingsDialog::ChooseLogo()
{
    const QString path =
        gui::GuiPrompter(this, windowTitle())
            .askOpenFile(QStringLiteral("PNG, JPEG (*.png *.jpg *.jpeg)|*.png *.jpg *.jpeg"));
    if (!path.isEmpty())
        m_logo->setText(path);
}

void ReportSettingsDialog::accept()
{
    QString problem;
    LoadLogo(Settings().logoFile, &problem);
    if (!problem.isEmpty()) {
        m_problem->setText(problem);
        m_problem->show();
        return;
    }
    QDialog::accept();
}

} // namespace kalvo::archive::ui
