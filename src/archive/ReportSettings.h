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

// The logo in the file `path`; a null picture when `path` is empty (`problem` empty) or the file
// cannot be used (`problem` says which file and why).
QImage LoadLogo(const QString &path, QString *problem);

} // namespace kalvo::archive
