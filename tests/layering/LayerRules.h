// Which source folder may include which, and which Qt headers belong to the widget world.
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace kalvo::layering {

// The folders `folder`'s files may include besides their own; nullopt for a folder the table
// does not know (a new folder has to be placed in it first).
std::optional<QStringList> AllowedIncludes(const QString &folder);
// Folders that hold no window and must stay free of widget headers: link/ and the core folders
// (cli/ too: a command line runs without a display).
bool IsWindowless(const QString &folder);
// True for a bracketed header of QtWidgets or QtPrintSupport (<QWidget>, <QtWidgets/QLabel>, ...).
bool IsWidgetHeader(const QString &header);

} // namespace kalvo::layering
