// Operations that read values out of the tester's answers, over a line that answers with the input:
// identification, registers, variables, limits, modem writes, clock, records, listing, accessory.
// Input: one byte choosing the operation, then a FuzzTransport script.
#include "FuzzDevice.h"
#include "FuzzFiles.h"

#include "config/Limits.h"
#include "config/Variables.h"
#include "link/Errors.h"
#include "link/Identification.h"
#include "link/Registers.h"
#include "link/ServiceSession.h"
#include "modem/ModemSettings.h"
#include "records/RecordFiles.h"
#include "records/RecordRetrieval.h"
#include "records/TesterPrintText.h"
#include "shell/ClockAndName.h"

using namespace kalvo;

namespace {

void RunOperation(fuzz::FuzzDevice &device, int operation)
{
    link::Link &link = device.link;
    switch (operation) {
    case 0: link::IdentifyTester(link, {}); break;
    case 1: {
        link::RegisterTable table;
        link::ReadRegisters(link, table);
        break;
    }
    case 2:
        modem::WriteModemSettings(link, {QStringLiteral("0711"), QString(), QStringLiteral("ATZ")});
        break;
    case 3: config::ReadLimit(link, config::LimitKind::Kuschl); break;
    case 4: config::ReadLimit(link, config::LimitKind::Ubez); break;
    case 5: config::ReadLimit(link, config::LimitKind::Pzhv); break;
    case 6:
        config::ReadVariable(link, QStringLiteral("VOPTD3#D3"));
        config::ReadVariable(link, QStringLiteral("BIT4#04"));
        break;
    case 7: config::DumpConfiguration(link, {}); break;
    case 8: records::CountRecords(link); break;
    case 9: records::ReadCurrentRecordParts(link); break;
    case 10:
        records::ReadStoreListing(link, device.prompter, fuzz::WriteScratchFile(records::kProtoFileName, {}));
        break;
    case 11:
        records::ReadAccessoryRecords(link, device.prompter,
                                      fuzz::WriteScratchFile(records::kLogTmpFileName, {}));
        break;
    case 12: records::RenderStoredRecord(link, 1, 1); break;
    case 13: shell::ReadTesterClock(link); break;
    case 14: link::ConnectTester(link, QStringLiteral("fuzz")); break;
    default: link::StoreChanges(link, device.prompter, link::StoreCommand::Calibration); break;
    }
}

constexpr int kOperations = 16;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    fuzz::FuzzDevice device(fuzz::InputBytes(data + 1, size - 1));
    const int operation = data[0] % kOperations;
    // Each round either takes bytes from the script or ends in a time-out that closes the port.
    while (device.link.IsOpen() && !device.transport.exhausted()) {
        try {
            RunOperation(device, operation);
        } catch (const link::KalvoError &) {
            // Refusals, time-outs and answers without the value are reported, not faults.
        }
    }
    return 0;
}
