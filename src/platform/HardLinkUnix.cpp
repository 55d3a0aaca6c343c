// Hard links on Unix.
#include "FileSystem.h"

#include <QFile>
#include <unistd.h>

namespace kalvo::platform {

bool HardLink(const QString &from, const QString &to)
{
    return ::link(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace kalvo::platform
