// A private PostgreSQL server for tests: its own cluster in a temporary folder, reachable only over a
// Unix socket there, started from the system's postgresql binaries and stopped when the tests end.
#include "PostgresCluster.h"

#include "platform/Users.h"

#include <QCollator>
#include <QDir>
#include <QOperatingSystemVersion>
#include <QProcess>
#include <QUrl>

#include <memory>

namespace kalvo::testing {

namespace {

const QString kUser = QStringLiteral("kalvo");
constexpr int kPort = 5432; // only names the socket file; there is no network listener

// The newest server version installed (Debian keeps each in /usr/lib/postgresql/VERSION/bin).
QString ServerBinaries()
{
    QStringList versions =
        QDir(QStringLiteral("/usr/lib/postgresql")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QCollator numeric;
    numeric.setNumericMode(true);
    std::sort(versions.begin(), versions.end(), numeric);
    for (auto it = versions.crbegin(); it != versions.crend(); ++it) {
        const QString bin = QStringLiteral("/usr/lib/postgresql/%1/bin").arg(*it);
        if (QFile::exists(bin + QStringLiteral("/initdb")))
            return bin;
    }
    return {};
}

} // namespace

bool PostgresCluster::Available()
{
    return QOperatingSystemVersion::currentType() != QOperatingSystemVersion::Windows;
}

PostgresCluster &PostgresCluster::Shared()
{
    static PostgresCluster cluster;
    return cluster;
}

PostgresCluster::PostgresCluster()
{
    m_bin = ServerBinaries();
    if (m_bin.isEmpty()) {
        m_error = QStringLiteral("kein PostgreSQL-Server in /usr/lib/postgresql (Paket postgresql)");
        return;
    }
    if (!m_dir.isValid()) {
        m_error = QStringLiteral("kein temporärer Ordner");
        return;
    }
    const QString data = m_dir.filePath(QStringLiteral("data"));
    const QString socket = m_dir.filePath(QStringLiteral("socket"));
    QDir().mkpath(data);
    QDir().mkpath(socket);
    if (platform::RunningAsSuperUser()) {
        // As root (CI), the server runs as "nobody", which must own its folders.
        const std::optional<platform::UserIds> nobody = platform::FindUser(QStringLiteral("nobody"));
        if (!nobody) {
            m_error = QStringLiteral("als root gestartet, aber es gibt keinen Benutzer nobody");
            return;
        }
        QFile(m_dir.path())
            .setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup |
                            QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther);
        for (const QString &dir : {data, socket})
            if (!platform::GiveTo(dir, *nobody)) {
                m_error = QStringLiteral("chown %1 fehlgeschlagen").arg(dir);
                return;
            }
        m_runAs = {QStringLiteral("setpriv"), QStringLiteral("--reuid=%1").arg(nobody->user),
                   QStringLiteral("--regid=%1").arg(nobody->group), QStringLiteral("--clear-groups"),
                   QStringLiteral("--")};
    }
    if (!Run(m_bin + QStringLiteral("/initdb"),
             {QStringLiteral("-D"), data, QStringLiteral("-U"), kUser, QStringLiteral("--auth=trust"),
              QStringLiteral("--no-sync"), QStringLiteral("-E"), QStringLiteral("UTF8"),
              QStringLiteral("--locale=C")},
             true))
        return;
    const QString options =
        QStringLiteral("-k %1 -p %2 -c listen_addresses='' -c fsync=off -c max_connections=50")
            .arg(socket)
            .arg(kPort);
    m_started = Run(m_bin + QStringLiteral("/pg_ctl"),
                    {QStringLiteral("-D"), data, QStringLiteral("-l"), socket + QStringLiteral("/server.log"),
                     QStringLiteral("-w"), QStringLiteral("-t"), QStringLiteral("60"), QStringLiteral("-o"),
                     options, QStringLiteral("start")},
                    true);
}

PostgresCluster::~PostgresCluster()
{
    if (m_started)
        Run(m_bin + QStringLiteral("/pg_ctl"),
            {QStringLiteral("-D"), m_dir.filePath(QStringLiteral("data")), QStringLiteral("-m"),
             QStringLiteral("immediate"), QStringLiteral("-w"), QStringLiteral("stop")},
            true);
}

bool PostgresCluster::Run(const QString &program, const QStringList &arguments, bool asServerUser)
{
    QProcess process;
    process.setWorkingDirectory(m_dir.path());
    process.setProcessChannelMode(QProcess::MergedChannels);
    QStringList command = asServerUser ? m_runAs : QStringList();
    command << program << arguments;
    process.start(command.takeFirst(), command);
    if (!process.waitForFinished(90'000)) {
        process.kill();
        process.waitForFinished();
        m_error = QStringLiteral("%1 hängt").arg(program);
        return false;
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        m_error =
            QStringLiteral("%1 fehlgeschlagen: %2").arg(program, QString::fromLocal8Bit(process.readAll()));
        return false;
    }
    return true;
}

QString PostgresCluster::CreateDatabase()
{
    if (!m_started)
        return {};
    const QString name = QStringLiteral("archive%1").arg(++m_databases);
    const QString socket = m_dir.filePath(QStringLiteral("socket"));
    if (!Run(m_bin + QStringLiteral("/createdb"),
             {QStringLiteral("-h"), socket, QStringLiteral("-p"), QString::number(kPort),
              QStringLiteral("-U"), kUser, name},
             false))
        return {};
    // One arg() call: the percent-encoded socket path must not be read as a placeholder.
    return QStringLiteral("postgresql://%1@localhost/%2?port=%3&host=%4")
        .arg(kUser, name, QString::number(kPort), QString::fromLatin1(QUrl::toPercentEncoding(socket)));
}

} // namespace kalvo::testing
