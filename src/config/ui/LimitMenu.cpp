// The limit menu: `kuschl`, `Ubez` and `PZHV`, each reading its limit into a limit frame.
#include "LimitMenu.h"

#include "LimitFrame.h"
#include "link/LanguageTable.h"

namespace kalvo::config::ui {

namespace {
struct Entry {
    const char *name;
    LimitKind kind;
    link::TextId caption;
};
const Entry kEntries[] = {{"kuschl", LimitKind::Kuschl, link::TxtMenuLimitShortCircuit},
                          {"Ubez", LimitKind::Ubez, link::TxtMenuLimitReferenceVoltage},
                          {"PZHV", LimitKind::Pzhv, link::TxtMenuLimitHighVoltageTime}};
} // namespace

LimitMenu::LimitMenu(LimitFrame &frame, const QString &objectName, QWidget *parent) : QMenu(parent)
{
    setObjectName(objectName);
    for (const Entry &e : kEntries) {
        QAction *a = addAction(QString());
        a->setObjectName(QString::fromLatin1(e.name));
        // The entry's caption titles the frame and the dialogs of the read.
        connect(a, &QAction::triggered, &frame,
                [&frame, a, kind = e.kind] { frame.Edit(kind, a->text().remove(QLatin1Char('&'))); });
        m_entries << a;
    }
}

void LimitMenu::ApplyTexts(const link::LanguageTable &texts)
{
    setTitle(texts.text(link::TxtMenuLimits));
    for (qsizetype i = 0; i < m_entries.size(); ++i)
        m_entries[i]->setText(texts.text(kEntries[i].caption));
}

} // namespace kalvo::config::ui
