// A print template packed into a P-file, as the tester unpacks it into one of its template slots.
#include "TemplatePFile.h"

#include <array>

namespace kalvo::sim {

namespace {

constexpr char kLineEnd = '\x0D';
constexpr char kThirteen = '\x02'; // 13 is the line end, so a run of 13 has a code of its own
constexpr int kShortestRun = 3;
constexpr int kLongestRun = 31;
constexpr int kSizeOffset = 8; // the size field counts header and body less 8
// 0x00 0x00 and the packer's version; the text-file writer's CR LF may follow.
const QByteArray kTrailer = QByteArray("\0\0AS 1.40r4", 11);

struct Slot {
    quint8 byte;
    int largestPackedSize;
};
constexpr std::array<Slot, 4> kSlots{{{0xC8, 2048}, {0xD0, 4096}, {0xE0, 4096}, {0xF0, 4096}}};

template <typename T> std::optional<T> Fail(QByteArray *reason, const QByteArray &text)
{
    if (reason)
        *reason = text;
    return std::nullopt;
}

} // namespace

int TemplateSlotForByte(quint8 byte)
{
    for (size_t i = 0; i < kSlots.size(); ++i) {
        if (kSlots[i].byte == byte)
            return static_cast<int>(i) + 1;
    }
    return 0;
}

std::optional<QByteArray> UnpackTemplateBody(const QByteArray &body, QByteArray *reason)
{
    QByteArray text;
    QByteArray line;
    for (qsizetype i = 0; i < body.size(); ++i) {
        const char byte = body[i];
        if (byte == kLineEnd) {
            text += line + "\r\n";
            line.clear();
            continue;
        }
        const int code = static_cast<quint8>(byte);
        const bool run = byte == kThirteen || (code >= kShortestRun && code <= kLongestRun);
        if (!run) {
            if (code < 0x20)
                return Fail<QByteArray>(reason, "Zeichen unzul\x84ssig");
            line += byte;
            continue;
        }
        if (i + 1 >= body.size() || static_cast<quint8>(body[i + 1]) < 0x20)
            return Fail<QByteArray>(reason, "Zeichen unzul\x84ssig");
        line += QByteArray(byte == kThirteen ? 13 : code, body[++i]);
    }
    if (!line.isEmpty())
        return Fail<QByteArray>(reason, "Zeile ohne Ende");
    return text;
}

std::optional<TemplateUpload> UnpackTemplatePFile(const QByteArray &file, QByteArray *reason)
{
    if (file.size() < kPackageHeaderSize || static_cast<quint8>(file[0]) != kPackageMark)
        return Fail<TemplateUpload>(reason, "Kopf fehlerhaft");
    if (file[3] != 0 || file.mid(5, 4) != QByteArray(4, '\0'))
        return Fail<TemplateUpload>(reason, "Kopf fehlerhaft");
    const quint8 slotByte = static_cast<quint8>(file[4]);
    const int slot = TemplateSlotForByte(slotByte);
    if (slot == 0)
        return Fail<TemplateUpload>(reason,
                                    "Vorlage " + QByteArray::number(slotByte, 16).toUpper() + " unbekannt");
    const int size = static_cast<quint8>(file[1]) | static_cast<quint8>(file[2]) << 8;
    if (size > kSlots[static_cast<size_t>(slot - 1)].largestPackedSize)
        return Fail<TemplateUpload>(reason, "Vorlage zu lang");
    const qsizetype bodyEnd = size + kSizeOffset;
    const QByteArray rest = file.mid(bodyEnd);
    if (bodyEnd < kPackageHeaderSize || (rest != kTrailer && rest != kTrailer + "\r\n"))
        return Fail<TemplateUpload>(reason, "L\x84nge falsch");
    auto text = UnpackTemplateBody(file.mid(kPackageHeaderSize, bodyEnd - kPackageHeaderSize), reason);
    if (!text)
        return std::nullopt;
    return TemplateUpload{slot, *text};
}

} // namespace kalvo::sim
