// The set-file side of the database window: the text of the current set file (Text1), its name
// (Text2), and the lists for choosing several set files to store (File1, List2).
#include "SetFilePanel.h"

#include "DatabaseCaptions.h"

#include "gui/GuiPrompter.h"
#include "link/CodePages.h"
#include "specdb/SetFile.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSaveFile>
#include <QVBoxLayout>

namespace kalvo::specdb::ui {

SetFilePanel::SetFilePanel(QWidget *parent) : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    m_name = new QLineEdit(this);
    m_name->setObjectName(QStringLiteral("Text2"));
    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(QStringLiteral("Text1"));
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_files = new QListWidget(this);
    m_files->setObjectName(QStringLiteral("File1"));
    m_chosen = new QListWidget(this);
    m_chosen->setObjectName(QStringLiteral("List2"));
    m_nameLabel = new QLabel(this);
    m_nameLabel->setBuddy(m_name);
    layout->addWidget(m_nameLabel);
    layout->addWidget(m_name);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_files);
    layout->addWidget(m_chosen);
    HideFileLists();
    QFile last(kLastSetFileName);
    if (last.open(QIODevice::ReadOnly))
        m_name->setText(QString::fromLocal8Bit(last.readLine(4096)).trimmed());
    connect(m_text, &QPlainTextEdit::textChanged, this, &SetFilePanel::Bound);
    // A double click or Enter on a file chooses it; on a chosen one, takes it back.
    connect(m_files, &QListWidget::itemActivated, this,
            [this](QListWidgetItem *item) { m_chosen->addItem(item->data(Qt::UserRole).toString()); });
    connect(m_chosen, &QListWidget::itemActivated, this, [](QListWidgetItem *item) { delete item; });
}

void SetFilePanel::ApplyTexts(const QString &language)
{
    m_nameLabel->setText(DbText(DbCaption::SetFile, language));
}

void SetFilePanel::Bound()
{
    if (m_text->document()->characterCount() - 1 <= kMaxSetText)
        return;
    gui::GuiPrompter(this, window()->windowTitle())
        .message(kSetTextTooLongText, link::Prompter::Icon::Warning);
    const QSignalBlocker blocker(m_text);
    m_text->setPlainText(m_text->toPlainText().left(kMaxSetText));
}

void SetFilePanel::OpenSetFile()
{
    QString path = m_name->text().trimmed();
    if (path.isEmpty() || !QFileInfo::exists(path))
        path = gui::GuiPrompter(this, window()->windowTitle()).askOpenFile(kSetFileFilter);
    if (!path.isEmpty())
        Load(path);
}

void SetFilePanel::Load(const QString &path)
{
    gui::GuiPrompter prompter(this, window()->windowTitle());
    const std::optional<QByteArray> bytes = ReadSetFile(path, prompter);
    if (!bytes)
        return;
    QString text;
    for (const QByteArray &line : SetLines(*bytes))
        text += link::DecodeCodePage(link::CodePage::Windows1252, line) + QStringLiteral("\r\n");
    m_text->setPlainText(text);
    m_name->setText(path);
    Remember(path);
}

void SetFilePanel::ShowFileLists()
{
    m_files->clear();
    const QString name = m_name->text().trimmed();
    const QDir folder = name.isEmpty() ? QDir::current() : QFileInfo(name).absoluteDir();
    for (const QFileInfo &file : folder.entryInfoList({QStringLiteral("*.set")}, QDir::Files, QDir::Name)) {
        auto *item = new QListWidgetItem(file.fileName(), m_files);
        item->setData(Qt::UserRole, file.absoluteFilePath());
    }
    m_files->show();
    m_chosen->show();
}

void SetFilePanel::HideFileLists()
{
    m_files->hide();
    m_chosen->hide();
    m_chosen->clear();
}

bool SetFilePanel::fileListsShown() const
{
    return m_chosen->isVisibleTo(this);
}

QStringList SetFilePanel::chosenFiles() const
{
    QStringList files;
    for (int i = 0; i < m_chosen->count(); ++i)
        files << m_chosen->item(i)->text();
    return files;
}

QByteArray SetFilePanel::text() const
{
    // Lines end in CR LF in the file, whatever the text box holds.
    QString text = m_text->toPlainText();
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"))
        .replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    return link::EncodeCodePage(link::CodePage::Windows1252, text);
}

QString SetFilePanel::fileName()
{
    QString path = m_name->text().trimmed();
    if (path.isEmpty())
        path = gui::GuiPrompter(this, window()->windowTitle()).askSaveFile(kSetFileFilter);
    if (!path.isEmpty())
        m_name->setText(path);
    return path;
}

void SetFilePanel::Remember(const QString &path)
{
    QSaveFile file(kLastSetFileName);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(path.toLocal8Bit() + "\r\n");
        file.commit();
    }
}

} // namespace kalvo::specdb::ui
