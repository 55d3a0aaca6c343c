// What the remote-display panel does with a burst of unprompted bytes from the tester.
#pragma once

#include <QByteArray>
#include <QString>

namespace kalvo::link {

struct DisplayUpdate {
    // The panel is emptied first (an ENQ came); `text` is then what follows the last ENQ.
    bool clear = false;
    QString text;
};

// Removes the "OFF" CR LF key markers, cuts at "PRX", keeps CR and LF, converts display
// characters, honours ENQ and drops every other control byte and the codes 160 and 161.
DisplayUpdate FilterDisplayStream(QByteArray burst);

} // namespace kalvo::link
