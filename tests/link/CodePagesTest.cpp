// The tester's code page 437 and the PC files' Windows-1252: every byte both ways, on every system.
#include "link/CodePages.h"
#include "link/TextRules.h"

#include <QSet>
#include <QStringDecoder>
#include <gtest/gtest.h>

using namespace kalvo::link;

namespace {

QByteArray AllBytes()
{
    QByteArray bytes;
    for (int b = 0; b < 256; ++b)
        bytes += static_cast<char>(b);
    return bytes;
}

const struct {
    CodePage page;
    const char *name; // as Qt's ICU codecs know it
} kPages[] = {{CodePage::Ibm437, "IBM437"}, {CodePage::Windows1252, "windows-1252"}};

TEST(CodePages, EveryByteIsOneCharacterOfItsOwnAndComesBackAsItself)
{
    for (const auto &p : kPages) {
        const QString all = DecodeCodePage(p.page, AllBytes());
        ASSERT_EQ(all.size(), 256) << p.name;
        EXPECT_EQ(QSet<QChar>(all.cbegin(), all.cend()).size(), 256) << p.name;
        for (int b = 0; b < 256; ++b)
            EXPECT_EQ(CodePageByte(p.page, all[b].unicode()), static_cast<char>(b))
                << p.name << " byte " << b;
        EXPECT_EQ(EncodeCodePage(p.page, all), AllBytes()) << p.name;
    }
}

// Where Qt has the codecs (Linux, with ICU) the tables must read every byte of 128 and above as
// they do; below 128 ICU's code page 437 trades 26, 28 and 127 around, Windows and we do not.
TEST(CodePages, TheTablesReadEveryByteAsTheSystemsCodec)
{
    for (const auto &p : kPages) {
        QStringDecoder system(p.name);
        if (!system.isValid())
            GTEST_SKIP() << "no " << p.name << " codec in this Qt";
        for (int b = 128; b < 256; ++b) {
            const QByteArray byte(1, static_cast<char>(b));
            EXPECT_EQ(DecodeCodePage(p.page, byte), QString(system.decode(byte))) << p.name << " byte " << b;
        }
    }
}

TEST(CodePages, TesterTextHasBoxDrawingAndPcTextTheWindowsLetters)
{
    EXPECT_EQ(DecodeTesterText("\xC9\xCD\xBB\xB3\xC4\x8E\xE1\xE6"), QStringLiteral(u"╔═╗│─Äßμ"));
    EXPECT_EQ(DecodePcText("\x80 \xE4\x9F\xB5"), QStringLiteral(u"€ äŸµ"));
    EXPECT_EQ(EncodeTesterText(QStringLiteral(u"╔Ä")), QByteArray("\xC9\x8E"));
    EXPECT_EQ(EncodeCodePage(CodePage::Windows1252, QStringLiteral(u"€│")), QByteArray("\x80?"));
}

} // namespace
