// File names and links as the operating systems see them.
#pragma once

#include <QString>

namespace kalvo::platform {

// True for the names Windows keeps for devices (CON, PRN, AUX, NUL, COM1..COM9, LPT1..LPT9, in
// any case, with or without an extension, trailing blanks and dots ignored): a file of that name
// cannot be made there. Checked on every system, since files travel between PCs.
bool IsReservedFileName(const QString &fileName);
// A second name for the file `from` at `to` on the same volume; false where that cannot be made.
bool HardLink(const QString &from, const QString &to);

} // namespace kalvo::platform
