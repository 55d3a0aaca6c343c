// Taking tester answers apart and turning tester bytes into text.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace kalvo::link {

// `text` without the bytes below 30 (CR, LF, DC1 and the other control bytes).
QByteArray StripControlChars(const QByteArray &text);

// One tester character as display text: dropped codes give "", 234 gives "Ohm", umlauts and µ
// are mapped, other bytes of 128 and above are read as the IBM PC character set.
QString ConvertDisplayChar(unsigned char c);
// Every byte of `bytes` through ConvertDisplayChar.
QString ConvertDisplayText(const QByteArray &bytes);
// Tester print text (code page 437) to display text, box-drawing characters kept.
QString DecodeTesterText(const QByteArray &bytes);
// Text of a file written on the PC (a command script, a language file): UTF-8 when the bytes are
// valid UTF-8, else Windows-1252.
QString DecodePcText(const QByteArray &bytes);
// Text typed on the PC in the tester's character set; what it cannot hold becomes "?".
QByteArray EncodeTesterText(const QString &text);

// The display conversion for files: the nine mapped codes become their Windows-1252 bytes (234
// the three letters "Ohm"), the codes the display drops are dropped, every other byte stays as it
// is. Converted bytes convert to themselves, so applying it twice changes nothing.
QByteArray ConvertDisplayBytes(const QByteArray &bytes);
// A record text as shown on screen, whether it holds the tester's own bytes or converted ones:
// the nine tester codes as the display conversion maps them, every other byte of 128 and above
// as Windows-1252, control bytes dropped; "#", "@" and the rest of the field text are kept.
QString DecodeRecordText(const QByteArray &bytes);

// The text from one character after the first `startMark` up to the first `endMark`
// (the rest when `endMark` is empty). Throws FormatError when `endMark` is missing or
// stands before the start.
QByteArray FieldBetween(const QByteArray &text, const QByteArray &startMark, const QByteArray &endMark);

// The two characters in front of the first ".Y" of a register or bit answer;
// nullopt-like empty result when the answer has no ".Y".
QByteArray ValueBeforeYes(const QByteArray &answer);
// 1-based position of `needle` in `text`, 0 when absent (the position rules of the answers use it).
qsizetype PositionOf(const QByteArray &text, const QByteArray &needle);

// The numeric value of the leading number of `text`, as the tester's own tools read numbers:
// leading blanks skipped, "&H" for hexadecimal, "." as the decimal point whatever the locale,
// reading stops at the first character that does not fit; 0 when there is no number.
double NumericValue(const QByteArray &text);

// The leading whole number of `text`, read as NumericValue reads it (leading blanks, a sign,
// "&H" for hexadecimal; reading stops at the first character that does not fit, "." included),
// when there is one and it lies within [minimum, maximum]; nullopt otherwise, never a wrapped value.
std::optional<qint64> WholeNumber(const QByteArray &text, qint64 minimum, qint64 maximum);
// Whether `text` begins with a whole number as WholeNumber reads it, of whatever size: tells "no
// number" from "a number out of range".
bool HasLeadingNumber(const QByteArray &text);

// `bytes` cut into lines at CR LF, LF or a lone CR, without their line ends. Text after the last
// line end is a line of its own; a line end at the very end starts no further line, so "a\r\n"
// is one line and "" none.
QList<QByteArray> SplitLines(const QByteArray &bytes);

// `answer` split at ";" into fields, each without control characters.
QList<QByteArray> SplitFields(const QByteArray &answer);

// Bytes as readable text: printable ASCII as is, everything else as \xNN (\r and \n by name).
QString EscapeBytes(const QByteArray &bytes);

} // namespace kalvo::link
