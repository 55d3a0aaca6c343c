// The tester's four update loaders: what it does with the raw bytes that follow "kal!updN".
#include "UpdateLoader.h"

#include "HexRecord.h"
#include "TemplatePFile.h"

namespace kalvo::sim {

namespace {

constexpr char kCR = '\r';
constexpr char kLF = '\n';
constexpr char kDC1 = '\x11';
const QByteArray kAck = "!";
const QByteArray kErasing = "Erasing ...\r\n";
const QByteArray kProgramming = "... Programming\r\n";
const QByteArray kFlashReady = "Flash ok\r\n";
// Far beyond the longest record (255 data bytes); a longer line is not taken whole.
constexpr qsizetype kLongestHexLine = 600;
constexpr qsizetype kSizeBytesRead = 3; // the mark and the two size bytes
constexpr int kTemplateSlotOffset = 4;
// The package's bytes less its size field: header (9 less the 8 the size does not count),
// 0x00 0x00 and the 9 characters of the version, CR LF.
constexpr int kUncountedBytes = 21;

// Which version date a package renews: system, configuration, pictures, help, sequences.
int VersionPart(UpdateLoader::Kind kind)
{
    switch (kind) {
    case UpdateLoader::Kind::Firmware: return 0;
    case UpdateLoader::Kind::Pictures: return 2;
    case UpdateLoader::Kind::Help: return 3;
    case UpdateLoader::Kind::Sequences: return 4;
    }
    return 0;
}

} // namespace

UpdateLoader::UpdateLoader(Kind kind, std::optional<FaultKind> fault, TesterModel &model, AnswerStyle style)
    : m_kind(kind), m_fault(fault), m_style(style), m_model(model)
{}

UpdateLoader::Step UpdateLoader::Take(char byte)
{
    return m_kind == Kind::Firmware ? TakeFirmware(byte) : TakePackage(byte);
}

UpdateLoader::Step UpdateLoader::TakeFirmware(char byte)
{
    if (byte == kCR || byte == kLF) {
        // CR LF ends a line like CR alone: the empty line between them is no line.
        if (m_line.isEmpty())
            return {};
        const QByteArray line = std::exchange(m_line, {});
        return FirmwareLine(line + byte);
    }
    // A first line that is no record is no firmware: the loader steps aside for the command line.
    if (m_lines == 0 && m_line.isEmpty() && byte != ':') {
        Step step;
        step.ended = true;
        step.notMine = true;
        return step;
    }
    if (m_line.size() <= kLongestHexLine)
        m_line += byte;
    return {};
}

UpdateLoader::Step UpdateLoader::FirmwareLine(const QByteArray &received)
{
    ++m_lines;
    QByteArray reason;
    const auto type = HexRecordType(received.chopped(1), &reason);
    if (!type) {
        Step step;
        step.received = received;
        step.ended = true;
        step.send << Piece{"Fehler Zeile " + QByteArray::number(m_lines) + ": " + reason + "\r\n" + kDC1};
        return step;
    }
    Step step;
    step.received = received;
    if (!Has(FaultKind::NoAck))
        step.send << Piece{kAck};
    if (Has(FaultKind::ResetHalfway) && m_lines >= kFirmwareHalfwayLines) {
        step.ended = true;
        step.restart = true;
        return step;
    }
    if (*type != kHexEndOfFile)
        return step;
    // The new firmware is in: it carries the date it was programmed, and the tester starts it.
    m_model.StampVersion(VersionPart(m_kind));
    step.send << Report(kReportGap);
    step.ended = true;
    step.restart = true;
    return step;
}

UpdateLoader::Step UpdateLoader::TakePackage(char byte)
{
    // A package begins with its mark; anything else is a command line (the file was not sent).
    if (m_count == 0 && static_cast<quint8>(byte) != kPackageMark) {
        Step step;
        step.ended = true;
        step.notMine = true;
        return step;
    }
    ++m_count;
    if (m_kept.size() < kKeptBytes)
        m_kept += byte;
    if (m_count == kSizeBytesRead) {
        const int size = static_cast<quint8>(m_kept[1]) | static_cast<quint8>(m_kept[2]) << 8;
        m_halfway = (size + kUncountedBytes) / 2;
    }
    if (Has(FaultKind::ResetHalfway) && m_halfway >= 0 && m_count >= m_halfway)
        return Restart(m_kept);
    return {};
}

UpdateLoader::Step UpdateLoader::End()
{
    if (Has(FaultKind::ResetHalfway))
        return Restart(m_kept);
    if (m_count < kPackageHeaderSize)
        return Refuse("Kopf fehlerhaft");
    const quint8 slotByte = static_cast<quint8>(m_kept[kTemplateSlotOffset]);
    if (m_kind == Kind::Pictures && slotByte != 0) {
        // Not the picture set but a print template for one of the slots.
        QByteArray reason;
        const auto upload = m_count == m_kept.size() ? UnpackTemplatePFile(m_kept, &reason) : std::nullopt;
        if (!upload)
            return Refuse(reason.isEmpty() ? QByteArray("Vorlage zu lang") : reason);
        m_model.setPrintTemplateText(upload->slot, upload->text);
    } else {
        m_model.StampVersion(VersionPart(m_kind));
    }
    Step step;
    step.received = m_kept;
    step.ended = true;
    step.send = Report(link::Duration::zero());
    return step;
}

UpdateLoader::Step UpdateLoader::Restart(const QByteArray &received) const
{
    Step step;
    step.received = received;
    step.ended = true;
    step.restart = true;
    return step;
}

UpdateLoader::Step UpdateLoader::Refuse(const QByteArray &reason) const
{
    Step step;
    step.received = m_kept;
    step.ended = true;
    step.send << Piece{reason + " Protokoll .N\r\n" + kDC1};
    return step;
}

QList<UpdateLoader::Piece> UpdateLoader::Report(link::Duration start) const
{
    if (Has(FaultKind::RammingOnly)) {
        // Everything up to the end of the programming report is lost on the way.
        const QByteArray whole = kErasing + kProgramming;
        return {Piece{whole.mid(whole.indexOf("ramming")) + kDC1, start + kEraseTime}};
    }
    QList<Piece> pieces;
    const bool odd = m_style == AnswerStyle::Odd;
    if (odd && m_kind == Kind::Firmware) {
        // A word of the loader's own, closed, before it erases.
        pieces << Piece{kFlashReady + kDC1, start};
        start += kReportGap;
    }
    if (!Has(FaultKind::NoErase))
        pieces << Piece{odd && m_kind != Kind::Firmware ? kErasing + kDC1 : kErasing, start};
    pieces << Piece{kProgramming + kDC1, start + kEraseTime};
    return pieces;
}

} // namespace kalvo::sim
