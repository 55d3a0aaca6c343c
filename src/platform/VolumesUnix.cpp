// The volume of a path on Linux: statfs() names the file system.
#include "Volumes.h"

#include <QDir>
#include <QFileInfo>

#ifdef __linux__
#include <sys/vfs.h>
#endif

namespace kalvo::platform {

namespace {

QString NearestExisting(const QString &path)
{
    QFileInfo info(QFileInfo(path).absoluteFilePath());
    while (!info.exists()) {
        const QString parent = info.absolutePath();
        if (parent == info.absoluteFilePath())
            break;
        info = QFileInfo(parent);
    }
    return info.absoluteFilePath();
}

} // namespace

Volume VolumeOf(const QString &path)
{
#ifdef __linux__
    struct statfs fs {};
    if (::statfs(QFile::encodeName(NearestExisting(path)).constData(), &fs) != 0)
        return {};
    return VolumeOfLinuxType(static_cast<quint64>(static_cast<unsigned long>(fs.f_type)));
#else
    Q_UNUSED(NearestExisting);
    Q_UNUSED(path);
    return {};
#endif
}

} // namespace kalvo::platform
