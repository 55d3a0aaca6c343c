// Users on Windows: the account's name; no superuser to step down from.
#include "Users.h"

#include <iterator>
#include <windows.h>

namespace kalvo::platform {

QString CurrentUserName()
{
    wchar_t name[257]; // UNLEN + 1
    DWORD size = static_cast<DWORD>(std::size(name));
    if (::GetUserNameW(name, &size) && size > 0)
        return QString::fromWCharArray(name, static_cast<int>(size) - 1); // size counts the closing null
    return qEnvironmentVariable("USERNAME");
}

bool RunningAsSuperUser()
{
    return false;
}

std::optional<UserIds> FindUser(const QString &)
{
    return std::nullopt;
}

bool GiveTo(const QString &, UserIds)
{
    return false;
}

} // namespace kalvo::platform
