// Calibration backups (".cal"): reading a file by both restore rules, comparing two files, and the
// entry line of a "kal?" answer. Input: the older file, NUL, the newer file.
#include "FuzzFiles.h"

#include "config/Calibration.h"
#include "config/CalibrationDiff.h"
#include "link/Errors.h"

using namespace kalvo;

namespace {

void ReadByBothRules(const QString &path)
{
    for (const auto source : {config::RestoreSource::ServiceForm, config::RestoreSource::MainForm}) {
        try {
            for (const config::CalibrationEntry &entry : config::ReadCalibrationFile(path, source))
                fuzz::Expect(entry.line >= 1, "entries name their line");
        } catch (const link::KalvoError &) {
            // A line that is not "n:a,b": named to the user, nothing is sent.
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzz::InputBytes(data, size);
    const QList<QByteArray> parts = fuzz::SplitParts(bytes, 2);
    const QString before = fuzz::WriteScratchFile(QStringLiteral("alt.cal"), parts[0]);
    const QString after = fuzz::WriteScratchFile(QStringLiteral("neu.cal"), parts[1]);
    ReadByBothRules(before);
    ReadByBothRules(after);
    try {
        for (const config::CalibrationDifference &difference : config::DiffCalibration(before, after))
            config::DescribeDifference(difference);
    } catch (const link::KalvoError &) {
    }

    try {
        // Whatever a backup takes from an answer must be restorable.
        const QByteArray line = config::CalibrationLine(7, "kal? 7", bytes);
        const QString saved = fuzz::WriteScratchFile(QStringLiteral("line.cal"), line + "\r\n");
        fuzz::Expect(config::ReadCalibrationFile(saved, config::RestoreSource::ServiceForm).size() == 1,
                     "a line taken into a backup reads back as one entry");
    } catch (const link::KalvoError &) {
    }
    config::DefaultBackupName(parts[0]);
    config::SerialBackupName(parts[0]);
    return 0;
}
