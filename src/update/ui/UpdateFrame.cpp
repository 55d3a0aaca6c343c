// The update frame `updateframe`: the file being sent, its progress, start and cancel.
#include "UpdateFrame.h"

#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace kalvo::update::ui {

UpdateFrame::UpdateFrame(QWidget *parent)
    : QGroupBox(parent), m_dlFile(new QLabel(this)), m_progress(new QProgressBar(this)),
      m_okupdate(new QPushButton(this)), m_updatecancel(new QPushButton(this))
{
    setObjectName(QStringLiteral("updateframe"));
    m_dlFile->setObjectName(QStringLiteral("dlFile"));
    m_dlFile->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_dlFile->setWordWrap(true);
    m_progress->setObjectName(QStringLiteral("ProgressBar1"));
    m_progress->setRange(0, 100);
    m_okupdate->setObjectName(QStringLiteral("okupdate"));
    m_updatecancel->setObjectName(QStringLiteral("updatecancel"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_dlFile);
    layout->addWidget(m_progress);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_okupdate);
    buttons->addWidget(m_updatecancel);
    layout->addLayout(buttons);
    m_okupdate->setEnabled(false);
}

void UpdateFrame::ShowFile(const QString &path)
{
    m_dlFile->setText(QDir::toNativeSeparators(path));
    m_dlFile->show();
}

void UpdateFrame::SetProgress(int percent)
{
    m_progress->setValue(std::clamp(percent, 0, 100));
}

void UpdateFrame::SetBusy(bool busy)
{
    m_updatecancel->setEnabled(!busy);
    if (busy)
        m_okupdate->setEnabled(false);
}

void UpdateFrame::SetCaptions(const QString &start, const QString &cancel)
{
    m_okupdate->setText(start);
    m_updatecancel->setText(cancel);
}

} // namespace kalvo::update::ui
