// Which source folder may include which, and which Qt headers belong to the widget world.
#include "LayerRules.h"

namespace kalvo::layering {

namespace {

const char *const kCore = "shell config records records/print modem update specdb archive";

struct Row {
    const char *folder;
    const char *mayInclude; // besides its own folder; "core" stands for kCore
};

// Arrows point down only. A window folder sees the kit, its own subsystem and the link, never
// another subsystem's windows; the composition root sees everything but the command line.
// clang-format off
const Row kTable[] = {
    // folder           may include
    {"platform",        ""},
    {"link",            ""},
    {"shell",           "link core"},
    {"config",          "link core"},
    {"records",         "link core"},
    {"records/print",   "link core"},
    {"modem",           "link core"},
    {"update",          "link core"},
    {"specdb",          "link core"},
    {"archive",         "link core"},
    {"gui",             "link"},
    {"shell/ui",        "gui shell link"},
    {"config/ui",       "gui config link"},
    {"records/ui",      "gui records records/print link"},
    {"modem/ui",        "gui modem link"},
    {"update/ui",       "gui update link"},
    {"specdb/ui",       "gui specdb link"},
    {"archive/ui",      "gui archive records records/print link"},
    {"app",             "gui shell/ui config/ui records/ui modem/ui update/ui specdb/ui archive/ui core link sim"},
    {"cli",             "core link sim"},
};
// clang-format on

QStringList Words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

// Common QtWidgets and QtPrintSupport headers by class name; a header spelled with the module's
// folder is caught by its prefix.
const QStringList kWidgetClasses =
    Words("QApplication QWidget QDialog QMainWindow QAction QMessageBox QFileDialog QInputDialog "
          "QProgressDialog QLabel QPushButton QLineEdit QComboBox QCheckBox QMenu QMenuBar QStatusBar "
          "QLayout QBoxLayout QVBoxLayout QHBoxLayout QGridLayout QTextEdit QPlainTextEdit QListWidget "
          "QTableWidget QProgressBar QPrinter QPrintDialog QtWidgets QtPrintSupport");

} // namespace

std::optional<QStringList> AllowedIncludes(const QString &folder)
{
    for (const Row &row : kTable) {
        if (folder != QLatin1String(row.folder))
            continue;
        // Every folder may use the operating system's seam; it uses none of them.
        QStringList allowed;
        if (folder != QLatin1String("platform"))
            allowed << QStringLiteral("platform");
        for (const QString &word : Words(row.mayInclude))
            allowed << (word == QLatin1String("core") ? Words(kCore) : QStringList{word});
        return allowed;
    }
    return std::nullopt;
}

bool IsWindowless(const QString &folder)
{
    return folder == QLatin1String("platform") || folder == QLatin1String("link") ||
           folder == QLatin1String("cli") || Words(kCore).contains(folder);
}

bool IsWidgetHeader(const QString &header)
{
    return header.startsWith(QLatin1String("QtWidgets/")) ||
           header.startsWith(QLatin1String("QtPrintSupport/")) || kWidgetClasses.contains(header);
}

} // namespace kalvo::layering
