// Reading the tester's variables and bits by name, the configuration dump and the register switches.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::config {

// Lines for a window's text panel as an operation produces them.
using LineSink = std::function<void(const QString &)>;

struct VariableReading {
    QByteArray command; // "var?D3" or "bit?04", as sent
    QByteArray answer;
    QByteArray value; // the value after "=" of the answer as two upper-case hexadecimal digits
    int number = 0;   // the value as a number
    QString binary;   // "0000 0001"
};

// The value of a "var?" or "bit?" answer: the two characters after the first "=", or the first
// two characters of an answer without "=".
QByteArray ValueAfterEquals(const QByteArray &answer);
// The hexadecimal digits of such a value as two upper-case digits: a tester may send a one-digit
// value with a blank in front (" 4" is "04"). Empty when the value starts with no digit.
QByteArray ByteDigits(const QByteArray &value);

// The read command of a "NAME#AD" entry: "bit?" for names beginning with B or PB, "var?" for V
// or PV. Throws link::FormatError for any other name or an entry without "#".
QByteArray ReadCommandFor(const QString &entry);
// Sends the entry's read command. Throws link::FormatError when the tester refuses (no ".Y") or
// the answer holds no hexadecimal value.
VariableReading ReadVariable(link::Link &link, const QString &entry);

struct ConfigurationDump {
    static constexpr int kRegisters = 48; // D0..FF
    QList<QByteArray> values;             // value i-1 belongs to D0 + i-1, as two upper-case digits
    QStringList lines;    // address, ": ", "==", the two characters after "=", " ", their bits, block entry i
    QString Text() const; // the lines, each ended by CR LF
};
// "var?D0" to "var?FF", whatever the symbol file defines; `blockEntries` label the lines in order.
// An answer that holds no value ends the dump with a link::FormatError naming its command. Each
// line goes to `onLine` as it is read, and `progress` hears how far the dump is.
ConfigurationDump DumpConfiguration(link::Link &link, const QStringList &blockEntries,
                                    link::Prompter *progress = nullptr, const LineSink &onLine = {});

// "cfg!pgm"; a ".Nx" answer is shown and false returned.
bool StoreConfiguration(link::Link &link, link::Prompter &prompter);

enum class RegisterSwitch {
    MitBez,   // register D3
    Accessory // register E3, the Quillbank accessory
};
// Off → sends "var!XX 1", on → "var!XX 0"; returns the new check state. The answer is not judged.
bool ToggleRegisterSwitch(link::Link &link, RegisterSwitch which, bool checked);
// "var!D3,0": the reset of D3 writes with a comma where the switch writes with a blank.
// False when the tester refused it.
bool ResetD3(link::Link &link);

} // namespace kalvo::config
