// Users on Windows: no superuser to step down from.
#include "Users.h"

namespace kalvo::platform {

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
