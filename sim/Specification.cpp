// A test specification as the tester keeps it: taken in from "prx!add " chunks, given out as the
// three parts of a "DATABASE" record.
#include "Specification.h"

namespace kalvo::sim {

namespace {

constexpr qsizetype kMaxLabel = 40;
constexpr qsizetype kMaxItemText = 8; // the widest limit text
constexpr int kPartEnds[] = {8, 16, Specification::kItems};

bool IsUpperHex(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

bool IsDate(const QByteArray &text)
{
    if (text.size() != 8 || text[2] != '.' || text[5] != '.')
        return false;
    for (const int i : {0, 1, 3, 4, 6, 7}) {
        if (text[i] < '0' || text[i] > '9')
            return false;
    }
    return true;
}

bool IsTime(const QByteArray &text)
{
    const QList<QByteArray> parts = text.split(':');
    if (parts.size() != 3)
        return false;
    const int limits[] = {23, 59, 59};
    for (int i = 0; i < 3; ++i) {
        bool ok = false;
        const int value = parts[i].toInt(&ok);
        if (!ok || parts[i].size() > 2 || value < 0 || value > limits[i])
            return false;
    }
    return true;
}

// Items behind a chunk's head: ";" extra ";" limit, again and again.
std::optional<QList<QByteArray>> Items(const QByteArray &text)
{
    if (text.isEmpty())
        return QList<QByteArray>{};
    if (!text.startsWith(';'))
        return std::nullopt;
    const QList<QByteArray> texts = text.mid(1).split(';');
    if (texts.size() % 2 != 0)
        return std::nullopt;
    for (const QByteArray &item : texts) {
        if (item.size() > kMaxItemText)
            return std::nullopt;
    }
    return texts;
}

} // namespace

int Specification::regulation() const
{
    bool ok = false;
    const int digit = codes.mid(12, 1).toInt(&ok, 16);
    return ok ? digit : 0;
}

std::optional<Specification> Specification::FromFirstChunk(const QByteArray &argument)
{
    const QList<QByteArray> head = argument.split(';');
    if (head.size() < 5)
        return std::nullopt;
    Specification spec;
    spec.label = head[0];
    spec.codes = head[2];
    spec.date = head[3];
    spec.time = head[4];
    if (spec.label.trimmed().isEmpty() || spec.label.size() > kMaxLabel || !head[1].trimmed().isEmpty() ||
        spec.codes.size() != kCodeChars || !std::all_of(spec.codes.begin(), spec.codes.end(), IsUpperHex) ||
        !IsDate(spec.date) || !IsTime(spec.time))
        return std::nullopt;
    // The items begin at the ";" behind the time.
    qsizetype at = 0;
    for (int i = 0; i < 5; ++i)
        at = argument.indexOf(';', at) + 1;
    const auto items = at > 0 && head.size() > 5 ? Items(argument.mid(at - 1)) : Items({});
    if (!items || items->size() / 2 > kItems)
        return std::nullopt;
    spec.items = *items;
    return spec;
}

bool Specification::Continue(const QByteArray &argument)
{
    if (!argument.startsWith('&'))
        return false;
    qsizetype digits = 1;
    while (digits < argument.size() && argument[digits] >= '0' && argument[digits] <= '9')
        ++digits;
    bool ok = false;
    const int first = argument.mid(1, digits - 1).toInt(&ok);
    const auto items = Items(argument.mid(digits));
    if (!ok || first != itemCount() + 1 || !items || items->isEmpty() ||
        itemCount() + items->size() / 2 > kItems)
        return false;
    this->items += *items;
    return true;
}

QByteArray Specification::Part(int number, int part, bool leadingSeparator) const
{
    QByteArray text;
    if (part == 0)
        text = ";DATABASE  Nr=" + QByteArray::number(number) + ';' + codes + ';' + label + ';' + date + ';' +
               time;
    const int first = part == 0 ? 1 : kPartEnds[part - 1] + 1;
    for (int item = first; item <= kPartEnds[part]; ++item)
        text += ';' + items.value(2 * item - 2) + ';' + items.value(2 * item - 1);
    return part == 0 || !leadingSeparator ? text : ';' + text;
}

} // namespace kalvo::sim
