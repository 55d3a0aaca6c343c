// What a deletion from the tester's store takes away, said in the program's language.
#pragma once

#include <QString>

namespace kalvo::specdb {

enum class RemovalText {
    KeptFirst,    // the test records are read and archived before anything is deleted
    NotKept,      // the archive is off: what is not in a file is lost
    ReadFailed,   // the test records could not be read: nothing deleted
    KeepFailed,   // %1 why the archive did not take them: nothing deleted
    StoreChanged, // %1 entries now, %2 entries when the store was read: nothing deleted
};

QString RemovalTextIn(RemovalText text, const QString &language);

// "Im Kalvomer werden gelöscht: 14 Prüfprotokolle und 3 Prüfabläufe." (none of a kind: left out)
QString LossInTester(int testRecords, int specifications, const QString &language);

} // namespace kalvo::specdb
