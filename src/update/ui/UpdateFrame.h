// The update frame `updateframe`: the file being sent, its progress, start and cancel.
#pragma once

#include <QGroupBox>

class QLabel;
class QProgressBar;
class QPushButton;

namespace kalvo::update::ui {

class UpdateFrame : public QGroupBox {
    Q_OBJECT
public:
    explicit UpdateFrame(QWidget *parent = nullptr);

    // The file on its way (`dlFile`), shown while it is sent.
    void ShowFile(const QString &path);
    void SetProgress(int percent);
    // While a transfer runs neither button can be pressed: a transfer cannot be interrupted.
    void SetBusy(bool busy);
    void SetCaptions(const QString &start, const QString &cancel);

    QPushButton *startButton() const { return m_okupdate; }
    QPushButton *cancelButton() const { return m_updatecancel; }

private:
    QLabel *m_dlFile;
    QProgressBar *m_progress; // ProgressBar1
    QPushButton *m_okupdate, *m_updatecancel;
};

} // namespace kalvo::update::ui
