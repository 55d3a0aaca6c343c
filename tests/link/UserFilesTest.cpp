// Where files of the program's folder or the current folder go when that folder is read-only.
#include "link/UserFiles.h"
#include "support/ScriptedPrompter.h"

#include <QDir>
#include <QFileInfo>
#include <QSysInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kalvo;

namespace {

// XDG_DATA_HOME pointed at a new folder while the object lives.
class DataHome {
public:
    DataHome() : m_before(qgetenv("XDG_DATA_HOME"))
    {
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_dir.path()));
    }
    ~DataHome() { qputenv("XDG_DATA_HOME", m_before); }
    QString kalvo() const { return m_dir.filePath(QStringLiteral("kalvo")); }

private:
    QTemporaryDir m_dir;
    QByteArray m_before;
};

} // namespace

TEST(UserFiles, AFolderNobodyMayWriteSendsTheFileToTheDataFolderAndSaysSoOnce)
{
    // Not even root creates files in Linux's /proc: the test holds whoever runs it. Elsewhere (under
    // wine, /proc is a folder of the Z: drive) it proves nothing, and the data folder is not
    // XDG_DATA_HOME's.
    if (QSysInfo::kernelType() != QLatin1String("linux") || !QFileInfo(QStringLiteral("/proc/self")).isDir())
        GTEST_SKIP() << "no Linux /proc here";
    const DataHome home;
    QTemporaryDir writable;
    const link::FilePlace stays = link::PlaceFile(writable.path(), QStringLiteral("log.tmp"));
    EXPECT_EQ(stays.path, writable.filePath(QStringLiteral("log.tmp")));
    EXPECT_FALSE(stays.moved());
    EXPECT_EQ(link::MovedNote(stays), QString());
    EXPECT_EQ(QDir(writable.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList()); // the probe leaves nothing behind
    EXPECT_FALSE(QFileInfo::exists(home.kalvo()));

    const link::FilePlace moved = link::PlaceFile(QStringLiteral("/proc"), QStringLiteral("proto.txt"));
    EXPECT_EQ(moved.path, QDir(home.kalvo()).filePath(QStringLiteral("proto.txt")));
    EXPECT_TRUE(QFileInfo(home.kalvo()).isDir()); // made on demand
    EXPECT_EQ(link::MovedNote(moved),
              QStringLiteral("proto.txt: /proc ist nicht beschreibbar, die Datei liegt in ") + home.kalvo());
    EXPECT_EQ(link::PlaceFile(QStringLiteral("/proc/proto.txt")).path, moved.path);

    kalvo::testing::ScriptedPrompter prompter;
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(link::PlaceFileAndSay(prompter, QStringLiteral("/proc"), QStringLiteral("test.txt")),
                  QDir(home.kalvo()).filePath(QStringLiteral("test.txt")));
    EXPECT_EQ(prompter.messages.size(), 1u);
}
