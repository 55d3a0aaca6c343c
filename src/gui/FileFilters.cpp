// File dialog filters: the program's pipe-separated form, Qt's form and the suffix they imply.
#include "FileFilters.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QRegularExpression>

namespace kalvo::gui {

QString QtFileFilter(const QString &filter)
{
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList entries;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString label = parts[i];
        if (!label.contains(QLatin1Char('(')))
            label += QStringLiteral(" (%1)").arg(parts[i + 1]);
        entries << label;
    }
    return entries.isEmpty() ? filter : entries.join(QStringLiteral(";;"));
}

QString FilterSuffix(const QString &qtFilter)
{
    // The first pattern of the form "*.ext".
    static const QRegularExpression pattern(QStringLiteral(R"(\*\.([A-Za-z0-9_]+)\b)"));
    return pattern.match(qtFilter).captured(1);
}

QString WithFilterSuffix(const QString &path, const QString &qtFilter)
{
    const QString suffix = FilterSuffix(qtFilter);
    if (path.isEmpty() || suffix.isEmpty() || !QFileInfo(path).suffix().isEmpty())
        return path;
    return path + QLatin1Char('.') + suffix;
}

QFileDialog::Options FileDialogOptions()
{
    if (QGuiApplication::platformName() == QLatin1String("offscreen"))
        return QFileDialog::DontUseNativeDialog;
    return {};
}

} // namespace kalvo::gui
