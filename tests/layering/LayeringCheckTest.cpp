// The checker itself: how includes are read and folders found, what counts as a cycle or a widget header.
#include "FolderGraph.h"
#include "LayerRules.h"
#include "SourceIncludes.h"

#include <gtest/gtest.h>

using namespace kalvo::layering;

TEST(LayeringCheck, IncludesMapToTheFolderTheyName)
{
    const QByteArray text = "// One file.\n"
                            "#include \"RecordWindow.h\"\n"
                            "#  include \"records/print/ReportDocument.h\"\n"
                            "// #include \"app/MainWindow.h\"\n"
                            "#include <QWidget>\n"
                            "  #include \"link/Link.h\" // trailing words\n";
    const QList<Include> includes = IncludesOf(QStringLiteral("records/ui/RecordWindow.cpp"), text);
    const struct {
        int line;
        const char *header;
        bool quoted;
        const char *to;
    } expected[] = {
        {2, "RecordWindow.h", true, "records/ui"},
        {3, "records/print/ReportDocument.h", true, "records/print"},
        {5, "QWidget", false, ""},
        {6, "link/Link.h", true, "link"},
    };
    ASSERT_EQ(includes.size(), std::size(expected));
    for (size_t i = 0; i < std::size(expected); ++i) {
        SCOPED_TRACE(expected[i].header);
        EXPECT_EQ(includes[i].from, QStringLiteral("records/ui"));
        EXPECT_EQ(includes[i].line, expected[i].line);
        EXPECT_EQ(includes[i].header, QLatin1String(expected[i].header));
        EXPECT_EQ(includes[i].quoted, expected[i].quoted);
        EXPECT_EQ(includes[i].to, QLatin1String(expected[i].to));
    }
}

TEST(LayeringCheck, FindsACycleAndNamesItsFolders)
{
    const struct {
        const char *name;
        FolderGraph graph;
        QStringList cycle;
    } cases[] = {
        {"none", {{"app", {"gui", "link"}}, {"gui", {"link"}}}, {}},
        {"two folders", {{"config", {"records"}}, {"records", {"config"}}}, {"config", "records", "config"}},
        {"through three, behind a clean start",
         {{"app", {"shell"}}, {"shell", {"config"}}, {"config", {"records"}}, {"records", {"shell"}}},
         {"shell", "config", "records", "shell"}},
        {"a diamond is no cycle", {{"app", {"gui", "shell"}}, {"gui", {"link"}}, {"shell", {"link"}}}, {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(FindCycle(c.graph), c.cycle);
    }
}

TEST(LayeringCheck, OnlyWidgetAndPrintSupportHeadersCountAsWidgets)
{
    const struct {
        const char *header;
        bool widget;
    } cases[] = {
        {"QWidget", true},          {"QtWidgets/QLabel", true}, {"QtPrintSupport/QPrinter", true},
        {"QMainWindow", true},      {"QAction", true},          {"QtWidgets", true},
        {"QString", false},         {"QPainter", false},        {"QPdfWriter", false},
        {"QGuiApplication", false}, {"QtGui/QFont", false},     {"QWidgetX", false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(IsWidgetHeader(QLatin1String(c.header)), c.widget) << c.header;
}
