// Comparing two calibration backups: which entries drifted, and by how much.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace kalvo::config {

struct CalibrationDifference {
    int entry = 0;
    // Empty when the entry is missing from that file.
    QByteArray before[2]; // first and second value in the older file
    QByteArray after[2];  // ... in the newer file
    // (after - before) / |before| * 100 per value; nullopt when the value did not change, is
    // missing, is no number, or changed from zero.
    std::optional<double> percent[2];
    bool changed[2] = {false, false};
};

// The entries whose values differ between `before` and `after` (both ".cal" files, heading lines
// skipped), in entry order. Throws link::FormatError for an unreadable or malformed file.
QList<CalibrationDifference> DiffCalibration(const QString &before, const QString &after);

// "29: b 3042.6 -> 3100 (+1.89 %)", one part per changed value.
QString DescribeDifference(const CalibrationDifference &difference);

} // namespace kalvo::config
