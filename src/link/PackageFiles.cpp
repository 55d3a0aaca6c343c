// The file names of an update package, and which display language uses which language files.
#include "PackageFiles.h"

#include <array>

namespace kalvo::link {

TesterLanguage LanguageForCode(int code)
{
    static const std::array<TesterLanguage, 7> kLanguages = {{
        {0, QStringLiteral("deutsch"), QStringLiteral("deutsch"), QStringLiteral("ge")},
        {1, QStringLiteral("english"), QStringLiteral("englisch"), QStringLiteral("gb")},
        {2, QStringLiteral("nederlandske"), QStringLiteral("nederlandske"), QStringLiteral("nl")},
        {3, QStringLiteral("france"), QStringLiteral("französisch"), QStringLiteral("fr")},
        {4, QStringLiteral("italiano"), QStringLiteral("italienisch"), QStringLiteral("it")},
        {5, QStringLiteral("spain"), QStringLiteral("spain"), QStringLiteral("es")},
        {6, QStringLiteral("tschech"), QStringLiteral("tschechisch"), QStringLiteral("ts")},
    }};
    if (code < 0 || code >= static_cast<int>(kLanguages.size()))
        return kLanguages[1];
    return kLanguages[static_cast<size_t>(code)];
}

PackageFiles PackageFilesFor(const QString &packageCode)
{
    return {QStringLiteral("med.hex"), QStringLiteral("bilder.p"), QStringLiteral("ab%1.p").arg(packageCode),
            QStringLiteral("hlf%1.p").arg(packageCode)};
}

} // namespace kalvo::link
