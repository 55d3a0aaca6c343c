// Who changes the archive, on which PC, with which kalvo: kept with every import and change.
#pragma once

#include <QString>

namespace kalvo::archive {

struct WhoAndWhere {
    QString user;    // the system user (USER, on Windows USERNAME)
    QString host;    // the PC's host name
    QString version; // the program's version, as the program set it
};

WhoAndWhere CurrentWhoAndWhere();

} // namespace kalvo::archive
