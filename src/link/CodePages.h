// The two 8-bit character sets kalvo reads and writes, by tables of its own (no ICU needed).
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace kalvo::link {

// Code page 437 is the tester's (box drawing, German letters); Windows-1252 is the PC's files'.
// Bytes below 128 are ASCII in both (as in Windows's tables; some other tables of code page 437
// trade three control codes around).
enum class CodePage { Ibm437, Windows1252 };

// One character for every byte: a byte Windows-1252 leaves undefined shows as the C1 control of
// its value, as Windows itself reads it, so that nothing is lost on the way back.
QString DecodeCodePage(CodePage page, const QByteArray &bytes);
// The byte that shows `ch` in the code page, if any.
std::optional<char> CodePageByte(CodePage page, char16_t ch);
// Every character as its byte; one the code page cannot show becomes "?".
QByteArray EncodeCodePage(CodePage page, const QString &text);

} // namespace kalvo::link
