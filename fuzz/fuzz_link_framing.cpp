// The link's framing over a line that chunks, stalls and cuts the tester's bytes as the input says:
// wake-up, single answers, streamed answers, and two operations that read many answers in a row.
// Input: one byte choosing the scenario (bit 7: the development trace on), then a FuzzTransport script.
#include "FuzzDevice.h"
#include "FuzzFiles.h"

#include "config/Calibration.h"
#include "link/Errors.h"
#include "records/RecordRetrieval.h"

#include <QDir>
#include <QFile>

using namespace kalvo;

namespace {

void ExpectOneAnswer(const QByteArray &answer)
{
    fuzz::Expect(answer.endsWith(link::kDC1) && answer.count(link::kDC1) == 1,
                 "an answer ends at its first DC1");
}

void ExpectStream(const QByteArray &stream, const QByteArray &chunks)
{
    ExpectOneAnswer(stream);
    fuzz::Expect(stream == chunks, "the chunks seen make up the stream");
}

// A failed backup must leave the old file byte for byte.
void Backup(fuzz::FuzzDevice &device)
{
    const QByteArray old = "0:1,2\r\n";
    const QString path = fuzz::WriteScratchFile(QStringLiteral("backup.cal"), old);
    try {
        const QList<QByteArray> lines = config::BackupCalibration(device.link, device.prompter, path);
        fuzz::Expect(lines.size() == config::kCalibrationEntries, "a backup holds every entry");
    } catch (const link::KalvoError &) {
        QFile file(path);
        fuzz::Expect(file.open(QIODevice::ReadOnly) && file.readAll() == old,
                     "a failed backup keeps the old file");
        throw;
    }
}

void RunScenario(fuzz::FuzzDevice &device, int scenario)
{
    link::Link &link = device.link;
    switch (scenario) {
    case 0:
        link.WakeUp();
        ExpectOneAnswer(link.Exchange("dis?"));
        break;
    case 1:
    case 2: {
        QByteArray chunks;
        const QByteArray stream =
            link.ExchangeStream(scenario == 1 ? "prx?nx" : "wer?", [&](const QByteArray &c) { chunks += c; });
        ExpectStream(stream, chunks);
        if (scenario == 1)
            records::ParseStoreListing(stream);
        else
            records::SplitAccessoryStream(stream);
        break;
    }
    case 3: records::ReadRecord(link, 1, records::FillerRule::Position); break;
    case 4: records::ReadRecord(link, 1, records::FillerRule::Literal); break;
    default: Backup(device); break;
    }
}

constexpr int kScenarios = 6;
constexpr unsigned char kTraceBit = 0x80;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    fuzz::FuzzDevice device(fuzz::InputBytes(data + 1, size - 1));
    if (data[0] & kTraceBit)
        device.link.StartTrace(QDir(fuzz::ScratchFolder()).filePath(QStringLiteral("trace.log")));
    const int scenario = (data[0] & ~kTraceBit) % kScenarios;
    // Each round either takes bytes from the script or ends in a time-out that closes the port.
    while (device.link.IsOpen() && !device.transport.exhausted()) {
        try {
            RunScenario(device, scenario);
        } catch (const link::KalvoError &) {
            // Time-outs, a vanished line and unusable answers are what a bad line gives.
        }
    }
    return 0;
}
