// The tester's store listing ("prx?nx") and the accessory's record stream ("wer?"), and the records in it.
#include "FuzzFiles.h"

#include "link/Errors.h"
#include "records/RecordDecoding.h"
#include "records/RecordRetrieval.h"
#include "records/ReportBuilder.h"

using namespace kalvo;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzz::InputBytes(data, size);

    try {
        records::ParseStoreListing(bytes);
    } catch (const link::KalvoError &) {
        // A record number beyond an int: the listing cannot be used.
    }

    for (const QByteArray &record : records::SplitAccessoryStream(bytes)) {
        fuzz::Expect(record.endsWith("\r\n") && record.count('\n') == 1 && record.count('\r') == 1,
                     "an accessory record stays one line");
        try {
            records::BuildReport(records::DecodeRecord(record));
        } catch (const link::KalvoError &) {
        }
    }
    return 0;
}
