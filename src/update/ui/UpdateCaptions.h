// The captions of the update menu in the program's seven languages.
#pragma once

#include <QString>

namespace kalvo::update::ui {

enum class UpdateCaption { Menu, Sequences, Pictures, Help, System, Package, Manual };

// `caption` in `language` (the language table's names); German for a name it does not know.
QString UpdateCaptionText(UpdateCaption caption, const QString &language);

} // namespace kalvo::update::ui
