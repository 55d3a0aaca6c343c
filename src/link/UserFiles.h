// Where the files go that the program keeps beside itself or in the current folder (log.tmp,
// proto.txt, P-files, traces, calibration backups): in that folder while it is writable, else in
// the user's data folder (an installed program's folder is read-only, and so may be the folder a
// technician starts it from).
#pragma once

#include <QString>

namespace kalvo::link {

class Prompter;

// The user's own folder for kalvo's files (~/.local/share/kalvo, %LOCALAPPDATA%\kalvo); kalvo and
// kalvo-cli share it. Not created here.
QString UserDataFolder();

struct FilePlace {
    QString path;   // where the file is read and written
    QString wanted; // the folder it belongs in, when that was not writable; empty when it stays
    bool moved() const { return !wanted.isEmpty(); }
};

// `name` in `folder` (the current folder when empty) when a file can be created there, else in
// UserDataFolder(), which is then created. A path that stays is written as it was given (relative
// stays relative). The same folder gives the same answer, so a file written now is found later.
FilePlace PlaceFile(const QString &folder, const QString &name);
// The same for a path whose folder was chosen by the program (a P-file beside its template).
FilePlace PlaceFile(const QString &path);

// "log.tmp: /usr/lib/kalvo ist nicht beschreibbar, die Datei liegt in /home/u/.local/share/kalvo";
// empty when the file stays where it belongs.
QString MovedNote(const FilePlace &place);

// PlaceFile, and the note through `prompter` the first time this program moves that file.
QString PlaceFileAndSay(Prompter &prompter, const QString &folder, const QString &name);
QString PlaceFileAndSay(Prompter &prompter, const QString &path);

} // namespace kalvo::link
