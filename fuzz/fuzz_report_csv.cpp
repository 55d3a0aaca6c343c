// The CSV export with its header file, and the print text of a tester-rendered report.
// Input: the header file (ueber.csv), NUL, the record entries one a line, NUL, the report text (UTF-8).
#include "FuzzFiles.h"

#include "link/Errors.h"
#include "records/RecordFiles.h"
#include "records/ReportBuilder.h"
#include "records/TesterPrintText.h"

using namespace kalvo;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzz::InputBytes(data, size);
    const QList<QByteArray> parts = fuzz::SplitParts(bytes, 3);

    QByteArray header;
    try {
        header = records::ReadCsvHeader(fuzz::WriteScratchFile(records::kUeberCsvFileName, parts[0]));
    } catch (const link::KalvoError &) {
        // A header file without a line: the export stops before writing.
    }
    const QList<QByteArray> entries = parts[1].isEmpty() ? QList<QByteArray>{} : parts[1].split('\n');
    const QByteArray csv = records::ExportCsv(header, entries, QString::fromUtf8(parts[2]));
    fuzz::Expect(csv.startsWith(header + "\r\n;"), "the export starts with its header line");

    for (const QByteArray &entry : entries)
        records::MeasuredValueText(entry);

    const QString printText = records::ExtractPrintText(bytes);
    fuzz::Expect(!printText.contains(QChar(27)), "no printer escape in a shown print text");
    return 0;
}
