// Who changes the archive, on which PC, with which kalvo.
#include "WhoAndWhere.h"

#include <QCoreApplication>
#include <QSysInfo>
#include <QtGlobal>

namespace kalvo::archive {

WhoAndWhere CurrentWhoAndWhere()
{
    QString user = qEnvironmentVariable("USER");
    if (user.isEmpty())
        user = qEnvironmentVariable("USERNAME");
    return {user, QSysInfo::machineHostName(), QCoreApplication::applicationVersion()};
}

} // namespace kalvo::archive
