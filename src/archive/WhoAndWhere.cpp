// Who changes the archive, on which PC, with which kalvo.
#include "WhoAndWhere.h"

#include "platform/Users.h"

#include <QCoreApplication>
#include <QSysInfo>
#include <QtGlobal>

namespace kalvo::archive {

WhoAndWhere CurrentWhoAndWhere()
{
    return {platform::CurrentUserName(), QSysInfo::machineHostName(), QCoreApplication::applicationVersion()};
}

} // namespace kalvo::archive
