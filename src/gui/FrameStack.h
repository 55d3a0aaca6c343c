// The central area of a main window: one frame at a time, each with a button that leaves it.
#pragma once

#include <QStackedWidget>

class QAbstractButton;
class QPushButton;

namespace kalvo::gui {

class FrameStack : public QStackedWidget {
    Q_OBJECT
public:
    explicit FrameStack(QWidget *parent = nullptr);

    // Adds `frame` (hidden until shown). `ownClose` is the frame's own button that leaves it;
    // a frame without one gets a bar below it with such a button.
    void AddFrame(QWidget *frame, QAbstractButton *ownClose = nullptr);
    // Shows `frame` in place of the one before.
    void ShowFrame(QWidget *frame);
    // Leaves the frame shown: the area stays empty.
    void CloseFrame();
    // The frame shown, nullptr when none is.
    QWidget *shownFrame() const;
    void SetCloseText(const QString &text);

signals:
    void frameClosed(QWidget *frame);

private:
    QWidget *m_empty;
    QList<QPushButton *> m_closeButtons;
};

} // namespace kalvo::gui
