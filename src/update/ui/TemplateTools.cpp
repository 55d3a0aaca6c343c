// The print-template entries of the record window: read a template from the tester, edit it in
// the report box, keep it in a ".pr" file and store it into one of the tester's four slots.
#include "TemplateTools.h"

#include "TemplateCaptions.h"

#include "gui/DeviceThread.h"
#include "gui/GuiPrompter.h"
#include "link/Errors.h"
#include "link/Link.h"
#include "link/TextRules.h"
#include "update/FileBytes.h"
#include "update/PFileLoad.h"
#include "update/Templates.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>

namespace kalvo::update::ui {

namespace {
const QString kTemplateFilter = QStringLiteral("Ascii file (*.pr)|*.pr|(*.*)|*.*");
const QString kOnlyFourDigits = QStringLiteral("Nur maximal 4 Zahlen möglich");
constexpr int kMaxTemplateFileBytes = 1024 * 1024; // many times any template
} // namespace

TemplateTools::TemplateTools(gui::DeviceThread &device, QPlainTextEdit *box, QWidget *owner)
    : QObject(owner), m_device(device), m_box(box), m_owner(owner), m_protLabel(new QLabel(owner)),
      m_numberField(new QWidget(owner)), m_numberLabel(new QLabel(m_numberField)),
      m_vorText(new QLineEdit(m_numberField))
{
    m_protLabel->setObjectName(QStringLiteral("ProtLabel"));
    m_vorText->setObjectName(QStringLiteral("VorTExt"));
    // The entry says what it takes; it comes and goes with its label.
    m_numberField->setObjectName(QStringLiteral("templateNumber"));
    m_numberLabel->setObjectName(QStringLiteral("templateNumberLabel"));
    m_numberLabel->setBuddy(m_vorText);
    auto *row = new QHBoxLayout(m_numberField);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_numberLabel);
    row->addWidget(m_vorText);
    m_numberField->hide();
    m_vorText->installEventFilter(this);
    connect(m_vorText, &QLineEdit::returnPressed, this, [this] {
        const QString number = m_vorText->text();
        m_numberField->hide();
        if (!number.isEmpty())
            ReadTemplate(number.toInt());
    });

    m_menu = new QMenu(QStringLiteral("Vorlage"), owner);
    m_menu->setObjectName(QStringLiteral("vorlageMenu"));
    const auto entry = [this](QMenu *menu, const char *name, const QString &caption, auto slot) {
        QAction *a = menu->addAction(caption);
        a->setObjectName(QString::fromLatin1(name));
        connect(a, &QAction::triggered, this, slot);
        return a;
    };
    m_slots = m_menu->addMenu(QStringLiteral("Vorlage setzen"));
    // The fourth caption has no blank, as the tester's documents have always written it.
    const char *const captions[] = {"Vorlage 1", "Vorlage 2", "Vorlage 3", "Vorlage4"};
    for (int slot = 1; slot <= 4; ++slot) {
        QAction *a = entry(m_slots, QStringLiteral("vor%1").arg(slot).toLatin1().constData(),
                           QString::fromLatin1(captions[slot - 1]), [this, slot] { ChooseSlot(slot); });
        a->setCheckable(true);
        a->setChecked(slot == m_slot);
    }
    entry(m_menu, "protchange", QStringLiteral("Vorlage ändern"), &TemplateTools::EditTemplate);
    entry(m_menu, "opendat", QStringLiteral("Datei laden"), &TemplateTools::LoadFile);
    m_deviceEntries << entry(m_menu, "protvor", QStringLiteral("Vorlage aus Kalvomer"),
                             &TemplateTools::AskTemplateNumber);
    m_speichern = entry(m_menu, "speichern", QStringLiteral("speichern"), [this] { Save(); });
    m_speichernUnter =
        entry(m_menu, "speichernUnter", QStringLiteral("speichern unter"), &TemplateTools::SaveAs);
    m_command2 =
        entry(m_menu, "Command2", QStringLiteral("speichern im Kalvomer"), &TemplateTools::StoreInTester);
    m_deviceEntries << m_command2;
    EnableSaving(false);
    ChooseSlot(m_slot);
    SetLanguage(m_language);
}

void TemplateTools::SetLanguage(const QString &language)
{
    m_language = language;
    m_numberLabel->setText(TemplateCaptionText(TemplateCaption::NumberLabel, language));
}

void TemplateTools::SetBusy(bool busy)
{
    for (QAction *a : std::as_const(m_deviceEntries))
        a->setEnabled(!busy && (a != m_command2 || m_speichern->isEnabled()));
}

void TemplateTools::EnableSaving(bool on)
{
    m_speichern->setEnabled(on);
    m_speichernUnter->setEnabled(on);
    m_command2->setEnabled(on && !m_device.busy());
}

void TemplateTools::ChooseSlot(int slot)
{
    m_slot = slot;
    for (QAction *a : m_slots->actions())
        a->setChecked(a->objectName() == QStringLiteral("vor%1").arg(slot));
    m_slots->setTitle(m_slots->actions().value(slot - 1)->text());
}

void TemplateTools::EditTemplate()
{
    // A template is edited as it prints: every character in its own column.
    m_box->setReadOnly(false);
    m_box->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_box->setFocus();
}

void TemplateTools::ShowTemplate(const QByteArray &text, const QString &file)
{
    m_file = file;
    m_protLabel->setText(QDir::toNativeSeparators(file));
    m_box->setPlainText(link::DecodeTesterText(QByteArray(text).replace("\r\n", "\n").replace('\r', '\n')));
    EditTemplate();
    EnableSaving(true);
    emit templateShown();
}

void TemplateTools::LoadFile()
{
    gui::GuiPrompter asker(m_owner, QStringLiteral("Datei laden"));
    const QString path = asker.askOpenFile(kTemplateFilter);
    if (path.isEmpty())
        return;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > kMaxTemplateFileBytes) {
        asker.message(QStringLiteral("%1 kann nicht gelesen werden: %2")
                          .arg(QDir::toNativeSeparators(path),
                               file.isOpen() ? QStringLiteral("größer als %1 Byte").arg(kMaxTemplateFileBytes)
                                             : file.errorString()),
                      link::Prompter::Icon::Critical);
        return;
    }
    ShowTemplate(file.readAll(), path);
}

bool TemplateTools::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_vorText && event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter || key->key() == Qt::Key_Escape)
            return false;
        const QString typed = key->text();
        const bool digit = typed.size() == 1 && typed[0] >= QLatin1Char('0') && typed[0] <= QLatin1Char('9');
        // Digits only, four at the most; anything else is told and not taken.
        if (!digit || m_vorText->text().size() >= 4) {
            gui::GuiPrompter(m_owner, QStringLiteral("Vorlage aus Kalvomer"))
                .message(kOnlyFourDigits, link::Prompter::Icon::Warning);
            return true;
        }
    } else if (watched == m_vorText && event->type() == QEvent::FocusOut) {
        m_numberField->hide();
    }
    return QObject::eventFilter(watched, event);
}

void TemplateTools::AskTemplateNumber()
{
    m_vorText->clear();
    m_numberField->show();
    m_vorText->setFocus();
}

void TemplateTools::ReadTemplate(int number)
{
    if (number < kFirstTemplate || number > kLastTemplate) {
        gui::GuiPrompter(m_owner, QStringLiteral("Vorlage aus Kalvomer"))
            .message(TemplateCaptionText(TemplateCaption::NoSuchTemplate, m_language).arg(number),
                     link::Prompter::Icon::Warning);
        return;
    }
    m_device.Post(m_owner, QStringLiteral("Vorlage aus Kalvomer"),
                  [this, number](link::Link &link, link::Prompter &) {
                      if (const std::optional<QByteArray> text = update::ReadTemplate(link, number))
                          QMetaObject::invokeMethod(this, [this, text = *text, number] {
                              ShowTemplate(text, TemplateFileName(number));
                          });
                  });
}

bool TemplateTools::Save()
{
    if (m_file.isEmpty())
        return false;
    try {
        SaveBytes(m_file, link::EncodeTesterText(m_box->toPlainText()).replace('\n', "\r\n"));
        return true;
    } catch (const link::KalvoError &e) {
        gui::GuiPrompter(m_owner, QStringLiteral("speichern"))
            .message(e.message(), link::Prompter::Icon::Critical);
        return false;
    }
}

void TemplateTools::SaveAs()
{
    gui::GuiPrompter asker(m_owner, QStringLiteral("speichern unter"));
    const QString path = asker.askSaveFile(kTemplateFilter);
    if (path.isEmpty())
        return;
    m_file = path;
    m_protLabel->setText(QDir::toNativeSeparators(path));
    Save();
}

void TemplateTools::StoreInTester()
{
    if (m_file.isEmpty() || !Save())
        return;
    const QString path = QFileInfo(m_file).absoluteFilePath();
    const QString question = TemplateCaptionText(TemplateCaption::ReplaceInTester, m_language)
                                 .arg(m_slot)
                                 .arg(QDir::toNativeSeparators(path));
    m_device.Post(m_owner, QStringLiteral("speichern im Kalvomer"),
                  [path, question, slot = m_slot](link::Link &link, link::Prompter &prompter) {
                      // The tester keeps one template a slot: the one there now is gone once this loads.
                      if (link.PortClosed() || !prompter.confirmLoss(question))
                          return;
                      // Saved just now: the P-file is built from the file as it stands.
                      BuildAndLoadPFile(link, prompter, path, slot);
                  });
}

} // namespace kalvo::update::ui
