// Putting records into the archive: each kept once, by the SHA-256 of its bytes.
#pragma once

#include "ArchiveTypes.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>

namespace kalvo::archive {

class Archive;

// The SHA-256 of a record's bytes, as 64 lower-case hex digits.
QByteArray Sha256Hex(const QByteArray &bytes);

// The tester's date ("dd.mm.yy" or "dd.mm.yyyy") and time ("hh:mm" or "h:m:s") as one timestamp;
// invalid when the date cannot be read (a time that cannot be read counts as midnight).
QDateTime TestTimestamp(const QByteArray &date, const QByteArray &time);

// The fields the archive keeps of a record, read with the records decoder. Throws what
// records::DecodeRecord throws (RecordTooOld, FormatError).
ArchivedRecord DescribeRecord(const QByteArray &raw);

// Imports `records` (record texts exactly as read) in one transaction: a record already in the
// archive is counted as known, one that cannot be decoded is refused (named in the result) and the
// rest are stored with their device's next test. When the database fails, nothing of this import is
// kept and ArchiveError is thrown; what earlier imports stored stays.
ImportResult ImportRecords(Archive &archive, const QList<QByteArray> &records, const RecordSource &source);

} // namespace kalvo::archive
