// The #include lines of the source tree, each with the folder of the file it stands in.
#include "SourceIncludes.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

namespace kalvo::layering {

QString FolderOf(const QString &path)
{
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : path.left(slash);
}

QList<Include> IncludesOf(const QString &file, const QByteArray &text)
{
    // Only a directive at the start of a line counts: "// #include" is a comment.
    static const QRegularExpression directive(QStringLiteral(R"(^\s*#\s*include\s*(["<])([^">]+)[">])"));
    QList<Include> includes;
    const QString from = FolderOf(file);
    const QList<QByteArray> lines = text.split('\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QRegularExpressionMatch match = directive.match(QString::fromUtf8(lines[i]));
        if (!match.hasMatch())
            continue;
        Include include{file, static_cast<int>(i + 1), from, match.captured(2), match.captured(1) == "\"",
                        {}};
        if (include.quoted) {
            const QString folder = FolderOf(include.header);
            include.to = folder.isEmpty() ? from : folder;
        }
        includes << include;
    }
    return includes;
}

SourceTree ReadSourceTree(const QString &srcDir)
{
    const QDir root(srcDir);
    SourceTree tree;
    QDirIterator it(srcDir, {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        tree.files << root.relativeFilePath(it.next());
    tree.files.sort();
    for (const QString &file : std::as_const(tree.files)) {
        QFile source(root.filePath(file));
        if (source.open(QIODevice::ReadOnly))
            tree.includes << IncludesOf(file, source.readAll());
        else
            tree.unreadable << file;
    }
    return tree;
}

} // namespace kalvo::layering
