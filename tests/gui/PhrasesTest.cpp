// The windows' own texts exist in every language of the program, keep their placeholders and
// count right; menu entries get Alt letters of their own.
#include "gui/Phrases.h"
#include "gui/Mnemonics.h"
#include "link/LanguageTable.h"

#include <QAction>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

using namespace kalvo;
using gui::Phrase;
using gui::PhraseText;

namespace {

QList<Phrase> AllPhrases()
{
    QList<Phrase> phrases;
    for (int i = 0; i <= static_cast<int>(gui::kLastPhrase); ++i)
        phrases << static_cast<Phrase>(i);
    return phrases;
}

QSet<QString> Placeholders(const QString &text)
{
    static const QRegularExpression placeholder(QStringLiteral("%[1-9]"));
    QSet<QString> found;
    for (const QRegularExpressionMatch &match : placeholder.globalMatch(text))
        found << match.captured();
    return found;
}

} // namespace

TEST(Phrases, EveryPhraseHasATextWithTheSamePlaceholdersInEveryLanguage)
{
    for (const Phrase phrase : AllPhrases()) {
        const QString german = PhraseText(phrase, QStringLiteral("deutsch"));
        for (const link::LanguageColumn &language : link::LanguageColumns()) {
            SCOPED_TRACE(language.name.toStdString() + " phrase " + std::to_string(static_cast<int>(phrase)));
            const QString text = PhraseText(phrase, language.name);
            EXPECT_FALSE(text.trimmed().isEmpty());
            EXPECT_EQ(Placeholders(text), Placeholders(german)) << text.toStdString();
        }
    }
}

TEST(Phrases, EachLanguageHasItsOwnColumn)
{
    // "line lost" is different in each of the seven languages: a language reading another's
    // column shows up as a repeat.
    QSet<QString> words;
    for (const link::LanguageColumn &language : link::LanguageColumns())
        words << PhraseText(Phrase::LineLost, language.name);
    EXPECT_EQ(words.size(), qsizetype(link::LanguageColumns().size()));
    EXPECT_EQ(PhraseText(Phrase::LineLost, QStringLiteral("englisch")), QStringLiteral("line lost"));
}

TEST(Phrases, AnUnknownLanguageGetsGerman)
{
    for (const char *name : {"klingonisch", "", "Englisch", "english"}) {
        SCOPED_TRACE(name);
        for (const Phrase phrase : AllPhrases())
            EXPECT_EQ(PhraseText(phrase, QString::fromUtf8(name)),
                      PhraseText(phrase, QStringLiteral("deutsch")));
    }
}

TEST(Phrases, ACountReadsRightInEveryLanguage)
{
    const std::tuple<const char *, int, const char *> cases[] = {
        {"deutsch", 1, "1 Protokoll gelesen"},
        {"deutsch", 0, "0 Protokolle gelesen"},
        {"deutsch", 2, "2 Protokolle gelesen"},
        {"englisch", 1, "1 record read"},
        {"englisch", 131, "131 records read"},
        {"französisch", 0, "0 procès-verbal lu"}, // French counts nought as one
        {"französisch", 2, "2 procès-verbaux lus"},
        {"italienisch", 1, "1 protocollo letto"},
        {"tschechisch", 1, "Načten 1 protokol"},
        {"tschechisch", 4, "Načteny 4 protokoly"},
        {"tschechisch", 5, "Načteno 5 protokolů"},
        {"tschechisch", 22, "Načteno 22 protokolů"},
        {"nederlandske", 1, "1 protocol gelezen"},
        {"spain", 3, "3 protocolos leídos"},
        {"klingonisch", 1, "1 Protokoll gelesen"},
    };
    for (const auto &[language, count, expected] : cases)
        EXPECT_EQ(gui::CountedPhrase(Phrase::RecordsRead, count, QString::fromUtf8(language)),
                  QString::fromUtf8(expected))
            << language << " " << count;
}

TEST(Mnemonics, EachEntryGetsALetterOfItsOwnAndTitlesShowNone)
{
    QAction file(QStringLiteral("Datei")), data(QStringLiteral("Daten")), same(QStringLiteral("Daten")),
        marked(QStringLiteral("&Ende")), amp(QStringLiteral("Ein & Aus")), empty;
    gui::AssignMnemonics({&file, &data, &same, &marked, &amp, &empty});
    // Word starts first, then any free letter; a mark already there is kept and its letter taken.
    EXPECT_EQ(file.text(), QStringLiteral("&Datei"));
    EXPECT_EQ(data.text(), QStringLiteral("D&aten"));
    EXPECT_EQ(same.text(), QStringLiteral("Da&ten"));
    EXPECT_EQ(marked.text(), QStringLiteral("&Ende"));
    EXPECT_EQ(amp.text(), QStringLiteral("E&in && Aus")); // "e", "a" taken before it
    EXPECT_TRUE(empty.text().isEmpty());
    EXPECT_EQ(gui::WithoutMnemonic(QStringLiteral("&Speichern")), QStringLiteral("Speichern"));
    EXPECT_EQ(gui::WithoutMnemonic(QStringLiteral("R&&D &Test")), QStringLiteral("R&D Test"));
}
