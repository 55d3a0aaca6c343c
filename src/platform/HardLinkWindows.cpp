// Hard links on Windows (NTFS).
#include "FileSystem.h"

#include <QDir>
#include <windows.h>

namespace kalvo::platform {

bool HardLink(const QString &from, const QString &to)
{
    return ::CreateHardLinkW(reinterpret_cast<LPCWSTR>(QDir::toNativeSeparators(to).utf16()),
                             reinterpret_cast<LPCWSTR>(QDir::toNativeSeparators(from).utf16()), nullptr) != 0;
}

} // namespace kalvo::platform
