// The update's files as bytes: whole files out (lines in are link::SplitLines).
#pragma once

#include <QByteArray>
#include <QString>

namespace kalvo::update {

// Replaces `path` with `bytes` through a QSaveFile: a failed write leaves the old file as it was.
// Throws link::FormatError naming the file and the system's reason.
void SaveBytes(const QString &path, const QByteArray &bytes);

} // namespace kalvo::update
