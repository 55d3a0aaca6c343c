// Test specifications: set texts, the parts of a store record as the database reads them, a
// record read back into the editor, and limit texts typed on the PC.
#include "FuzzFiles.h"

#include "link/Errors.h"
#include "specdb/SetFile.h"
#include "specdb/SpecChunks.h"
#include "specdb/SpecDecoding.h"
#include "specdb/SpecStore.h"

using namespace kalvo;

namespace {

bool IsUpperHex(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

void SetText(const QByteArray &text)
{
    try {
        const QList<specdb::SetGroup> groups = specdb::ParseSetText(text, QStringLiteral("fuzz.set"));
        // What is written back reads back the same.
        fuzz::Expect(specdb::ParseSetText(specdb::SetText(groups), QStringLiteral("again.set")) == groups,
                     "a set text written from its records reads back as them");
        for (const specdb::SetGroup &group : groups)
            for (const QByteArray &line : group)
                fuzz::Expect(!line.contains('\r') && !line.contains('\n'),
                             "a set-file line holds no line end");
    } catch (const link::FormatError &) {
        // A last record of fewer than three lines.
    }
    try {
        specdb::FirstSetGroup(text, QStringLiteral("fuzz.set"));
    } catch (const link::FormatError &) {
    }
}

void StoreRecord(const QList<QByteArray> &answers)
{
    QList<QByteArray> fields;
    for (const QByteArray &answer : answers)
        specdb::AppendRecordPart(fields, answer);
    fuzz::Expect(fields.size() <= specdb::kKeptFields, "a record keeps a bounded number of fields");
    for (const QByteArray &field : fields) {
        fuzz::Expect(field.size() <= specdb::kKeptFieldBytes, "a field is bounded");
        for (const char c : field)
            fuzz::Expect(specdb::KeepStoreChar(static_cast<unsigned char>(c)),
                         "a field holds only kept characters");
    }
    // The limits, placed from the parts' texts; they are bounded and filtered as the fields are.
    const std::optional<specdb::BoxTexts> limits =
        specdb::PlaceLimits(answers.value(0), answers.value(1), answers.value(2));
    if (limits) {
        for (const QByteArray &limit : *limits)
            fuzz::Expect(limit.size() <= specdb::kKeptFieldBytes, "a placed limit is bounded");
    }
    specdb::SpecRecord record;
    try {
        specdb::DecodeSpecRecord(fields, limits, 1, record);
    } catch (const link::FormatError &) {
        return; // no code string in field 1
    }
    for (int k = 0; k < specdb::kSentCodes; ++k) {
        const QByteArray &code = record.codes[static_cast<size_t>(k)];
        fuzz::Expect(code.size() == 2 && IsUpperHex(code[0]) && IsUpperHex(code[1]),
                     "a decoded code element is two upper-case hexadecimal characters");
    }
    specdb::RegulationName(record.codes[6]);
    specdb::SingleFaultBoxes(record.codes[8]);
}

void Limit(const QByteArray &typed)
{
    const QByteArray limit = specdb::LimitFromText(QString::fromUtf8(typed));
    for (int box = 1; box <= specdb::kLimitBoxes; ++box) {
        if (specdb::LimitFits(box, limit))
            fuzz::Expect(!limit.contains(';'), "a limit that fits holds no field separator");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // set text NUL x answer NUL y answer NUL z answer NUL typed limit
    const QList<QByteArray> parts = fuzz::SplitParts(fuzz::InputBytes(data, size), 5);
    SetText(parts[0]);
    StoreRecord(parts.mid(1, 3));
    Limit(parts[4]);
    return 0;
}
