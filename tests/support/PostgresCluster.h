// A private PostgreSQL server for tests: its own cluster in a temporary folder, reachable only over a
// Unix socket there, started from the system's postgresql binaries and stopped when the tests end.
#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace kalvo::testing {

class PostgresCluster {
public:
    // Whether this system can run the private server: Debian's postgresql on Unix; not on Windows,
    // where the tests that need a server skip.
    static bool Available();
    // The cluster of this test process, started on first use.
    static PostgresCluster &Shared();

    PostgresCluster();
    ~PostgresCluster();
    PostgresCluster(const PostgresCluster &) = delete;
    PostgresCluster &operator=(const PostgresCluster &) = delete;

    // False, with the reason in error(), when the server could not be started.
    bool ready() const { return m_error.isEmpty(); }
    const QString &error() const { return m_error; }
    // A new empty database and the archive address that reaches it; empty when it failed (error()).
    QString CreateDatabase();

private:
    bool Run(const QString &program, const QStringList &arguments, bool asServerUser);

    QTemporaryDir m_dir;
    QString m_bin;
    QStringList m_runAs; // the command that drops root for the server (postgres refuses to run as root)
    bool m_started = false;
    int m_databases = 0;
    QString m_error;
};

} // namespace kalvo::testing
