// Record text files: loading, splitting each record into fields, decoding it and laying out its report.
#include "FuzzFiles.h"

#include "records/RecordDecoding.h"
#include "records/RecordFiles.h"
#include "records/ReportBuilder.h"

using namespace kalvo;

namespace {

void DecodeAndReport(const QByteArray &recordText)
{
    try {
        const records::DecodedRecord record = records::DecodeRecord(recordText);
        fuzz::Expect(!records::BuildReport(record).isEmpty(), "a decoded record has a report");
    } catch (const link::KalvoError &) {
        // Too many fields or a code string too short: said to the user, not a fault.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzz::InputBytes(data, size);
    const QList<QByteArray> lines = records::LoadRecordFile(fuzz::WriteScratchFile("records.txt", bytes));
    for (const QByteArray &line : lines) {
        fuzz::Expect(line.endsWith("\r\n") && line.size() > 2 && line.count('\n') == 1,
                     "every loaded record is one non-empty line with CR LF");
        DecodeAndReport(line);
    }
    // A record text as an operation hands it over, line ends and all.
    DecodeAndReport(bytes);
    return 0;
}
