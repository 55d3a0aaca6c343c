// Test labels: how long 1,000 labels take from the archive to a PDF (the devices looked up, the QR
// codes made, the sheets written), on A4 sheets and on the roll.
#include "archive/Archive.h"
#include "archive/ArchiveLocation.h"
#include "archive/ArchiveQueries.h"
#include "archive/LabelDevices.h"
#include "archive/RecordImport.h"
#include "archive/TestLabels.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>

using namespace kalvo;

namespace {

using Seconds = std::chrono::duration<double>;
using Clock = std::chrono::steady_clock;

constexpr int kLabels = 1000;

// A record of device i of customer i % 40, tested in 2024.
QByteArray Record(int i)
{
    static const QByteArray fields60 = QByteArray(53, ';');
    const QDate day = QDate(2024, 1, 1).addDays(i % 365);
    QByteArray code(32, '0');
    code[6] = i % 9 == 0 ? '8' : '0';
    code[12] = '5';
    code.replace(28, 2, "05");
    return "PKALVO-1;" + code + ";E-" + QByteArray::number(10000 + i) + ";Bohrmaschine;" +
           day.toString(QStringLiteral("dd.MM.yy")).toLatin1() + ";10:15" + fields60 + ";;Kunde " +
           QByteArray::number(i % 40) + " GmbH & Co. KG;;;;$FF\r\n";
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QTemporaryDir dir;
    archive::Archive archive(archive::ParseArchiveUrl(dir.filePath(QStringLiteral("bench.sqlite"))));
    QList<QByteArray> records;
    for (int i = 0; i < kLabels; ++i)
        records << Record(i);
    archive::ImportRecords(archive, records, {QStringLiteral("bench"), {}, {}, {}});
    QList<qint64> ids;
    archive::ForEachRecord(archive, {}, [&ids](const archive::ArchivedRecord &r) { ids << r.id; });

    for (const archive::LabelSheet &sheet : archive::LabelSheets()) {
        const QString pdf = dir.filePath(sheet.name + QStringLiteral(".pdf"));
        const auto start = Clock::now();
        const QList<archive::LabelDevice> devices = archive::LabelDevices(archive, ids);
        const auto found = Clock::now();
        archive::WriteLabelsPdf(devices, sheet, 1, pdf);
        const auto written = Clock::now();
        std::printf("%d labels %-8s %6.2f s (archive %.2f s, PDF %.2f s), %.1f MB\n",
                    static_cast<int>(devices.size()), qPrintable(sheet.name),
                    Seconds(written - start).count(), Seconds(found - start).count(),
                    Seconds(written - found).count(), QFileInfo(pdf).size() / 1e6);
    }
    return 0;
}
