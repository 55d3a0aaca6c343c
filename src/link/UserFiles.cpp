// The writability test creates a file: access rights alone miss read-only mounts, and a folder of
// another user can still be writable for its group.
#include "UserFiles.h"

#include "Prompter.h"

#include <QDir>
#include <QFileInfo>
#include <QMutex>
#include <QSet>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace kalvo::link {

namespace {

bool CanCreateFileIn(const QString &folder)
{
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral(".kalvo-probe-XXXXXX")));
    return probe.open();
}

// The note, the first time this program moves the file.
QString Said(Prompter &prompter, const FilePlace &place)
{
    if (place.moved()) {
        static QMutex mutex;
        static QSet<QString> told;
        QMutexLocker lock(&mutex);
        if (!told.contains(place.path)) {
            told.insert(place.path);
            prompter.message(MovedNote(place));
        }
    }
    return place.path;
}

} // namespace

QString UserDataFolder()
{
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return QDir(base).filePath(QStringLiteral("kalvo"));
}

FilePlace PlaceFile(const QString &path)
{
    const QFileInfo info(path);
    if (CanCreateFileIn(info.absolutePath()))
        return {path, QString()};
    const QString data = UserDataFolder();
    QDir().mkpath(data);
    return {QDir(data).filePath(info.fileName()), QDir::toNativeSeparators(info.absolutePath())};
}

FilePlace PlaceFile(const QString &folder, const QString &name)
{
    return PlaceFile(folder.isEmpty() ? name : QDir(folder).filePath(name));
}

QString MovedNote(const FilePlace &place)
{
    if (!place.moved())
        return QString();
    const QFileInfo info(place.path);
    return QStringLiteral("%1: %2 ist nicht beschreibbar, die Datei liegt in %3")
        .arg(info.fileName(), place.wanted, QDir::toNativeSeparators(info.absolutePath()));
}

QString PlaceFileAndSay(Prompter &prompter, const QString &folder, const QString &name)
{
    return Said(prompter, PlaceFile(folder, name));
}

QString PlaceFileAndSay(Prompter &prompter, const QString &path)
{
    return Said(prompter, PlaceFile(path));
}

} // namespace kalvo::link
