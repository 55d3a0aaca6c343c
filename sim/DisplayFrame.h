// A screenful of the tester's remote display, as the tester sends it while it measures.
#pragma once

#include <QByteArray>

namespace kalvo::sim {

// ENQ (clear), then measurement lines in the tester's own character set (0x81 ü, 0x84 ä,
// 0xE6 µ, 0xEA ohm), each ending in CR LF. `sequence` moves the readings, so that successive
// frames differ as they do on a running tester.
QByteArray DisplayFrame(int sequence);
// Help text `number` of the tester's built-in help, as the display shows it.
QByteArray HelpTextFrame(int number);
// The start screen the tester returns to.
QByteArray StartScreenFrame();

} // namespace kalvo::sim
