// Who issues the signed reports: the company for the page header and the inspector who signs.
#pragma once

#include <QImage>
#include <QString>

namespace kalvo::archive {

// Kept in the user settings (kalvo.ini), section "report/".
struct ReportSettings {
    QString company;  // the company's name, first line of the header
    QString address;  // several lines
    QString logoFile; // a PNG or JPEG file (any picture Qt reads); empty: no logo
    QString inspector;
};

ReportSettings ReadReportSettings();
void WriteReportSettings(const ReportSettings &settings);

// The logo of `settings`, or a null picture when none is set or it cannot be read; `problem` then
// says which file and why (empty when no logo is set).
QImage LoadLogo(const QString &path, QString *problem);

} // namespace kalvo::archive
