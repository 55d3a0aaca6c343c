// Texts of the program's own in the seven languages, and counted nouns.
#include "TextsInLanguage.h"

#include "LanguageTable.h"

#include <QStringList>

namespace kalvo::link {

QString InLanguage(const LanguageTexts &texts, const QString &language)
{
    const std::optional<LanguageColumn> column = FindLanguage(language);
    return QString::fromUtf16(texts[column ? static_cast<size_t>(column->column - 1) : 0]);
}

QString CountedNoun(int count, const LanguageTexts &forms, const QString &language)
{
    const QStringList cell = InLanguage(forms, language).split(QLatin1Char('|'));
    // Three forms: one, a few (2 to 4), many; two forms: one, more. Zero takes the plural.
    qsizetype form = count == 1 ? 0 : 1;
    if (cell.size() == 3 && (count == 0 || count >= 5))
        form = 2;
    return QStringLiteral("%1 %2").arg(count).arg(cell.value(form, cell.constLast()));
}

} // namespace kalvo::link
