// File dialog filters: the program's pipe-separated form, Qt's form and the suffix they imply.
#pragma once

#include <QFileDialog>
#include <QString>

namespace kalvo::gui {

// Qt's file filter form from the pipe-separated one ("Ascii file (*.cal)|*.cal|(*.*)|*.*").
QString QtFileFilter(const QString &filter);
// The suffix a filter implies: "pdf" for "Report (*.pdf)"; empty for "*.*" or "*".
QString FilterSuffix(const QString &qtFilter);
// `path` with the suffix of `qtFilter` ("Report (*.pdf)" gives ".pdf") when its file name has
// none; unchanged when it has one or the filter takes any name ("*.*", "*").
QString WithFilterSuffix(const QString &path, const QString &qtFilter);
// Qt's own dialog where a test must be able to answer it (the offscreen display).
QFileDialog::Options FileDialogOptions();

} // namespace kalvo::gui
