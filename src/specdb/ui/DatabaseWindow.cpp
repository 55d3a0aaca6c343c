// The test-specification database window FRMDB: the tester's store (IdNr), the editor, set files,
// storing and deleting.
#include "DatabaseWindow.h"

#include "EditorPanel.h"
#include "SetFilePanel.h"

#include "gui/DeviceThread.h"
#include "gui/GuiPrompter.h"
#include "link/LanguageTable.h"
#include "link/Link.h"
#include "link/TextIds.h"
#include "link/UserFiles.h"
#include "specdb/SpecDecoding.h"
#include "specdb/StoreRemoval.h"
#include "specdb/SpecUpload.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace kalvo::specdb::ui {

DatabaseWindow::DatabaseWindow(gui::DeviceThread &device, const link::LanguageTable &texts,
                               RegulationRules rules, QWidget *parent)
    : QMainWindow(parent), m_device(device), m_texts(texts)
{
    setObjectName(QStringLiteral("FRMDB"));
    auto *central = new QWidget(this);
    auto *columns = new QHBoxLayout(central);
    auto *left = new QVBoxLayout;
    m_list = new QListWidget(central);
    m_list->setObjectName(QStringLiteral("IdNr"));
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_list->setMinimumWidth(m_list->fontMetrics().horizontalAdvance(QStringLiteral("12:measured: 12345")));
    m_status = new QLabel(central);
    m_status->setObjectName(QStringLiteral("Msg1"));
    m_status->hide();
    left->addWidget(m_list, 1);
    left->addWidget(m_status);
    m_editor = new EditorPanel(std::move(rules), central);
    m_setFiles = new SetFilePanel(central);
    columns->addLayout(left, 1);
    columns->addWidget(m_editor, 2);
    columns->addWidget(m_setFiles, 2);
    auto *buttons = new QVBoxLayout;
    columns->addLayout(buttons);
    setCentralWidget(central);

    const auto add = [&](const char *name, DbCaption caption, auto slot, bool device) {
        QPushButton *button = Button(name);
        m_captions.append({button, caption});
        buttons->addWidget(button);
        connect(button, &QPushButton::clicked, this, slot);
        if (device)
            m_deviceButtons << button;
    };
    add("readDB", DbCaption::ReadStore, &DatabaseWindow::ReadStore, true);
    add("MP", DbCaption::StoreInTester, &DatabaseWindow::StoreInTester, true);
    add("ClearDB", DbCaption::DeleteAll, &DatabaseWindow::DeleteAll, true);
    add("speichern", DbCaption::SaveAndStore, &DatabaseWindow::SaveAndStore, true);
    add(
        "laden", DbCaption::LoadSetFiles, [this] { m_setFiles->ShowFileLists(); }, false);
    add(
        "oeffnen", DbCaption::OpenSetFile, [this] { m_setFiles->OpenSetFile(); }, false);
    add("PrfAbbrechen", DbCaption::Close, &QWidget::close, false);
    buttons->addStretch(1);

    connect(m_list, &QListWidget::itemClicked, this,
            [this](QListWidgetItem *item) { EntryClicked(m_list->row(item)); });
    // By keyboard: Enter opens the entry as a click does, Delete deletes it as the right button does.
    connect(m_list, &QListWidget::itemActivated, this,
            [this](QListWidgetItem *item) { EntryClicked(m_list->row(item)); });
    auto *remove = new QShortcut(QKeySequence::Delete, m_list, nullptr, nullptr, Qt::WidgetShortcut);
    connect(remove, &QShortcut::activated, this, [this] {
        if (m_list->currentRow() >= 0)
            DeleteEntry(m_list->currentRow());
    });
    connect(m_list, &QWidget::customContextMenuRequested, this, [this](const QPoint &at) {
        if (QListWidgetItem *item = m_list->itemAt(at))
            DeleteEntry(m_list->row(item));
    });
    ApplyTexts();
    // Room for the three columns, and no more than a 1024x768 screen holds with its task bar.
    resize(1000, 660);
}

void DatabaseWindow::ApplyTexts()
{
    const QString language = m_texts.language();
    setWindowTitle(m_texts.text(link::TxtMenuSpecifications));
    for (const auto &[button, caption] : std::as_const(m_captions))
        button->setText(DbText(caption, language));
    m_editor->ApplyTexts(language);
    m_setFiles->ApplyTexts(language);
}

QString DatabaseWindow::Text(DbCaption caption) const
{
    return DbText(caption, m_texts.language());
}

QPushButton *DatabaseWindow::Button(const char *name)
{
    // Its caption comes with the language (ApplyTexts).
    auto *button = new QPushButton(centralWidget());
    button->setObjectName(QString::fromLatin1(name));
    return button;
}

void DatabaseWindow::SetBusy(bool busy)
{
    for (QPushButton *button : std::as_const(m_deviceButtons))
        button->setEnabled(!busy);
    m_list->setEnabled(!busy);
}

void DatabaseWindow::Post(const QString &title, std::function<void(link::Link &, link::Prompter &)> job)
{
    m_device.Post(this, title, [job = std::move(job)](link::Link &link, link::Prompter &prompter) {
        if (!link.PortClosed())
            job(link, prompter);
    });
}

void DatabaseWindow::OnWindow(std::function<void()> call)
{
    QMetaObject::invokeMethod(this, std::move(call));
}

void DatabaseWindow::ShowStore(const SpecStore &store)
{
    m_store = store;
    m_list->clear();
    m_list->addItems(store.entries);
    emit listed();
}

void DatabaseWindow::ReadAgain(DatabaseWindow *window, link::Link &link, link::Prompter &prompter)
{
    const auto store = ReadSpecStore(
        link, prompter, link::PlaceFileAndSay(prompter, QDir::currentPath(), kStoreTraceFileName));
    window->OnWindow([window, store = store.value_or(SpecStore{})] { window->ShowStore(store); });
}

void DatabaseWindow::ReadStore()
{
    Post(Text(DbCaption::ReadStore),
         [this](link::Link &link, link::Prompter &prompter) { ReadAgain(this, link, prompter); });
}

void DatabaseWindow::StoreInTester()
{
    if (m_setFiles->fileListsShown()) {
        const QStringList files = m_setFiles->chosenFiles();
        m_setFiles->HideFileLists();
        Post(Text(DbCaption::StoreSetFiles), [this, files](link::Link &link, link::Prompter &prompter) {
            StoreSetFiles(link, prompter, files);
            ReadAgain(this, link, prompter);
        });
        return;
    }
    if (m_store.holdsTestRecords) {
        // Only the way to the deletion, whose own question says what goes; still, Enter must not start it.
        if (gui::GuiPrompter(this, windowTitle()).confirmLoss(kHoldsTestRecordsText))
            DeleteAll();
        return;
    }
    // Storing takes the single faults as ticked, as their OK would.
    if (m_editor->singleFaultsOpen())
        m_editor->TakeSingleFaults();
    const QList<int> looser = m_editor->editor().LooserBoxes(m_editor->rules());
    const StoreState state{m_store.count(), m_store.holdsTestRecords};
    Post(Text(DbCaption::StoreRecord), [this, record = m_editor->editor().record(), looser,
                                        state](link::Link &link, link::Prompter &prompter) mutable {
        const UploadResult result =
            StoreEditorRecord(link, prompter, m_texts, record, state, looser, QDateTime::currentDateTime());
        // A record begun and not finished may be in the store, or was just deleted from it.
        if (result.storeChanged)
            ReadAgain(this, link, prompter);
        OnWindow([this, result, record] {
            for (qsizetype i = 0; i < result.replacedCodes.size(); ++i)
                QApplication::beep();
            if (result.status != UploadStatus::Stored)
                return;
            m_editor->editor().record().codes = record.codes;
            m_store.AppendStored(record, result.label);
            m_list->addItem(m_store.entries.last());
            emit listed();
        });
    });
}

void DatabaseWindow::Status(const QString &text)
{
    m_status->setText(text);
    m_status->setVisible(!text.isEmpty());
}

void DatabaseWindow::SetRecordKeeping(std::function<RecordKeeper()> keeper)
{
    m_keeper = std::move(keeper);
}

Removal DatabaseWindow::RemovalNow() const
{
    Removal removal = RemovalOf(m_store);
    if (m_keeper)
        removal.keep = m_keeper();
    return removal;
}

void DatabaseWindow::DeleteAll()
{
    Post(Text(DbCaption::DeleteAll),
         [this, removal = RemovalNow()](link::Link &link, link::Prompter &prompter) {
             const RemovalStatus status = DeleteAllRecords(link, prompter, m_texts, removal);
             if (status == RemovalStatus::Cancelled || status == RemovalStatus::NotKept)
                 return;
             if (status == RemovalStatus::Deleted)
                 OnWindow([this] {
                     Status(m_texts.text(link::TxtDeleteDone));
                     m_store.holdsTestRecords = false;
                 });
             ReadAgain(this, link, prompter);
             OnWindow([this] { Status({}); });
         });
}

void DatabaseWindow::DeleteEntry(int row)
{
    const int number = row + 1;
    Post(Text(DbCaption::DeleteRecord),
         [this, number, removal = RemovalNow()](link::Link &link, link::Prompter &prompter) {
             const RemovalStatus status = DeleteRecord(link, prompter, m_texts, number, removal);
             if (status == RemovalStatus::Cancelled || status == RemovalStatus::NotKept)
                 return;
             if (status == RemovalStatus::Deleted)
                 OnWindow([this] { Status(m_texts.text(link::TxtDeleteDone)); });
             ReadAgain(this, link, prompter);
             OnWindow([this] { Status({}); });
         });
}

void DatabaseWindow::SaveAndStore()
{
    const QString path = m_setFiles->fileName();
    if (path.isEmpty())
        return;
    m_setFiles->Remember(path);
    Post(Text(DbCaption::SaveAndStore),
         [this, path, text = m_setFiles->text()](link::Link &link, link::Prompter &prompter) {
             SaveAndStoreSetText(link, prompter, path, text);
             ReadAgain(this, link, prompter);
         });
}

void DatabaseWindow::EntryClicked(int row)
{
    // The number in front of ":" names the record; the list may hold fewer entries than the store.
    const int number = m_list->item(row)->text().section(QLatin1Char(':'), 0, 0).toInt();
    if (m_store.IsSpecification(number))
        m_editor->Decode(m_store.records[number - 1], m_store.limits.value(number - 1), number);
    else if (number >= 1)
        emit testRecordChosen(number);
}

} // namespace kalvo::specdb::ui
