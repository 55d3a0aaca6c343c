// Qt's own dialogs (file, print, input, message buttons) in the program's language.
#include "QtTranslations.h"

#include "link/LanguageTable.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>
#include <memory>

namespace kalvo::gui {

QString QtLanguageCode(const QString &language)
{
    const std::optional<link::LanguageColumn> column = link::FindLanguage(language);
    return column ? column->code : QStringLiteral("de");
}

bool UseQtTranslations(const QString &language)
{
    static std::unique_ptr<QTranslator> installed;
    auto translator = std::make_unique<QTranslator>();
    const bool found = translator->load(QStringLiteral("qtbase_") + QtLanguageCode(language),
                                        QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    if (installed)
        QCoreApplication::removeTranslator(installed.get());
    installed.reset();
    if (!found)
        return false;
    QCoreApplication::installTranslator(translator.get());
    installed = std::move(translator);
    return true;
}

} // namespace kalvo::gui
