// Which label stock the test labels go on, and the first free label of a sheet already started.
#include "LabelOptionsDialog.h"

#include "PaperCaptions.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QSpinBox>
#include <QVBoxLayout>

namespace kalvo::archive::ui {

namespace {

QString Describe(const LabelSheet &sheet)
{
    const QString size = QStringLiteral("%1 x %2 mm").arg(sheet.labelMm.width()).arg(sheet.labelMm.height());
    return sheet.perPage() > 1
               ? QStringLiteral("A4, %1 x %2 (%3)").arg(sheet.columns).arg(sheet.rows).arg(size)
               : QStringLiteral("%1 mm (%2)").arg(sheet.labelMm.width()).arg(size);
}

} // namespace

LabelOptionsDialog::LabelOptionsDialog(const QString &language, QWidget *parent)
    : QDialog(parent), m_sheets(LabelSheets()), m_sheet(new QComboBox), m_first(new QSpinBox)
{
    setObjectName(QStringLiteral("etiketten"));
    setWindowTitle(PaperCaptionText(PaperCaption::LabelsTitle, language));
    m_sheet->setObjectName(QStringLiteral("bogen"));
    for (const LabelSheet &sheet : m_sheets)
        m_sheet->addItem(Describe(sheet));
    m_first->setObjectName(QStringLiteral("erstesFreies"));
    const auto fit = [this] {
        m_first->setRange(1, Sheet().perPage());
        m_first->setEnabled(Sheet().perPage() > 1);
    };
    fit();
    connect(m_sheet, &QComboBox::currentIndexChanged, this, fit);
    auto *form = new QFormLayout;
    form->addRow(PaperCaptionText(PaperCaption::Sheet, language), m_sheet);
    form->addRow(PaperCaptionText(PaperCaption::FirstFree, language), m_first);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

LabelSheet LabelOptionsDialog::Sheet() const
{
    return m_sheets.value(m_sheet->currentIndex(), m_sheets.constFirst());
}

int LabelOptionsDialog::FirstFree() const
{
    return m_first->value();
}

} // namespace kalvo::archive::ui
