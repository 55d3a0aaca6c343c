// Texts with a number in them, in the form each language uses for that number.
#include "CountedTexts.h"

#include "link/LanguageTable.h"

#include <QStringList>

namespace kalvo::gui {

QString CountedText(const LanguageTexts &forms, qsizetype count, const QString &language)
{
    const QStringList choices = InLanguage(forms, language).split(QLatin1Char('|'));
    // French counts 0 and 1 alike; Czech has a form for 2 to 4; the others one form for 1.
    const std::optional<link::LanguageColumn> column = link::FindLanguage(language);
    const QString code = column ? column->code : QString();
    qsizetype form = 0;
    if (code == QLatin1String("fr"))
        form = count > 1 ? 1 : 0;
    else if (code == QLatin1String("cs"))
        form = count == 1 ? 0 : (count >= 2 && count <= 4 ? 1 : 2);
    else
        form = count == 1 ? 0 : 1;
    return choices.value(std::min(form, choices.size() - 1)).arg(count);
}

} // namespace kalvo::gui
