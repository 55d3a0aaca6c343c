// Builds the main window over the built-in virtual tester, in a directory of its own.
#pragma once

#include "DialogAnswerer.h"
#include "app/MainWindow.h"
#include "sim/PortTransport.h"

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QTemporaryDir>
#include <atomic>
#include <gtest/gtest.h>
#include <memory>

namespace kalvo::testing {

class WindowFixture : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_previousDir = QDir::currentPath();
        QDir::setCurrent(m_dir.path());
    }
    void TearDown() override
    {
        m_window.reset();
        QDir::setCurrent(m_previousDir);
    }

    // The window as kalvo starts it; `faults` are put into the virtual tester (e.g. "silence").
    app::MainWindow &Open(const QStringList &arguments = {QStringLiteral("--simulate")},
                          const QStringList &faults = {})
    {
        app::Startup startup;
        startup.switches = shell::ParseSwitches(arguments);
        startup.settings = shell::ReadSettings();
        startup.programDir = m_programDir;
        startup.transportFactory = [this, faults] {
            auto transport = std::make_unique<sim::PortTransport>();
            for (const QString &fault : faults)
                transport->tester().faults().add(fault);
            m_tester = &transport->tester();
            return transport;
        };
        m_window = std::make_unique<app::MainWindow>(startup);
        m_window->show();
        return *m_window;
    }

    // Presses OK on the settings frame and waits for the identification to be shown.
    bool ConnectToSimulator()
    {
        if (!WaitUntil([this] { return !m_window->device().busy(); }))
            return false;
        bool done = false;
        // The connection must not outlive `done`: later identifications emit the signal again.
        const QMetaObject::Connection connection =
            QObject::connect(m_window.get(), &app::MainWindow::identified, [&done] { done = true; });
        auto *ok = m_window->findChild<QWidget *>(QStringLiteral("activate"));
        QMetaObject::invokeMethod(ok, "click");
        const bool identified = WaitUntil([&] { return done; });
        QObject::disconnect(connection);
        // The identification is shown while its job still runs; until that job is over the
        // windows' device actions are disabled, and a test that acts at once would find them so.
        return identified && Idle();
    }

    // The lines the tester received from the `from`-th on, read on the device thread.
    QList<QByteArray> LinesSince(qsizetype from)
    {
        QList<QByteArray> lines;
        m_window->device().RunAndWait([&](link::Link &) {
            const auto &received = m_tester.load()->receivedLines();
            for (qsizetype i = from; i < received.size(); ++i)
                lines << received[i].bytes;
        });
        return lines;
    }
    bool Idle()
    {
        return WaitUntil([this] { return !m_window->device().busy(); });
    }
    // Chooses the entry `name` of `window` as a user would once the device is idle (a disabled
    // entry does nothing), and waits for what it started.
    void TriggerIn(QWidget &window, const char *name)
    {
        EXPECT_TRUE(Idle());
        auto *action = window.findChild<QAction *>(QString::fromLatin1(name));
        ASSERT_NE(action, nullptr) << name;
        EXPECT_TRUE(action->isEnabled()) << name;
        action->trigger();
        EXPECT_TRUE(Idle());
    }
    // Chooses the main window's menu entry `name` and waits for what it started.
    void Trigger(const char *name) { TriggerIn(*m_window, name); }

    // Saves a picture of `widget` next to the test programs, for a person to look at.
    static QString Screenshot(QWidget &widget, const QString &name)
    {
        QDir dir(QCoreApplication::applicationDirPath());
        dir.mkpath(QStringLiteral("screenshots"));
        const QString path = dir.filePath(QStringLiteral("screenshots/%1.png").arg(name));
        // Under a real display (Xvfb) the picture comes from the screen itself, not from a render:
        // bring the window up and let it paint first.
        widget.raise();
        WaitUntil([] { return false; }, 300);
        if (QGuiApplication::platformName() == QLatin1String("offscreen"))
            widget.grab().save(path);
        else
            widget.screen()->grabWindow(widget.winId()).save(path);
        return path;
    }

    QTemporaryDir m_dir;
    QString m_previousDir;
    // sprachen.TXT and the help pages, beside the test programs as beside kalvo; asked of the
    // running program, since a path fixed at build time is no path on another system (wine).
    QString m_programDir = QCoreApplication::applicationDirPath();
    std::unique_ptr<app::MainWindow> m_window;
    std::atomic<sim::VirtualTester *> m_tester{nullptr};
    DialogAnswerer m_dialogs;
};

} // namespace kalvo::testing
