// Qt's own dialogs (file, print, input, message buttons) in the program's language.
#pragma once

#include <QString>

namespace kalvo::gui {

// The locale code Qt's translations use for a language of the language table ("deutsch" → "de").
QString QtLanguageCode(const QString &language);
// Replaces the Qt translation in use by that of `language`, from the system's Qt translations
// folder. False when there is none (Qt's dialogs then speak English).
bool UseQtTranslations(const QString &language);

} // namespace kalvo::gui
