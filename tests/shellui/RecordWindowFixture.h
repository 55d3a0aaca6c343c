// The record window over the built-in virtual tester, as the main window opens it.
#pragma once

#include "WindowFixture.h"
#include "gui/DeviceThread.h"
#include "link/Link.h"

#include <QAction>
#include <QApplication>
#include <QListWidget>
#include <QMainWindow>
#include <QPlainTextEdit>

namespace kalvo::testing {

class RecordWindowTest : public WindowFixture {
protected:
    // The record window over the virtual tester, the accessory in front of it when `kym`.
    QMainWindow &OpenRecords(const QStringList &faults = {}, bool kym = false)
    {
        Open({QStringLiteral("--simulate")}, faults);
        if (kym) {
            WaitUntil([&] { return m_tester.load() != nullptr; });
            m_window->device().RunAndWait(
                [this](link::Link &) { m_tester.load()->model().setKymInFront(true); });
        }
        EXPECT_TRUE(ConnectToSimulator());
        m_window->findChild<QAction *>(QStringLiteral("protokolle"))->trigger();
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->objectName() == QLatin1String("FRMProt"))
                m_records = qobject_cast<QMainWindow *>(w);
        EXPECT_NE(m_records, nullptr);
        return *m_records;
    }
    void Trigger(const char *name) { TriggerIn(*m_records, name); }
    QListWidget *List() { return m_records->findChild<QListWidget *>(QStringLiteral("lb1")); }
    QString Report()
    {
        return m_records->findChild<QPlainTextEdit *>(QStringLiteral("Protokol"))->toPlainText();
    }
    QString Path(const char *name) { return m_dir.filePath(QString::fromLatin1(name)); }

    QMainWindow *m_records = nullptr;
};

} // namespace kalvo::testing
