// The symbol file "variable.mas": definitions, the dump block, and the commands its entries give.
#include "FuzzFiles.h"

#include "config/VariableFile.h"
#include "config/Variables.h"
#include "link/Errors.h"

using namespace kalvo;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzz::InputBytes(data, size);
    config::VariableFile file;
    try {
        file = config::VariableFile::Parse(bytes, config::kVariableFileName);
    } catch (const link::KalvoError &) {
        return 0;
    }
    try {
        fuzz::Expect(file.blockEntries().size() <= config::kMaxBlockEntries, "the dump block keeps its cap");
    } catch (const link::KalvoError &) {
        // An overfull block refuses the dump only; the list below still stands.
    }
    for (const QString &entry : file.entries()) {
        file.Find(config::SplitEntry(entry).name);
        try {
            config::ReadCommandFor(entry);
        } catch (const link::KalvoError &) {
            // A name the tester has no read command for.
        }
    }
    file.Find(QStringLiteral("D3"));
    return 0;
}
