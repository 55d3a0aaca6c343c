// The test report this program lays out from a decoded record (records from the accessory or a file).
#pragma once

#include "RecordDecoding.h"

#include <QString>

namespace kalvo::records {

// The report text, lines ended by CR LF, columns separated by TAB; field texts shown whole
// (DecodeRecordText), so the time grows with the record's size and no faster.
QString BuildReport(const DecodedRecord &record);

// A measured value as the report shows it: its text, or one TAB when empty so the limits stay aligned.
QString MeasuredValueText(const QByteArray &field);

} // namespace kalvo::records
