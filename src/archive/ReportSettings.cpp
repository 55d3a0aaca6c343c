// Who issues the signed reports: the company for the page header and the inspector who signs.
#include "ReportSettings.h"

#include "ArchiveLocation.h"

#include <QDir>
#include <QImageReader>

namespace kalvo::archive {

namespace {

const QString kCompanyKey = QStringLiteral("report/company");
const QString kAddressKey = QStringLiteral("report/address");
const QString kLogoKey = QStringLiteral("report/logo");
const QString kInspectorKey = QStringLiteral("report/inspector");

// A logo is printed some centimetres wide; a picture larger than this is a mistake, not a logo,
// and would only make every report large.
constexpr int kLargestLogoSide = 4000;

} // namespace

ReportSettings ReadReportSettings()
{
    QSettings settings = UserSettings();
    return {settings.value(kCompanyKey).toString(), settings.value(kAddressKey).toString(),
            settings.value(kLogoKey).toString(), settings.value(kInspectorKey).toString()};
}

void WriteReportSettings(const ReportSettings &report)
{
    QSettings settings = UserSettings();
    settings.setValue(kCompanyKey, report.company);
    settings.setValue(kAddressKey, report.address);
    settings.setValue(kLogoKey, report.logoFile);
    settings.setValue(kInspectorKey, report.inspector);
}

QImage LoadLogo(const QString &path, QString *problem)
{
    problem->clear();
    if (path.trimmed().isEmpty())
        return {};
    QImageReader reader(path);
    const QSize size = reader.size();
    QImage logo;
    if (size.isValid() && (size.width() > kLargestLogoSide || size.height() > kLargestLogoSide))
        *problem = QStringLiteral("Logo %1 nicht verwendet: größer als %2 x %2 Bildpunkte")
                       .arg(QDir::toNativeSeparators(path))
                       .arg(kLargestLogoSide);
    else if (!reader.read(&logo))
        *problem = QStringLiteral("Logo %1 nicht lesbar (%2)")
                       .arg(QDir::toNativeSeparators(path), reader.errorString());
    return problem->isEmpty() ? logo : QImage();
}

} // namespace kalvo::archive
