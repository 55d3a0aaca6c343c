// The device thread at the end of the program: it stops even while its worker waits for the window.
#include "gui/DeviceThread.h"
#include "link/Link.h"
#include "link/Transport.h"

#include <QApplication>
#include <QThread>
#include <QTimer>
#include <QWidget>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include <gtest/gtest.h>

using namespace kalvo;

namespace {

// A line with nobody on it: enough for a worker that never sends.
class QuietTransport final : public link::Transport {
public:
    void open(const QString &) override { m_open = true; }
    void close() override { m_open = false; }
    bool isOpen() const override { return m_open; }
    void write(const QByteArray &) override {}
    bool drain(std::chrono::milliseconds) override { return true; }
    QByteArray read(std::chrono::milliseconds) override { return {}; }
    void discardInput() override {}

private:
    bool m_open = false;
};

// Ends the whole run when a test does not finish in time: a deadlock fails instead of hanging.
class Watchdog {
public:
    explicit Watchdog(std::chrono::seconds limit)
        : m_thread([this, limit] {
              const auto until = std::chrono::steady_clock::now() + limit;
              while (!m_done && std::chrono::steady_clock::now() < until)
                  std::this_thread::sleep_for(std::chrono::milliseconds(10));
              if (!m_done) {
                  std::fputs("deadlock: the device thread did not stop\n", stderr);
                  std::_Exit(1);
              }
          })
    {}
    ~Watchdog()
    {
        m_done = true;
        m_thread.join();
    }

private:
    std::atomic<bool> m_done{false};
    std::thread m_thread;
};

} // namespace

TEST(DeviceThread, ClosingWhileTheWorkerWaitsForAMessageOfItsOwnStillEnds)
{
    const Watchdog watchdog(std::chrono::seconds(20));
    std::atomic<bool> asking{false};
    int dialogsClosed = 0;
    // Whatever dialog the stopping thread serves is closed at once, as a person would.
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&] {
        if (QWidget *dialog = QApplication::activeModalWidget()) {
            ++dialogsClosed;
            dialog->close();
        }
    });
    closer.start(10);
    {
        gui::DeviceThread device([] { return std::make_unique<QuietTransport>(); });
        device.Post(nullptr, QStringLiteral("Lesen"), [&](link::Link &, link::Prompter &prompter) {
            asking = true;
            prompter.message(QStringLiteral("Leitung verloren"), link::Prompter::Icon::Critical);
        });
        // The worker now waits for this thread, which takes no events until it closes the thread.
        while (!asking)
            QThread::msleep(1);
        QThread::msleep(50);
    }
    EXPECT_EQ(dialogsClosed, 1);
}
