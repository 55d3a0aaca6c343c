// The file choice `SPdownfiles`: its title `titeldf` over the drive, folder and file lists.
#include "FileChoiceFrame.h"

#include "gui/FolderLists.h"

#include <QLabel>
#include <QVBoxLayout>

namespace kalvo::update::ui {

FileChoiceFrame::FileChoiceFrame(QWidget *parent)
    : QGroupBox(parent), m_title(new QLabel(this)), m_lists(new gui::FolderLists(this))
{
    setObjectName(QStringLiteral("SPdownfiles"));
    m_title->setObjectName(QStringLiteral("titeldf"));
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_title);
    layout->addWidget(m_lists, 1);
    connect(m_lists, &gui::FolderLists::fileChosen, this, &FileChoiceFrame::fileChosen);
    connect(m_lists, &gui::FolderLists::directoryChanged, this, &FileChoiceFrame::directoryChanged);
}

void FileChoiceFrame::Choose(const QString &mask, const QString &title)
{
    m_title->setText(title);
    m_lists->SetMask(mask);
}

void FileChoiceFrame::SetDirectory(const QString &directory)
{
    m_lists->SetDirectory(directory);
}

const QString &FileChoiceFrame::directory() const
{
    return m_lists->directory();
}

const QString &FileChoiceFrame::mask() const
{
    return m_lists->mask();
}

void FileChoiceFrame::SetLanguage(const QString &language)
{
    m_lists->SetLanguage(language);
}

void FileChoiceFrame::Refresh()
{
    m_lists->Refresh();
}

} // namespace kalvo::update::ui
