// Texts of the program's own in the seven languages, and texts with a number.
#include "TextsInLanguage.h"

#include "LanguageTable.h"

#include <QStringList>

namespace kalvo::link {

QString InLanguage(const LanguageTexts &texts, const QString &language)
{
    const std::optional<LanguageColumn> column = FindLanguage(language);
    return QString::fromUtf16(texts[column ? static_cast<size_t>(column->column - 1) : 0]);
}

QString CountedText(const LanguageTexts &forms, qsizetype count, const QString &language)
{
    const QStringList choices = InLanguage(forms, language).split(QLatin1Char('|'));
    const std::optional<LanguageColumn> column = FindLanguage(language);
    const QString code = column ? column->code : QString();
    qsizetype form = count == 1 ? 0 : 1;
    if (code == QLatin1String("fr"))
        form = count > 1 ? 1 : 0;
    else if (code == QLatin1String("cs"))
        form = count == 1 ? 0 : (count >= 2 && count <= 4 ? 1 : 2);
    return choices.value(std::min(form, choices.size() - 1)).arg(count);
}

} // namespace kalvo::link
