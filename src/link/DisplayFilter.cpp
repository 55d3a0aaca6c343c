// What the remote-display panel does with a burst of unprompted bytes from the tester.
#include "DisplayFilter.h"

#include "Link.h"
#include "TextRules.h"

namespace kalvo::link {

DisplayUpdate FilterDisplayStream(QByteArray burst)
{
    if (burst.contains("KEY")) {
        // Removing one marker can join the pieces of another, so repeat until none is left.
        while (burst.contains("OFF\r\n"))
            burst.replace("OFF\r\n", "");
    }
    const qsizetype prx = PositionOf(burst, "PRX");
    if (prx > 0)
        burst.truncate(std::max<qsizetype>(0, prx - 2));

    DisplayUpdate update;
    for (char ch : std::as_const(burst)) {
        const auto c = static_cast<unsigned char>(ch);
        if (c == '\n' || c == '\r') {
            update.text += QChar(c);
        } else if ((c >= 32 && c < 160) || (c >= 162 && c <= 254)) {
            update.text += ConvertDisplayChar(c);
        } else if (ch == kENQ) {
            update.clear = true;
            update.text.clear();
        }
    }
    return update;
}

} // namespace kalvo::link
