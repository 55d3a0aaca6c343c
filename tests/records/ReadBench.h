// A scripted tester and a file an earlier read left behind, for reads that must leave it alone.
#pragma once

#include "link/LinkFixture.h"
#include "support/TestFiles.h"

#include <QTemporaryDir>

namespace kalvo::testing {

// Bytes an older read left behind, with tester and Windows characters in them.
inline const QByteArray kOldRecordFile = "PALT;M\x81ller;\xfc\xea;$FF\r\nPALT2;$FF\r\n";

struct ReadBench {
    explicit ReadBench(const QString &fileName) : path(dir.filePath(fileName))
    {
        WriteFile(path, kOldRecordFile);
    }
    bool FileUnchanged() const { return ReadFile(path) == kOldRecordFile; }

    QTemporaryDir dir;
    QString path;
    ScriptedLink s;
};

} // namespace kalvo::testing
