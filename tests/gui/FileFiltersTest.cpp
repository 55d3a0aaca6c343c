// The program's file filters in Qt's form, the suffix a filter implies and the names it completes.
#include "gui/FileFilters.h"

#include <gtest/gtest.h>

using namespace kalvo::gui;

namespace {
const QString kCsvFilter = QStringLiteral("CSV (*.csv)|*.csv|Ascii file (*.txt)|*.txt|(*.*)|*.*");
} // namespace

TEST(FileFilters, PipeSeparatedFiltersBecomeQtFilters)
{
    const struct {
        const char *filter;
        const char *qt;
    } cases[] = {
        {"Ascii file (*.cal)|*.cal|(*.*)|*.*", "Ascii file (*.cal);;(*.*)"},
        {"Report|*.pdf", "Report (*.pdf)"},           // a label without its pattern gets it
        {"Ascii file (*.txt)", "Ascii file (*.txt)"}, // already Qt's form
        {"CSV (*.csv)|*.csv|Ascii file (*.txt)|*.txt|(*.*)|*.*", "CSV (*.csv);;Ascii file (*.txt);;(*.*)"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(QtFileFilter(QString::fromUtf8(c.filter)), QString::fromUtf8(c.qt)) << c.filter;
}

TEST(FileFilters, TheFirstPatternWithASuffixNamesIt)
{
    const struct {
        QString filter;
        const char *suffix;
    } cases[] = {
        {QStringLiteral("Ascii file (*.txt)"), "txt"},
        {QStringLiteral("Report (*.pdf)"), "pdf"},
        {QtFileFilter(kCsvFilter), "csv"},
        {QStringLiteral("Records (*.TXT *.csv)"), "TXT"},
        {QStringLiteral("(*.*)"), ""},
        {QStringLiteral("All (*)"), ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(FilterSuffix(c.filter), QLatin1String(c.suffix)) << c.filter.toStdString();
}

TEST(FileFilters, ANameWithoutSuffixGetsTheFiltersOne)
{
    const struct {
        const char *path;
        QString filter;
        const char *result;
    } cases[] = {
        {"bericht", QStringLiteral("Ascii file (*.txt)"), "bericht.txt"},
        {"bericht.pdf", QStringLiteral("Ascii file (*.txt)"), "bericht.pdf"},
        {"a.b/bericht", QStringLiteral("Ascii file (*.txt)"), "a.b/bericht.txt"}, // the dot is the folder's
        {"/tmp/a.b/bericht.csv", QStringLiteral("Ascii file (*.txt)"), "/tmp/a.b/bericht.csv"},
        {"bericht", QStringLiteral("(*.*)"), "bericht"},
        {"bericht", QtFileFilter(kCsvFilter), "bericht.csv"},
        {"", QStringLiteral("Ascii file (*.txt)"), ""}, // no name chosen stays no name
    };
    for (const auto &c : cases)
        EXPECT_EQ(WithFilterSuffix(QLatin1String(c.path), c.filter), QLatin1String(c.result)) << c.path;
}
