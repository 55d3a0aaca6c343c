// Steps the record readers share: asking with an eye on refusals, reading counts, saying that
// nothing was written.
#pragma once

#include "RecordRetrieval.h"

#include <QByteArray>
#include <QString>
#include <optional>

namespace kalvo::link {
class Link;
class Prompter;
class RefusalWatch;
struct StreamLimit;
} // namespace kalvo::link

namespace kalvo::records {

// The text behind the first `mark` and `skip` characters more; a missing mark gives the whole
// answer, as the position arithmetic of the record readers always has.
QByteArray After(const QByteArray &answer, const QByteArray &mark, qsizetype skip = 0);

// The text behind the first `mark` and `skip` characters more, for an answer that must hold the
// mark: without it (garbage, ".Nx") nothing of the answer is record data, and FormatError names
// the command and what came.
QByteArray PartAfter(const QByteArray &command, const QByteArray &answer, const QByteArray &mark,
                     qsizetype skip = 0);

// Exchange of one command; nullopt when the tester refused it (the link has said so already).
std::optional<QByteArray> Ask(link::Link &link, const QByteArray &command);

// The count behind the first `mark` of `answer` to `command`, 0..kMaxRecords. Throws FormatError
// naming the command and the answer when there is none or it is out of range.
int ReadCount(const QByteArray &command, const QByteArray &answer, const QByteArray &mark);

// How long the streams may grow: a listing by the entries the store holds (or the count announced,
// if that is more), the accessory's records by the count its "esr?" gave, each at many times a real
// entry's size. Junk sent at line speed without an end then stops within minutes, not hours.
link::StreamLimit ListingLimit(int announced);
link::StreamLimit AccessoryLimit(int announced);

// Tells the user what the tester refused and that `unwritten` (empty: nothing at all) was not
// written, so that an older file of that name is still the one to trust.
void TellNothingWritten(link::Prompter &prompter, const link::RefusalWatch &watch, const QString &unwritten);
// TellNothingWritten, and the result of a read that met a refusal: no records, nothing written.
RetrievalResult RefusedRead(link::Prompter &prompter, const link::RefusalWatch &watch,
                            const QString &unwritten);

} // namespace kalvo::records
