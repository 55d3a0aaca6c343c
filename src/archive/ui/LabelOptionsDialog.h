// Which label stock the test labels go on, and the first free label of a sheet already started.
#pragma once

#include "archive/TestLabels.h"

#include <QDialog>

class QComboBox;
class QSpinBox;

namespace kalvo::archive::ui {

class LabelOptionsDialog : public QDialog {
    Q_OBJECT
public:
    LabelOptionsDialog(const QString &language, QWidget *parent);

    LabelSheet Sheet() const;
    int FirstFree() const;

    QComboBox *sheet() const { return m_sheet; }
    QSpinBox *firstFree() const { return m_first; }

private:
    QList<LabelSheet> m_sheets;
    QComboBox *m_sheet;
    QSpinBox *m_first;
};

} // namespace kalvo::archive::ui
