// Users on Unix.
#include "Users.h"

#include <QFile>
#include <pwd.h>
#include <unistd.h>

namespace kalvo::platform {

QString CurrentUserName()
{
    // The account itself, not $USER: a service or a container may not set it.
    if (const passwd *account = ::getpwuid(::geteuid()))
        return QString::fromLocal8Bit(account->pw_name);
    return qEnvironmentVariable("USER");
}

bool RunningAsSuperUser()
{
    return ::geteuid() == 0;
}

std::optional<UserIds> FindUser(const QString &name)
{
    const passwd *account = ::getpwnam(name.toLocal8Bit().constData());
    if (!account)
        return std::nullopt;
    return UserIds{account->pw_uid, account->pw_gid};
}

bool GiveTo(const QString &path, UserIds ids)
{
    return ::chown(QFile::encodeName(path).constData(), ids.user, ids.group) == 0;
}

} // namespace kalvo::platform
