// Inputs for parsers that read files by path, and inputs cut into several parts.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <cstddef>
#include <cstdint>

namespace kalvo::fuzz {

// The harness input as bytes (copied: Qt wants to own them).
QByteArray InputBytes(const uint8_t *data, size_t size);

// `bytes` written to `name` in this process's scratch folder (in /dev/shm where there is one, so
// that a fuzzing run does not wear a disk); returns the file's path.
QString WriteScratchFile(const QString &name, const QByteArray &bytes);
// The scratch folder, made on first use and removed when the process ends normally.
QString ScratchFolder();

// `bytes` cut at NUL bytes into exactly `count` parts: missing parts are empty, and the last part
// keeps whatever follows, NULs included. Files and answers of the tester hold no NUL, so a NUL is
// where one part of a multi-part input ends.
QList<QByteArray> SplitParts(const QByteArray &bytes, int count);

// Stops the run as a finding when an expectation about a parser's result does not hold.
void Expect(bool holds, const char *what);

} // namespace kalvo::fuzz
