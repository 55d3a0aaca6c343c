// Where the archive is and whether records read go into it.
#include "ArchiveSettingsDialog.h"

#include "ArchiveCaptions.h"

#include "link/Errors.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace kalvo::archive::ui {

ArchiveSettingsDialog::ArchiveSettingsDialog(const ArchiveSettings &current, const QString &language,
                                             QWidget *parent)
    : QDialog(parent), m_keep(new QCheckBox(CaptionText(Caption::KeepRead, language))),
      m_address(new QLineEdit(current.url)), m_problem(new QLabel)
{
    setObjectName(QStringLiteral("archivEinstellungen"));
    setWindowTitle(CaptionText(Caption::SettingsTitle, language));
    m_keep->setObjectName(QStringLiteral("archivieren"));
    m_keep->setChecked(current.enabled);
    m_address->setObjectName(QStringLiteral("adresse"));
    m_address->setPlaceholderText(QDir::toNativeSeparators(DefaultArchivePath()));
    m_address->setMinimumWidth(420);
    auto *hint = new QLabel(CaptionText(Caption::AddressHint, language));
    hint->setWordWrap(true);
    m_problem->setObjectName(QStringLiteral("problem"));
    m_problem->setWordWrap(true);
    m_problem->setStyleSheet(QStringLiteral("color: darkred"));
    m_problem->hide();
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &ArchiveSettingsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_keep);
    layout->addWidget(new QLabel(CaptionText(Caption::Address, language)));
    layout->addWidget(m_address);
    layout->addWidget(hint);
    layout->addWidget(m_problem);
    layout->addWidget(buttons);
}

ArchiveSettings ArchiveSettingsDialog::Settings() const
{
    return {m_keep->isChecked(), m_address->text().trimmed()};
}

void ArchiveSettingsDialog::accept()
{
    try {
        ParseArchiveUrl(Settings().url);
    } catch (const link::KalvoError &e) {
        m_problem->setText(e.message());
        m_problem->show();
        return;
    }
    QDialog::accept();
}

} // namespace kalvo::archive::ui
