// A firmware file in Intel HEX: its lines as they go to the tester, and the check before sending.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace kalvo::update {

// Far beyond any firmware of the tester (a few hundred KB of HEX text); a larger file is refused
// with its size instead of being read whole.
constexpr qint64 kMaxHexFileBytes = 16 * 1024 * 1024;
// A file of this many lines or fewer counts as missing.
constexpr int kFewestHexLines = 10;

class HexFile {
public:
    // Reads `path` line by line (CR LF, LF or CR; empty lines at the end are no lines). A file that
    // cannot be opened has no lines. Throws link::FormatError naming the size when the file is
    // larger than kMaxHexFileBytes.
    static HexFile Read(const QString &path);
    // Builds one from text, for a check without a file.
    static HexFile FromBytes(const QString &path, const QByteArray &bytes);

    const QString &path() const { return m_path; }
    const QList<QByteArray> &lines() const { return m_lines; }
    // Missing, unreadable or too short to be firmware: not sent, reported as " nicht gefunden".
    bool missing() const { return m_lines.size() <= kFewestHexLines; }
    // Throws link::FormatError naming the file, the line and what is wrong unless every line is
    // an Intel HEX record (":", hexadecimal digits, its byte count, its checksum, types 00 to 05)
    // and the only end-of-file record is the last line.
    void Check() const;

private:
    QString m_path;
    QList<QByteArray> m_lines;
};

} // namespace kalvo::update
