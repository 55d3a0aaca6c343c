// The windows' own texts exist in every language of the program and keep their placeholders.
#include "gui/Phrases.h"
#include "link/LanguageTable.h"

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
