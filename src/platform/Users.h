// Who the process runs as: its account's name (who changed the archive), and for helpers that must
// not run as the superuser (a database server started by the tests).
#pragma once

#include <QString>
#include <optional>

namespace kalvo::platform {

struct UserIds {
    unsigned user = 0;
    unsigned group = 0;
};

// The name of the account the process runs as; empty when the system cannot say.
QString CurrentUserName();
// True when running as root; Windows has no such user.
bool RunningAsSuperUser();
// The ids of the account `name`, if there is one.
std::optional<UserIds> FindUser(const QString &name);
// Gives the file or folder to the account; false when that failed.
bool GiveTo(const QString &path, UserIds ids);

} // namespace kalvo::platform
