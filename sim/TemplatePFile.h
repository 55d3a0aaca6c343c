// A print template packed into a P-file, as the tester unpacks it into one of its template slots.
#pragma once

#include <QByteArray>
#include <optional>

namespace kalvo::sim {

constexpr quint8 kPackageMark = 0x89; // the first byte of every package and P-file
constexpr int kPackageHeaderSize = 9;

struct TemplateUpload {
    int slot = 0;    // 1..4
    QByteArray text; // CR LF lines
};

// The template slot 1..4 that a P-file's slot byte (0xC8, 0xD0, 0xE0, 0xF0) names; 0 for any other.
int TemplateSlotForByte(quint8 byte);

// The template a P-file holds (`file`: every byte received, the trailer included). nullopt, with
// the reason in the tester's words, for a header the tester does not take (a slot it does not know,
// a packed size that does not match what came or exceeds the slot), a missing trailer, or a body
// that does not unpack.
std::optional<TemplateUpload> UnpackTemplatePFile(const QByteArray &file, QByteArray *reason);

// The packed lines: a byte 3..31 (not 13) is a count followed by the character, 0x02 stands for
// 13 followed by the character, 0x0D ends a line, any other byte stands for itself. Characters
// below 32 are refused, so that the text can be answered whole.
std::optional<QByteArray> UnpackTemplateBody(const QByteArray &body, QByteArray *reason);

} // namespace kalvo::sim
