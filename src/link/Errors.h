// Failures that end a device operation; each front end catches them once and shows message().
#pragma once

#include <QByteArray>
#include <QString>
#include <stdexcept>

namespace kalvo::link {

class KalvoError : public std::runtime_error {
public:
    KalvoError(int number, const QString &text);
    int number() const { return m_number; }
    const QString &text() const { return m_text; }
    // The form the user sees: the error number, ":  " and the text.
    QString message() const;

private:
    int m_number;
    QString m_text;
};

// The tester did not answer in time (error 3); the program ends after telling the user.
class Timeout : public KalvoError {
public:
    Timeout();
    // A time-out that says more than "Kein Kalvomer gefunden", e.g. which transfer phase waited.
    explicit Timeout(const QString &text);
};

// The tester refused or answered something unusable.
class ProtocolError : public KalvoError {
public:
    using KalvoError::KalvoError;
};

// An erase or programming report of an update transfer was missing or out of place.
class TransferError : public KalvoError {
public:
    using KalvoError::KalvoError;
};

// The serial port could not be opened, or vanished while in use.
class PortError : public KalvoError {
public:
    enum class Kind { CannotOpen, Lost };
    PortError(Kind kind, const QString &text);
    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

// A file or an answer that does not have the expected form.
class FormatError : public KalvoError {
public:
    // where: file name or "Antwort auf <command>"; line: 1-based, 0 when not line-oriented.
    FormatError(const QString &where, int line, const QString &expected);
    // An answer that does not hold what was to be read from it: names the command, what came
    // (escaped, long answers shortened) and what was expected.
    static FormatError ForAnswer(const QByteArray &command, const QByteArray &answer,
                                 const QString &expected);
};

constexpr int kTimeoutNumber = 3;
constexpr int kProtocolErrorNumber = 31995;
constexpr int kPortErrorNumber = 8002;
constexpr int kFormatErrorNumber = 31990;

} // namespace kalvo::link
