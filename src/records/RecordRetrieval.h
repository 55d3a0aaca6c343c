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

// The most records a count may announce ("prx?n", "esr?"). The tester's store listing holds at
// most 111 rows and the accessory fewer; nine times that leaves room for a larger store, while a
// garbled count can no longer keep the line busy for hours (every record takes three exchanges).
constexpr int kMaxRecords = 999;
// The entries the tester's store holds at most, test records and specifications together.
constexpr int kStoreCapacity = 131;
// Generous sizes, for bounding streams: a listing row is 13 short fields, a record text has at most
// 256 fields; real ones are a tenth of this or less.
constexpr qsizetype kMaxListingRowBytes = 2 * 1024;
constexpr qsizetype kMaxRecordTextBytes = 16 * 1024;

// How the y and z parts of a stored record are told from their 8-character filler: by position
// behind ":" (the record window) or behind the literal "XXXXXXXX" (the service form).
enum class FillerRule { Position, Literal };

enum class RetrievalStatus {
    Done,        // records read (and written where a file was asked for)
    Cancelled,   // an empty file name or Cancel: nothing sent after it, nothing written
    NoRecords,   // "No Protokol" / "No Protokoll" shown
    NoAccessory, // "Kein KYM gefunden" shown
    Refused,     // the tester refused a command on the way: said so, nothing written
};

struct RetrievalResult {
    RetrievalStatus status = RetrievalStatus::Cancelled;
    QList<QByteArray> records; // record texts, each ending in "$FF" CR LF (none unless Done)
};

// Called once per record as it arrives (number from 1), so that a window can list it at once.
// Records whose parts the tester refused are not passed on.
using RecordCallback = std::function<void(int number, const QByteArray &record)>;

// The number behind the first "=" of the answer to "prx?n" (0..kMaxRecords); nullopt when the
// tester refused the question (the link has said so). Throws FormatError when the answer holds
// no such number.
std::optional<int> CountRecords(link::Link &link);
// Record `index` (1-based) from its x, y and z parts, closed by "$FF" CR LF; nullopt when the
// tester refused any of the parts (all three are asked for all the same). Throws FormatError when
// a part is too short to hold its 4-character trailer.
std::optional<QByteArray> ReadRecord(link::Link &link, int index, FillerRule rule);
// The current record from "prx?x", "prx?y", "prx?z" (no filler), closed by "$FF" CR LF; nullopt
// when a part was refused.
std::optional<QByteArray> ReadCurrentRecordParts(link::Link &link);

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
    QList<int> numbers;  // the store's number of each entry of `records`
};
// Parses a listing as the tester sends it (control characters are not part of any field). Throws
// FormatError when a test record's number is missing or beyond kMaxRecords.
StoreListing ParseStoreListing(const QByteArray &listing);
// Sends "prx?nx" and parses the listing as it arrives; the raw answer goes to `protoPath`
// (proto.txt) once it has been taken apart. Progress counts the test records against
// `expectedRecords` (the count of "prx?n") when that is known. nullopt, with nothing written,
// when the tester refused.
// `onEntry` sees each test record's entry and number as soon as its row has them.
using ListingEntrySink = std::function<void(const QString &entry, int number)>;
std::optional<StoreListing> ReadStoreListing(link::Link &link, link::Prompter &prompter,
                                             const QString &protoPath, int expectedRecords = 0,
                                             const ListingEntrySink &onEntry = {});
struct ListingResult {
    RetrievalStatus status = RetrievalStatus::Cancelled;
    StoreListing listing;
};
// "dbProt": the count, "No Protokol" when there is none, otherwise the store listing.
ListingResult ListStoreRecords(link::Link &link, link::Prompter &prompter, const QString &protoPath,
                               const ListingEntrySink &onEntry = {});

// All records of the KYM accessory ("idn?", "esr?", "wer?"), also written to `logTmpPath`
// (log.tmp), one per line. Records pass the display conversion as bytes (see README.md); progress
// counts the records completed against the count of "esr?". Throws FormatError when the stream
// holds no record or ends inside one.
RetrievalResult ReadAccessoryRecords(link::Link &link, link::Prompter &prompter, const QString &logTmpPath,
                                     const RecordCallback &onRecord = {});
// The record texts in an accessory "wer?" stream: character 19 separates fields; a record ends
// with "$" and the two characters after it.
QList<QByteArray> SplitAccessoryStream(const QByteArray &stream);

} // namespace kalvo::records
