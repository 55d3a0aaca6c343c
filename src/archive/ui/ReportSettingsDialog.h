// Who issues the signed reports: company, address, logo and inspector, kept in the user settings.
#pragma once

#include "archive/ReportSettings.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace kalvo::archive::ui {

class ReportSettingsDialog : public QDialog {
    Q_OBJECT
public:
    ReportSettingsDialog(const ReportSettings &current, const QString &language, QWidget *parent);

    // The settings as entered; valid once the dialog was accepted.
    ReportSettings Settings() const;
    // Takes the settings only when the logo (if one is named) can be read; otherwise says why and
    // stays open.
    void accept() override;

    QLineEdit *company() const { return m_company; }
    QPlainTextEdit *address() const { return m_address; }
    QLineEdit *logo() const { return m_logo; }
    QLineEdit *inspector() const { return m_inspector; }
    QLabel *problem() const { return m_problem; }

private:
    void ChooseLogo();

    QLineEdit *m_company;
    QPlainTextEdit *m_address;
    QLineEdit *m_logo;
    QLineEdit *m_inspector;
    QLabel *m_problem;
};

} // namespace kalvo::archive::ui
