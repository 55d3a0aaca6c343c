// The source tree keeps its layers: allowed includes only, no folder cycle, no widgets below the windows.
#include "FolderGraph.h"
#include "LayerRules.h"
#include "SourceIncludes.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace kalvo::layering;

namespace {

const SourceTree &Tree()
{
    static const SourceTree tree = ReadSourceTree(QDir(QStringLiteral(KALVO_SOURCE_DIR)).filePath("src"));
    return tree;
}

// "records/ui/RecordWindow.cpp:7: #include "app/MainWindow.h"" for a failure message.
std::string Where(const Include &include)
{
    const QString header = include.quoted ? QLatin1Char('"') + include.header + QLatin1Char('"')
                                          : QLatin1Char('<') + include.header + QLatin1Char('>');
    return QStringLiteral("%1:%2: #include %3\n")
        .arg(include.file)
        .arg(include.line)
        .arg(header)
        .toStdString();
}

} // namespace

TEST(Layering, TheWholeSourceTreeIsRead)
{
    const SourceTree &tree = Tree();
    EXPECT_TRUE(tree.unreadable.isEmpty()) << tree.unreadable.join(' ').toStdString();
    // A wrong source path would make every other check pass on nothing.
    for (const char *file : {"link/Link.h", "app/MainWindow.cpp", "records/print/ReportDocument.cpp"})
        EXPECT_TRUE(tree.files.contains(QLatin1String(file))) << file;
    EXPECT_GT(tree.includes.size(), 100);
}

TEST(Layering, EveryQuotedIncludeFollowsTheLayerTable)
{
    std::string broken;
    for (const Include &include : Tree().includes) {
        if (!include.quoted || include.to == include.from)
            continue;
        const std::optional<QStringList> allowed = AllowedIncludes(include.from);
        if (!allowed)
            broken +=
                "folder " + include.from.toStdString() + " is not in the layer table: " + Where(include);
        else if (!allowed->contains(include.to))
            broken += include.from.toStdString() + " may not include " + include.to.toStdString() + ": " +
                      Where(include);
    }
    EXPECT_TRUE(broken.empty()) << broken;
}

TEST(Layering, TheFolderGraphHasNoCycle)
{
    const QStringList cycle = FindCycle(BuildFolderGraph(Tree().includes));
    EXPECT_TRUE(cycle.isEmpty()) << "folders include each other: " << cycle.join(" -> ").toStdString();
}

TEST(Layering, FoldersWithoutWindowsIncludeNoWidgetHeader)
{
    std::string broken;
    for (const Include &include : Tree().includes)
        if (!include.quoted && IsWindowless(include.from) && IsWidgetHeader(include.header))
            broken += Where(include);
    EXPECT_TRUE(broken.empty()) << broken;
}
