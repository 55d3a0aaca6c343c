// The archive on a thread of its own, so that a slow database server never stops a window: jobs
// run there one after another, in the order they were asked for, and their results come back to
// the main thread.
#pragma once

#include "ArchiveLocation.h"

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

class QThread;

namespace kalvo::archive {

class Archive;

class ArchiveSession : public QObject {
    Q_OBJECT
public:
    using Failed = std::function<void(const QString &)>;

    explicit ArchiveSession(QObject *parent = nullptr);
    // Waits a moment for the job that runs; one still running then (a server that does not
    // answer) finishes on its own thread, its result dropped, and the connection closes after it.
    ~ArchiveSession() override;

    // Opens `target` on the session's thread, in place of the archive open before. Until it is
    // open every job waits; when it cannot be opened, every job's `failed` receives the reason.
    void Open(const ArchiveTarget &target);

    // Runs `job(Archive &)` on the session's thread; then `done(result)` (or `done()` for a job
    // without a result) runs on the main thread, or `failed(message)` when the job threw. Neither
    // runs once `receiver`, an object of the main thread, is gone.
    template <typename Job, typename Done> void Ask(QObject *receiver, Job job, Done done, Failed failed)
    {
        Post(receiver,
             Answering([job = std::move(job)](Archive *archive) { return job(*archive); }, std::move(done)),
             std::move(failed), true);
    }

    // Runs `job()`, which needs no open archive (it opens its own), the same way.
    template <typename Job, typename Done> void Run(QObject *receiver, Job job, Done done, Failed failed)
    {
        Post(receiver, Answering([job = std::move(job)](Archive *) { return job(); }, std::move(done)),
             std::move(failed), false);
    }

    // Jobs asked for and not yet answered.
    bool busy() const { return m_pending > 0; }

signals:
    // The first job was asked for, or the last one answered.
    void busyChanged(bool busy);

private:
    struct Worker;
    using Work = std::function<std::function<void()>(Archive *)>;
    // The work of `call`: it runs `call` and hands back what passes its result to `done`.
    template <typename Call, typename Done> static Work Answering(Call call, Done done)
    {
        return [call = std::move(call), done = std::move(done)](Archive *archive) -> std::function<void()> {
            if constexpr (std::is_void_v<std::invoke_result_t<Call &, Archive *>>) {
                call(archive);
                return done;
            } else {
                auto result = call(archive);
                return [done, result = std::move(result)] { done(result); };
            }
        };
    }
    void Post(QObject *receiver, Work work, Failed failed, bool needsArchive);
    void Answered();

    QThread *m_thread;
    std::shared_ptr<Worker> m_worker; // used on the session's thread only
    QObject *m_context;               // lives on the session's thread
    int m_pending = 0;
};

} // namespace kalvo::archive
