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

QByteArray HelpTextFrame(int number)
{
    // A few of the tester's help texts; the others show their number and the key hint.
    static const char *const kTexts[] = {
        "Schutzleiterpr\x81"
        "fung:\r\nPr\x81"
        "fspitze an alle\r\nber\x81hrbaren Metallteile.",
        "Isolationsmessung:\r\nGer\x84t einschalten,\r\nNetzstecker eingesteckt.",
        "Ersatzableitstrom:\r\nnur bei Schutzklasse I\r\nund II zul\x84ssig.",
        "Ber\x81hrstrom:\r\nMessung am laufenden\r\nGer\x84t durchf\x81hren.",
    };
    QByteArray frame("\x05HILFE " + QByteArray::number(number) + "\r\n");
    if (number >= 1 && number <= static_cast<int>(std::size(kTexts)))
        frame += kTexts[number - 1];
    else
        frame += "Hilfetext " + QByteArray::number(number);
    frame += "\r\nTaste 1: weiter\r\n";
    return frame;
}

QByteArray StartScreenFrame()
{
    return "\x05Kalvomer 9000\r\nBereit\r\n";
}

} // namespace kalvo::sim
