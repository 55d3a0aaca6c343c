// Reading test records from the tester's store and from the KYM accessory into record texts.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::records {

// The save dialog's filter for record text files.
inline const QString kRecordFileFilter = QStringLiteral("Ascii file (*.txt)|*.txt|(*.*)|*.*");
// The filter offered for the next save after a read of all records.
inline const QString kRecordFileFilterAfterRead = QStringLiteral("Ascii (*.txt)|*.txt|(*.*)|*.*");
inline const QString kNoRecordsText = QStringLiteral("No Protokol");
inline const QString kNoAccessoryRecordsText = QStringLiteral("No Protokoll");
inline const QString kNoAccessoryText = QStringLiteral("Kein KYM gefunden");
inline const QByteArray kAccessoryIdentity = "QRT4027";
inline const QByteArray kRecordEnd = "$FF\r\n";

// How the y and z parts of a stored record are told from their 8-character filler: by position
// behind ":" (the record window) or behind the literal "XXXXXXXX" (the service form).
enum class FillerRule { Position, Literal };

enum class RetrievalStatus {
    Done,        // records read (and written where a file was asked for)
    Cancelled,   // an empty file name or Cancel: nothing sent after it, nothing written
    NoRecords,   // "No Protokol" / "No Protokoll" shown
    NoAccessory, // "Kein KYM gefunden" shown
};

struct RetrievalResult {
    RetrievalStatus status = RetrievalStatus::Cancelled;
    QList<QByteArray> records; // record texts, each ending in "$FF" CR LF
};

// Called once per record as it arrives (number from 1), so that a window can list it at once.
using RecordCallback = std::function<void(int number, const QByteArray &record)>;

// The number behind the first "=" of the answer to "prx?n".
int CountRecords(link::Link &link);
// Record `index` (1-based) from its x, y and z parts, closed by "$FF" CR LF. Throws FormatError when
// a part is too short to hold its 4-character trailer.
QByteArray ReadRecord(link::Link &link, int index, FillerRule rule);
// "prx?": true when the tester holds a current record (".Y").
bool HasCurrentRecord(link::Link &link);
// The current record from "prx?x", "prx?y", "prx?z" (no filler), closed by "$FF" CR LF.
QByteArray ReadCurrentRecordParts(link::Link &link);
// HasCurrentRecord, then ReadCurrentRecordParts; nullopt when there is none.
std::optional<QByteArray> ReadCurrentRecord(link::Link &link);

// All records of the store into a file chosen in the save dialog (the record window's "storeall").
RetrievalResult StoreAllRecords(link::Link &link, link::Prompter &prompter,
                                const RecordCallback &onRecord = {});
// The current record into a file chosen in the save dialog ("storesingle").
RetrievalResult StoreCurrentRecord(link::Link &link, link::Prompter &prompter);
// All records after the count is confirmed, then into a file (the service form's "readprot").
RetrievalResult ReadProtocols(link::Link &link, link::Prompter &prompter,
                              const RecordCallback &onRecord = {});

// The store listing ("prx?nx"): 13 fields a row; test specifications are marked "DATABASE".
struct StoreListing {
    static constexpr int kRowFields = 13;
    QList<QList<QByteArray>> rows;
    QStringList records; // test records only: field 3 + ":" + the number behind "=" of field 0
};
// Parses a listing as the tester sends it (control characters are not part of any field).
StoreListing ParseStoreListing(const QByteArray &listing);
// Sends "prx?nx", keeps the raw answer in `protoPath` (proto.txt) and parses it.
StoreListing ReadStoreListing(link::Link &link, const QString &protoPath);

// All records of the KYM accessory ("idn?", "esr?", "wer?"), also written to `logTmpPath`
// (log.tmp), one per line. Records are kept in the tester's bytes, see README.md.
RetrievalResult ReadAccessoryRecords(link::Link &link, link::Prompter &prompter, const QString &logTmpPath,
                                     const RecordCallback &onRecord = {});
// The record texts in an accessory "wer?" stream: character 19 separates fields; a record ends
// with "$" and the two characters after it.
QList<QByteArray> SplitAccessoryStream(const QByteArray &stream);

} // namespace kalvo::records
