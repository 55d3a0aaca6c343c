// The #include lines of the source tree, each with the folder of the file it stands in.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace kalvo::layering {

struct Include {
    QString file;   // path below src/, e.g. "records/ui/RecordWindow.cpp"
    int line = 0;   // 1-based
    QString from;   // the file's folder, e.g. "records/ui"
    QString header; // as written between the quotes or brackets
    bool quoted = false;
    QString to; // quoted only: the folder of the header; the file's own folder when it names none
};

// The folder of a path below src/: "records/print/ReportDocument.h" gives "records/print".
QString FolderOf(const QString &path);
// The includes of one file's text; `file` is its path below src/.
QList<Include> IncludesOf(const QString &file, const QByteArray &text);
struct SourceTree {
    QStringList files;      // every .h and .cpp, paths below src/, sorted
    QStringList unreadable; // of those, the ones that could not be opened
    QList<Include> includes;
};
// Every .h and .cpp below `srcDir` and their includes.
SourceTree ReadSourceTree(const QString &srcDir);

} // namespace kalvo::layering
