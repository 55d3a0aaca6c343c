// Where the archive is and whether records read go into it: the user settings kalvo and
// kalvo-cli share.
#pragma once

#include "archive/ArchiveLocation.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;

namespace kalvo::archive::ui {

class ArchiveSettingsDialog : public QDialog {
    Q_OBJECT
public:
    ArchiveSettingsDialog(const ArchiveSettings &current, const QString &language, QWidget *parent);

    // The settings as entered; valid once the dialog was accepted.
    ArchiveSettings Settings() const;
    // Takes the settings only when the address can be used; otherwise says why and stays open.
    void accept() override;

    QCheckBox *keepRead() const { return m_keep; }
    QLineEdit *address() const { return m_address; }
    QLabel *problem() const { return m_problem; }

private:
    QCheckBox *m_keep;
    QLineEdit *m_address;
    QLabel *m_problem;
};

} // namespace kalvo::archive::ui
