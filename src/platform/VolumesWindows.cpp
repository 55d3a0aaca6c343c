// The volume of a path on Windows: a UNC path (\\server\share) or a mapped network drive.
#include "Volumes.h"

#include <QDir>
#include <QFileInfo>
#include <windows.h>

namespace kalvo::platform {

Volume VolumeOf(const QString &path)
{
    const QString native = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    if (native.startsWith(QLatin1String("\\\\")) && !native.startsWith(QLatin1String("\\\\?\\")) &&
        !native.startsWith(QLatin1String("\\\\.\\")))
        return {true, QStringLiteral("Netzwerkfreigabe")};
    wchar_t root[MAX_PATH + 1] = {};
    if (!::GetVolumePathNameW(reinterpret_cast<LPCWSTR>(native.utf16()), root, MAX_PATH))
        return {};
    if (::GetDriveTypeW(root) == DRIVE_REMOTE)
        return {true, QStringLiteral("Netzlaufwerk")};
    return {};
}

} // namespace kalvo::platform
