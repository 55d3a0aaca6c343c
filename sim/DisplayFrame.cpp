// A screenful of the tester's remote display, as the tester sends it while it measures.
#include "DisplayFrame.h"

namespace kalvo::sim {

namespace {
QByteArray Fixed(double value, int decimals)
{
    return QByteArray::number(value, 'f', decimals);
}
} // namespace

QByteArray DisplayFrame(int sequence)
{
    const int step = sequence % 10;
    QByteArray frame("\x05");
    frame += "VDE 0701-0702  Ger\x84t 17\r\n";
    frame += "Schutzleiter   " + Fixed(0.11 + 0.01 * step, 2) + " \xEA\r\n";
    frame += "Isolation     >" + Fixed(19.9, 1) + " M\xEA\r\n";
    frame += "Ersatzableit.  " + Fixed(0.08 + 0.01 * (step % 3), 2) + " mA\r\n";
    frame += "Ber\x81hrstrom    " + QByteArray::number(12 + step) + " \xE6" + "A\r\n";
    // Split literals: a hexadecimal escape would swallow the "f" of "fung".
    frame += step % 2 == 0 ? "Pr\x81"
                             "fung l\x84uft\r\n"
                           : "Pr\x81"
                             "fung l\x84uft .\r\n";
    return frame;
}

} // namespace kalvo::sim
