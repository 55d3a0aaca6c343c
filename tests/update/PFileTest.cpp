// P-files byte for byte: the line code, header and trailer, the size limits, the file and its load.
#include "UpdateScript.h"

#include "../link/LinkFixture.h"
#include "link/Errors.h"
#include "link/ServiceSession.h"
#include "link/TextRules.h"
#include "support/TestFiles.h"
#include "update/PFile.h"
#include "update/PFileLoad.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace kalvo::link;
using namespace kalvo::update;

namespace kalvo::testing {
namespace {

QByteArray Repeated(int count, char c)
{
    return QByteArray(count, c);
}

// A line of `length` characters with no two equal neighbours: it packs to itself.
QByteArray Unpackable(int length)
{
    QByteArray line;
    for (int i = 0; i < length; ++i)
        line += "ab"[i % 2];
    return line;
}

TEST(PFile, LinesPackIntoRunsThatNeverTakeTheLastCharacter)
{
    const struct {
        const char *name;
        QByteArray line;
        QByteArray packed;
    } cases[] = {
        {"empty", "", ""},
        {"one character", "x", "x"},
        {"a pair at the end stays two singles", "xaa", "xaa"},
        {"three at the end: a pair and a single", "xaaa", "xaaa"},
        {"four at the end: a run of three and a single", "xaaaa",
         "x\x03"
         "aa"},
        {"a pair inside", "aab", "aab"},
        {"a run of three inside", "aaab",
         "\x03"
         "ab"},
        {"thirteen, then another: 0x02 stands for 13", Repeated(13, 'a') + "b",
         "\x02"
         "ab"},
        {"twelve and fourteen keep their counts", Repeated(12, 'a') + "b" + Repeated(14, 'c') + "d",
         "\x0C"
         "ab\x0E"
         "cd"},
        {"fourteen at the end: thirteen and the last", Repeated(14, '-'),
         "\x02-"
         "-"},
        {"thirty-one is the longest run", Repeated(31, '=') + "|", "\x1F=|"},
        {"forty split into 31 and 9", Repeated(40, '=') + "|", "\x1F=\x09=|"},
        {"thirty-three at the end: 31, a single, the last", Repeated(33, '='), "\x1F==="},
        {"8-bit characters are packed like any other", "\xC4\xC4\xC4\xC4\xC4\xB3", "\x05\xC4\xB3"},
        {"blanks", "A" + Repeated(20, ' ') + "B", "A\x14 B"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(EscapeBytes(PackLine(c.line)), EscapeBytes(c.packed)) << c.name;
}

TEST(PFile, HeaderBodyAndTrailerStandWhereTheTesterReadsThem)
{
    const QList<QByteArray> lines = {"AB", "", Repeated(5, '*') + "x"};
    const QByteArray body = QByteArray("AB\r") + "\r" + "\x05*x\r";
    const struct {
        int slot;
        char slotByte;
    } cases[] = {{1, '\xC8'}, {2, '\xD0'}, {3, '\xE0'}, {4, '\xF0'}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.slot);
        const PFileBuild build = BuildPFile(lines, c.slot);
        const QByteArray expected = QByteArray("\x89", 1) + char(body.size() + 1) + '\0' + '\0' + c.slotByte +
                                    QByteArray(4, '\0') + body + QByteArray(2, '\0') + "AS 1.40r4\r\n";
        EXPECT_EQ(EscapeBytes(build.bytes), EscapeBytes(expected));
        EXPECT_EQ(build.packedSize, body.size() + 1);
    }
    for (int slot : {0, 5, -1})
        EXPECT_FALSE(SlotByte(slot).has_value()) << slot;
}

TEST(PFile, SizeLimitsDependOnTheSlot)
{
    // One line of n characters packs to n + 1 bytes, so the packed size is n + 2.
    const struct {
        int size;
        int slot;
        bool built;
    } cases[] = {
        {2048, 1, true}, {2049, 1, false}, {2049, 2, true},
        {4096, 4, true}, {4097, 3, false}, {4097, 2, false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(::testing::Message() << c.size << " in slot " << c.slot);
        const PFileBuild build = BuildPFile({Unpackable(c.size - 2)}, c.slot);
        EXPECT_EQ(build.packedSize, c.size);
        EXPECT_EQ(build.bytes.isEmpty(), !c.built);
        if (c.built) {
            EXPECT_EQ(static_cast<unsigned char>(build.bytes[1]), c.size & 0xFF);
            EXPECT_EQ(static_cast<unsigned char>(build.bytes[2]), c.size >> 8);
            EXPECT_EQ(build.bytes.size(), c.size + 8 + 13);
        }
    }
}

TEST(PFile, TheFileNameIsTheTemplatesNameUpToItsFirstDotInCapitals)
{
    const struct {
        const char *templatePath;
        const char *pfile;
    } cases[] = {
        {"/work/1.pr", "/work/1.P"},
        {"/work/vorlage.v2.pr", "/work/VORLAGE.P"},
        {"/work.d/Bericht", "/work.d/BERICHT.P"},
        {"/work/prüf.pr", "/work/PRÜF.P"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(PFileName(QString::fromUtf8(c.templatePath)), QString::fromUtf8(c.pfile));
}

class PFileFiles : public FolderTest {
protected:
    QString Template(const QByteArray &bytes, const QString &name = QStringLiteral("vorlage.pr"))
    {
        return Put(name, bytes);
    }
};

TEST_F(PFileFiles, TemplateLinesEndAtCrLfLfOrCrAndKeepTheirBytes)
{
    const struct {
        const char *name;
        QByteArray bytes;
        QList<QByteArray> lines;
    } cases[] = {
        {"CR LF", "a\r\nb\r\n", {"a", "b"}},
        {"LF", "a\nb\n", {"a", "b"}},
        {"CR", "a\rb\r", {"a", "b"}},
        {"mixed, last line without an end", "a\r\n\nb\rc", {"a", "", "b", "c"}},
        {"LF CR is two line ends", "a\n\rb", {"a", "", "b"}},
        {"empty lines at the end are lines", "a\r\n\r\n\r\n", {"a", "", ""}},
        {"8-bit bytes kept", "\xC9\xCD \x84\xFF\r\n", {"\xC9\xCD \x84\xFF"}},
        {"empty file", "", {}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(ReadTemplateLines(Template(c.bytes)), c.lines) << c.name;
    EXPECT_THROW(ReadTemplateLines(m_dir.filePath(QStringLiteral("none.pr"))), FormatError);
    const QString huge = m_dir.filePath(QStringLiteral("huge.pr"));
    ASSERT_TRUE(MakeLargeFile(huge, kMaxTemplateFileBytes + 1));
    EXPECT_THROW(ReadTemplateLines(huge), FormatError);
}

TEST_F(PFileFiles, ATemplateTooLongForItsSlotMakesNoFileAndKeepsTheOldOne)
{
    const QString path = Template(JoinLines({Unpackable(2100)}));
    ASSERT_TRUE(WriteFile(PFileName(path), "old P-file"));
    ScriptedPrompter prompter;
    EXPECT_FALSE(MakePFile(prompter, path, 1).has_value());
    ASSERT_EQ(prompter.messages.size(), 1u);
    EXPECT_EQ(prompter.messages[0].text, QStringLiteral(" Der File ist zu lang. Kein P-File erzeugt"));
    EXPECT_EQ(ReadFile(PFileName(path)), QByteArray("old P-file"));

    const auto made = MakePFile(prompter, path, 2);
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(made->path, m_dir.filePath(QStringLiteral("VORLAGE.P")));
    EXPECT_EQ(ReadFile(made->path), made->bytes);
    EXPECT_EQ(made->bytes, BuildPFile({Unpackable(2100)}, 2).bytes);
}

// The tester's side of a P-file load up to the bytes.
void ExpectLoadStart(ScriptedTransport &transport)
{
    transport.Expect("\x04\r");
    ExpectSetting(transport, "idn!99");
    ExpectSetting(transport, "kal!ein");
    ExpectSetting(transport, "kal!upd3");
}

TEST_F(PFileFiles, LoadingSendsThePFileThroughThePictureLoaderWithItsPauses)
{
    const QString path =
        Template(JoinLines({"Prüfprotokoll", Repeated(40, '-'), "Gerät: @1", Unpackable(80)}), "3.pr");
    ScriptedLink s;
    ExpectLoadStart(s.transport);
    const PFileBuild build = BuildPFile(ReadTemplateLines(path), 3);
    ExpectStream(s.transport, build.bytes).Reply("\r\nErasing\r\nProgramming\r\n\x11", 2s);
    ExpectRestart(s.transport);
    EXPECT_TRUE(BuildAndLoadPFile(s.link, s.prompter, path, 3));
    EXPECT_TRUE(s.transport.allExpectationsMet());
    const auto &writes = s.transport.writes();
    ASSERT_EQ(writes.size(), 7u);
    EXPECT_EQ(writes[1].at - writes[0].at, 1200ms);  // after EOT CR
    EXPECT_EQ(writes[5].at - writes[4].at, 2s + 1s); // the answer, then a second
    EXPECT_EQ(ReadFile(m_dir.filePath(QStringLiteral("3.P"))), build.bytes);
    EXPECT_TRUE(RisesTo100(s.prompter.progressValues));
    EXPECT_EQ(s.prompter.busyDepth, 0);
}

TEST_F(PFileFiles, AShortPFileIsReportedMissingAndATooLongTemplateLoadsNothing)
{
    {
        // 22 bytes of frame and a few packed lines: not more than 100 bytes.
        const QString path = Template("Kurz\r\n", "1.pr");
        ScriptedLink s;
        ExpectLoadStart(s.transport);
        ExpectRestart(s.transport);
        EXPECT_FALSE(BuildAndLoadPFile(s.link, s.prompter, path, 1));
        EXPECT_TRUE(s.transport.allExpectationsMet());
        ASSERT_EQ(s.prompter.messages.size(), 1u);
        EXPECT_EQ(s.prompter.messages[0].text,
                  QDir::toNativeSeparators(m_dir.filePath("1.P")) + " nicht gefunden");
    }
    {
        const QString path = Template(JoinLines({Unpackable(3000)}), "1.pr");
        ASSERT_TRUE(WriteFile(PFileName(path), BuildPFile({Unpackable(500)}, 1).bytes));
        ScriptedLink s;
        EXPECT_FALSE(BuildAndLoadPFile(s.link, s.prompter, path, 1));
        EXPECT_TRUE(s.transport.writes().empty()) << "the old P-file was loaded";
    }
}

TEST_F(PFileFiles, AControlByteInATemplateIsRefusedWithItsLineAndColumnAndNothingIsSent)
{
    // The tester would take 0x02 to 0x1F as a run count of the packed line.
    const struct {
        QByteArray bytes;
        const char *says;
    } cases[] = {
        {"Kopf\r\nGer\xE4t:\t@1\r\n",
         "Zeile 2: erwartet in Spalte 7 ein Zeichen ab 0x20, nicht das Steuerzeichen 0x09"},
        {"\x02"
         "abc\r\n",
         "Zeile 1: erwartet in Spalte 1 ein Zeichen ab 0x20, nicht das Steuerzeichen 0x02"},
        {"a\r\nb\r\nxyz\x1F",
         "Zeile 3: erwartet in Spalte 4 ein Zeichen ab 0x20, nicht das Steuerzeichen 0x1f"},
        {"ab\x1B[1m\r\n", "Zeile 1: erwartet in Spalte 3"},
        {Unpackable(200) + "\r\n\x0C\r\n", "Zeile 2: erwartet in Spalte 1"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(EscapeBytes(c.bytes).toStdString());
        const QString path = Template(c.bytes, "4.pr");
        ScriptedLink s;
        try {
            BuildAndLoadPFile(s.link, s.prompter, path, 4);
            ADD_FAILURE() << "no FormatError";
        } catch (const FormatError &e) {
            EXPECT_TRUE(e.message().contains(QString::fromUtf8(c.says))) << e.message().toStdString();
            EXPECT_TRUE(e.message().contains(QStringLiteral("4.pr"))) << e.message().toStdString();
        }
        EXPECT_TRUE(s.transport.writes().empty());
        EXPECT_FALSE(QFile::exists(m_dir.filePath(QStringLiteral("4.P"))));
    }
}

TEST_F(PFileFiles, TheLoadersReportIsJudgedAndTheTesterIsRestartedWhateverItSays)
{
    const QString path = Template(JoinLines({Unpackable(200)}), "2.pr");
    const QByteArray bytes = BuildPFile(ReadTemplateLines(path), 2).bytes;
    const struct {
        const char *name;
        std::vector<QByteArray> report; // 300 ms apart after the P-file
        int number;                     // 0: loaded
        const char *says;
    } cases[] = {
        {"taken", {kPackageReport}, 0, ""},
        {"a DC1 closes the erase report", {"Erasing ...\r\n\x11", "... Programming\r\n\x11"}, 0, ""},
        {"refused", {"Vorlage zu lang Protokoll .N\r\n\x11"}, kProtocolErrorNumber, "2.P abgelehnt"},
        {"not erased", {"Checksum error\r\n\x11"}, kEraseReportMissing, "kein Löschen gemeldet"},
        {"programming first", {"ramming\r\n\x11"}, kProgrammingReportMisplaced, "ohne Löschbericht"},
        {"no report at all", {}, 3, "\"rasing\" nach 2.P"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        ExpectLoadStart(s.transport);
        auto &last = ExpectStream(s.transport, bytes);
        for (size_t k = 0; k < c.report.size(); ++k)
            last.Reply(c.report[k], 300ms * (k + 1));
        ExpectRestart(s.transport);
        int number = 0;
        QString message;
        try {
            EXPECT_TRUE(BuildAndLoadPFile(s.link, s.prompter, path, 2));
        } catch (const KalvoError &e) {
            number = e.number();
            message = e.message();
        }
        EXPECT_EQ(number, c.number) << message.toStdString();
        EXPECT_TRUE(message.contains(QString::fromUtf8(c.says))) << message.toStdString();
        if (number != 0)
            EXPECT_TRUE(message.contains(QStringLiteral("Update wiederholen"))) << message.toStdString();
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_EQ(s.link.refusals(), number == kProtocolErrorNumber ? 1 : 0);
    }
}

TEST_F(PFileFiles, ARefusedLoaderGetsNoBytesAndTheTesterIsRestarted)
{
    const QString path = Template(JoinLines({Unpackable(200)}), "2.pr");
    ScriptedLink s;
    s.transport.Expect("\x04\r");
    ExpectSetting(s.transport, "idn!99");
    ExpectSetting(s.transport, "kal!ein");
    s.transport.Expect("kal!upd3\r").Reply("kal!upd3 Protokoll .N\r\n\x11");
    // Not left in configuration mode: the pause and the restart follow as after a load.
    ExpectRestart(s.transport);
    EXPECT_THROW(BuildAndLoadPFile(s.link, s.prompter, path, 2), ProtocolError);
    EXPECT_TRUE(s.transport.allExpectationsMet());
    EXPECT_EQ(s.link.refusals(), 1);
    const auto &writes = s.transport.writes();
    ASSERT_EQ(writes.size(), 6u);
    EXPECT_EQ(writes[4].at - writes[3].at, 1s);
}

} // namespace
} // namespace kalvo::testing
