// The update's files as bytes: lines of 8-bit text in, whole files out.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace kalvo::update {

// `bytes` cut into lines at CR LF, LF or a lone CR, without their line ends. Text after the last
// line end is a line of its own; a line end at the very end starts no further line, so "a\r\n"
// is one line and "" none.
QList<QByteArray> SplitLines(const QByteArray &bytes);

// Replaces `path` with `bytes` through a QSaveFile: a failed write leaves the old file as it was.
// Throws link::FormatError naming the file and the system's reason.
void SaveBytes(const QString &path, const QByteArray &bytes);

} // namespace kalvo::update
