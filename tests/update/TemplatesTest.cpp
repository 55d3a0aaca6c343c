// Print templates read from the tester into ".pr" files, and stored back through a P-file.
#include "UpdateScript.h"

#include "../link/LinkFixture.h"
#include "link/Errors.h"
#include "link/ServiceSession.h"
#include "link/TextRules.h"
#include "support/TestFiles.h"
#include "update/PFile.h"
#include "update/Templates.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace kalvo::link;
using namespace kalvo::update;

namespace kalvo::testing {
namespace {

TEST(Templates, TheTextStartsAfterBackslashVAndKeepsOnlyPrintableBytesAndLineEnds)
{
    const struct {
        const char *name;
        QByteArray answer;
        QByteArray text;
    } cases[] = {
        {"after \\v", "prn?1\\vKopf\r\nZeile\r\n\x11", "Kopf\r\nZeile\r\n"},
        {"closed by .Y", "prn?1 Vorlage 1 \\vKopf\r\nZeile\r\n.Y\r\n\x11", "Kopf\r\nZeile\r\n"},
        {".Y inside the text stays", "prn?1\\va.Y\r\nb\r\n\x11", "a.Y\r\nb\r\n"},
        {"no \\v, closed by .Y without line end", "prn?2 .Y\x11", "prn?2 "},
        {"echo with a blank, in capitals", "PRN? 2\\v@1 @2\n\x11", "@1 @2\n"},
        {"no \\v: the whole answer", "prn?3\r\nText\r\n\x11", "prn?3\r\nText\r\n"},
        {"a second \\v belongs to the text", "prn?0\\va\\vb\x11", "a\\vb"},
        {"bell, tab, ENQ and FF dropped; 8-bit kept", "\\vA\x07\tB\x05\x0C\xC4\x84\xFF\x11",
         "AB\xC4\x84\xFF"},
        {"backslash without v", "prn?4\\x\x11", "prn?4\\x"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(EscapeBytes(TemplateText(c.answer)), EscapeBytes(c.text)) << c.name;
    EXPECT_EQ(TemplateReadCommand(0), QByteArray("prn?0"));
    EXPECT_EQ(TemplateReadCommand(4), QByteArray("prn?4"));
    EXPECT_EQ(TemplateFileName(3), QStringLiteral("3.pr"));
}

TEST(Templates, AReadTheTesterRefusesOrGarblesWritesNoFile)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(TemplateFileName(2));
    ASSERT_TRUE(WriteFile(path, "old template"));
    {
        ScriptedLink s;
        s.transport.Expect("prn?2\r").Reply("prn?2 Protokoll .N\r\n\x11");
        EXPECT_FALSE(SaveTemplateFromTester(s.link, 2, path));
        EXPECT_EQ(ReadFile(path), QByteArray("old template"));
    }
    {
        ScriptedLink s;
        s.transport.Expect("prn?2\r").ReplyByteByByte("prn?2\\vNeu\r\n\x11");
        EXPECT_TRUE(SaveTemplateFromTester(s.link, 2, path));
        EXPECT_EQ(ReadFile(path), QByteArray("Neu\r\n"));
    }
    // Without the marker an answer must be closed by ".Y" to hold a template.
    for (const QByteArray answer : {QByteArray("prn?2.Nx\r\n\x11"), QByteArray("\x8f#q\x03z\x11"),
                                    QByteArray("prn?2\r\nKopf\r\n\x11")}) {
        ScriptedLink s;
        s.transport.Expect("prn?2\r").Reply(answer);
        EXPECT_THROW(SaveTemplateFromTester(s.link, 2, path), FormatError)
            << EscapeBytes(answer).toStdString();
        EXPECT_EQ(ReadFile(path), QByteArray("Neu\r\n"));
    }
    {
        ScriptedLink s;
        s.transport.Expect("prn?2\r").Reply("PRN?2\r\nKopf\r\n.Y\r\n\x11");
        EXPECT_TRUE(SaveTemplateFromTester(s.link, 2, path));
        EXPECT_EQ(ReadFile(path), QByteArray("PRN?2\r\nKopf\r\n"));
    }
    {
        ScriptedLink s;
        s.transport.close();
        EXPECT_FALSE(SaveTemplateFromTester(s.link, 2, path));
        EXPECT_EQ(s.prompter.messages.size(), 1u); // the port is not open
        EXPECT_EQ(ReadFile(path), QByteArray("PRN?2\r\nKopf\r\n"));
    }
}

TEST(Templates, StoringSavesTheTextThenLoadsItsPFile)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("4.pr"));
    QList<QByteArray> lines;
    for (int i = 0; i < 20; ++i)
        lines << "Zeile " + QByteArray::number(i) + " ......";
    const QByteArray text = JoinLines(lines);
    ScriptedLink s;
    s.transport.Expect("\x04\r");
    ExpectSetting(s.transport, "idn!99");
    ExpectSetting(s.transport, "kal!ein");
    ExpectSetting(s.transport, "kal!upd3");
    ExpectStream(s.transport, BuildPFile(lines, 4).bytes).Reply(kPackageReport);
    ExpectRestart(s.transport);
    EXPECT_TRUE(StoreTemplate(s.link, s.prompter, text, path, 4));
    EXPECT_TRUE(s.transport.allExpectationsMet());
    EXPECT_EQ(ReadFile(path), text);
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("4.P"))));
}

} // namespace
} // namespace kalvo::testing
