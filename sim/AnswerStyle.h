// The forms the virtual tester answers in: the plain one, and odd ones that a tester may also send.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace kalvo::sim {

enum class AnswerStyle {
    Plain, // echo as received, payload, CR LF, DC1, in one burst
    Odd,   // other echoes, blanks, widths and line ends that the reading rules still take, in bursts
};

std::optional<AnswerStyle> ParseAnswerStyle(const QString &name);
QString AnswerStyleName(AnswerStyle style);
QStringList AnswerStyleNames();

// The plain answer `answer` to `line` (without its CR) in the odd form. Streams, prompts and
// refusals keep their bytes; only how they are cut into bursts changes (OddBursts).
QByteArray OddAnswer(const QByteArray &line, const QByteArray &answer);

// An answer cut into the bursts it leaves in: its first byte, the rest up to the DC1, the DC1.
QList<QByteArray> OddBursts(const QByteArray &answer);

} // namespace kalvo::sim
