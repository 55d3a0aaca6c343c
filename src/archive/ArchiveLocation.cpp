// Which archive to use: the SQLite file in the user's data folder, or a PostgreSQL server.
#include "ArchiveLocation.h"

#include "ArchiveTypes.h"
#include "link/UserFiles.h"

#include <QDir>
#include <QSettings>
#include <QUrl>
#include <QUrlQuery>

namespace kalvo::archive {

namespace {

const QString kEnabledKey = QStringLiteral("archive/enabled");
const QString kUrlKey = QStringLiteral("archive/url");

constexpr int kSQLiteWaitSeconds = 5;
constexpr int kServerWaitSeconds = 60;
constexpr int kLongestWaitSeconds = 3600;

// "wait=SECONDS" of an address, 0 when it has none.
int WaitFrom(const QUrlQuery &query, const QString &url)
{
    if (!query.hasQueryItem(QStringLiteral("wait")))
        return 0;
    bool ok = false;
    const int seconds = query.queryItemValue(QStringLiteral("wait")).toInt(&ok);
    if (!ok || seconds < 1 || seconds > kLongestWaitSeconds)
        throw ArchiveError(QStringLiteral("Archiv-Adresse \"%1\": wait= braucht Sekunden von 1 bis %2")
                               .arg(url)
                               .arg(kLongestWaitSeconds));
    return seconds;
}

ArchiveTarget PostgresTarget(const QString &url)
{
    const QUrl parsed(url, QUrl::StrictMode);
    if (!parsed.isValid())
        throw ArchiveError(
            QStringLiteral("Archiv-Adresse \"%1\" ist ungültig: %2").arg(url, parsed.errorString()));
    ArchiveTarget target;
    target.kind = ArchiveTarget::Kind::PostgreSQL;
    const QUrlQuery query(parsed);
    target.host = query.hasQueryItem(QStringLiteral("host"))
                      ? query.queryItemValue(QStringLiteral("host"), QUrl::FullyDecoded)
                      : parsed.host();
    target.port = parsed.port(-1);
    if (query.hasQueryItem(QStringLiteral("port")))
        target.port = query.queryItemValue(QStringLiteral("port")).toInt();
    target.database = parsed.path(QUrl::FullyDecoded).mid(1);
    target.user = parsed.userName(QUrl::FullyDecoded);
    target.password = parsed.password(QUrl::FullyDecoded);
    target.waitSeconds = WaitFrom(query, target.Describe());
    if (target.database.isEmpty())
        throw ArchiveError(
            QStringLiteral(
                "Archiv-Adresse \"%1\" nennt keine Datenbank (postgresql://benutzer@rechner/datenbank)")
                .arg(target.Describe()));
    return target;
}

} // namespace

ArchiveError::ArchiveError(const QString &text, const QString &nativeCode)
    : KalvoError(kArchiveErrorNumber, text), m_nativeCode(nativeCode)
{}

int ArchiveTarget::WaitSeconds() const
{
    if (waitSeconds > 0)
        return waitSeconds;
    return kind == Kind::SQLite ? kSQLiteWaitSeconds : kServerWaitSeconds;
}

QString ArchiveTarget::Describe() const
{
    if (kind == Kind::SQLite)
        return QDir::toNativeSeparators(path);
    QString where = user.isEmpty() ? QString() : user + QLatin1Char('@');
    where += host.isEmpty() ? QStringLiteral("localhost") : host;
    if (port >= 0)
        where += QLatin1Char(':') + QString::number(port);
    return QStringLiteral("postgresql://%1/%2").arg(where, database);
}

QSettings UserSettings()
{
    return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("kalvo"),
                     QStringLiteral("kalvo"));
}

ArchiveSettings ReadArchiveSettings()
{
    QSettings settings = UserSettings();
    ArchiveSettings result;
    result.enabled = settings.value(kEnabledKey, true).toBool();
    result.url = settings.value(kUrlKey).toString();
    return result;
}

void WriteArchiveSettings(const ArchiveSettings &settings)
{
    QSettings user = UserSettings();
    user.setValue(kEnabledKey, settings.enabled);
    user.setValue(kUrlKey, settings.url);
}

QString ReadLastCustomer()
{
    return UserSettings().value(QStringLiteral("archive/customer")).toString();
}

void WriteLastCustomer(const QString &customer)
{
    UserSettings().setValue(QStringLiteral("archive/customer"), customer);
}

QString DefaultArchivePath()
{
    // The generic folder, not the program's own: kalvo and kalvo-cli share one archive.
    return QDir(link::UserDataFolder()).filePath(QStringLiteral("archive.sqlite"));
}

ArchiveTarget ParseArchiveUrl(const QString &url)
{
    const QString trimmed = url.trimmed();
    if (trimmed.startsWith(QLatin1String("postgresql://")) ||
        trimmed.startsWith(QLatin1String("postgres://")))
        return PostgresTarget(trimmed);
    ArchiveTarget target;
    if (trimmed.isEmpty())
        target.path = DefaultArchivePath();
    else if (trimmed.startsWith(QLatin1String("sqlite://"))) {
        // Everything up to the query is the file: a Windows path's drive ("sqlite://C:/a.sqlite")
        // is no host.
        const QString rest = trimmed.mid(static_cast<qsizetype>(qstrlen("sqlite://")));
        const qsizetype query = rest.indexOf(QLatin1Char('?'));
        target.path = QUrl::fromPercentEncoding(rest.left(query < 0 ? rest.size() : query).toUtf8());
        target.waitSeconds = WaitFrom(QUrlQuery(query < 0 ? QString() : rest.mid(query + 1)), trimmed);
    } else if (trimmed.contains(QLatin1String("://")))
        throw ArchiveError(
            QStringLiteral("Archiv-Adresse \"%1\": nur postgresql:// und sqlite:// oder ein Dateipfad")
                .arg(trimmed));
    else
        target.path = trimmed;
    if (target.path.isEmpty())
        throw ArchiveError(QStringLiteral("Archiv-Adresse \"%1\" nennt keine Datei").arg(trimmed));
    return target;
}

} // namespace kalvo::archive
