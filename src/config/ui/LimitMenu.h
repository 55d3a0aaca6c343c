// The limit menu: `kuschl`, `Ubez` and `PZHV`, each reading its limit into a limit frame.
#pragma once

#include <QMenu>

namespace kalvo::link {
class LanguageTable;
}

namespace kalvo::config::ui {

class LimitFrame;

class LimitMenu : public QMenu {
    Q_OBJECT
public:
    // The entries open their limit in `frame`; the menu is named `objectName`.
    LimitMenu(LimitFrame &frame, const QString &objectName, QWidget *parent = nullptr);
    void ApplyTexts(const link::LanguageTable &texts);
    // kuschl, Ubez, PZHV: they start device work.
    QList<QAction *> entries() const { return m_entries; }

private:
    QList<QAction *> m_entries;
};

} // namespace kalvo::config::ui
