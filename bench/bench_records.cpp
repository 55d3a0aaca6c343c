// Record benchmarks: decoding, reports and CSV per second, reports and PDFs of records with one
// very large field, and reading records at 9600 baud against the wire time of the bytes that crossed.
#include "QuietPrompter.h"
#include "link/Link.h"
#include "records/RecordDecoding.h"
#include "records/RecordFiles.h"
#include "records/RecordRetrieval.h"
#include "records/ReportBuilder.h"
#include "records/TesterPrintText.h"
#include "records/print/ReportDocument.h"
#include "sim/SampleRecords.h"
#include "sim/SimTransport.h"
#include "sim/VirtualTester.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>

using namespace kalvo;

namespace {

using Seconds = std::chrono::duration<double>;

// Counts the bytes that cross the line in both directions.
class CountingTransport final : public link::Transport {
public:
    explicit CountingTransport(link::Transport &inner) : m_inner(inner) {}
    void open(const QString &name) override { m_inner.open(name); }
    void close() override { m_inner.close(); }
    bool isOpen() const override { return m_inner.isOpen(); }
    void write(const QByteArray &bytes) override
    {
        m_bytes += bytes.size();
        m_inner.write(bytes);
    }
    bool drain(std::chrono::milliseconds limit) override { return m_inner.drain(limit); }
    QByteArray read(std::chrono::milliseconds wait) override
    {
        const QByteArray bytes = m_inner.read(wait);
        m_bytes += bytes.size();
        return bytes;
    }
    void discardInput() override { m_inner.discardInput(); }
    qint64 bytes() const { return m_bytes; }

private:
    link::Transport &m_inner;
    qint64 m_bytes = 0;
};

template <typename F> double PerSecond(int count, F &&work)
{
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i)
        work(i);
    return count / Seconds(std::chrono::steady_clock::now() - start).count();
}

QList<QByteArray> Records(int count)
{
    const QList<QByteArray> samples = sim::SampleTestRecords();
    QList<QByteArray> records;
    for (int i = 0; i < count; ++i)
        records << samples[i % samples.size()];
    return records;
}

double SecondsOf(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return Seconds(std::chrono::steady_clock::now() - start).count();
}

// A sample record whose first repair line (field 65) is `size` bytes long: time and memory of reports
// and PDFs must grow with the size and no faster.
void LargeFieldFigures()
{
    QTemporaryDir dir;
    const QByteArray sample = sim::SampleTestRecords().first();
    QList<QByteArray> fields = sample.split(';');
    fields[54] = "18.03.09"; // an accessory date: the report shows the repair text
    for (const qsizetype size : {qsizetype(100) * 1024, qsizetype(1024) * 1024, qsizetype(4) * 1024 * 1024}) {
        QByteArray text = "Kabel gepr\x81"
                          "ft und Stecker getauscht, Schutzleiter gemessen. ";
        fields[64] = text.repeated(size / text.size() + 1).left(size);
        const QByteArray record = fields.join(';') + "\r\n";
        QString report;
        const double reportTime =
            SecondsOf([&] { report = records::BuildReport(records::DecodeRecord(record)); });
        const QString pdf = dir.filePath(QStringLiteral("large.pdf"));
        const double pdfTime =
            SecondsOf([&] { records::SaveReportPdf(report, pdf, QStringLiteral("bench")); });
        std::printf("field of %5lld KB: report %.3f s, PDF %.2f s (%lld KB, %.2f s per MB of field)\n",
                    static_cast<long long>(size / 1024), reportTime, pdfTime,
                    static_cast<long long>(QFileInfo(pdf).size() / 1024), pdfTime / (size / 1048576.0));
    }
}

// A tester print text of the largest answer the link takes, all box drawing and umlauts.
void PrintTextFigure()
{
    const QByteArray box = "\xda\xc4\xc4\xbf\xb3\x81\x84\xea\xb3\xc0\xc4\xd9\r\n";
    const QByteArray answer = "prn!1\r\n\x05" + box.repeated(4 * 1024 * 1024 / box.size()) + "\x0c\r\n\x11";
    qsizetype shown = 0;
    const double seconds = SecondsOf([&] { shown = records::ExtractPrintText(answer).size(); });
    std::printf("print text of %lld KB: %.2f s (%lld characters)\n",
                static_cast<long long>(answer.size() / 1024), seconds, static_cast<long long>(shown));
}

} // namespace

int main(int argc, char *argv[])
{
    // The PDF writer needs fonts, hence a GUI application (offscreen when there is no display).
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);

    constexpr int kCount = 10000;
    QList<QByteArray> texts;
    for (const QByteArray &record : Records(kCount))
        texts << record + "\r\n";

    QList<records::DecodedRecord> decoded;
    decoded.reserve(kCount);
    const double decodeRate = PerSecond(kCount, [&](int i) { decoded << records::DecodeRecord(texts[i]); });
    qsizetype reportChars = 0;
    const double reportRate =
        PerSecond(kCount, [&](int i) { reportChars += records::BuildReport(decoded[i]).size(); });
    QByteArray csv;
    const double csvRate = PerSecond(1, [&](int) { csv = records::ExportCsv("header", texts, QString()); });
    std::printf("decode:  %10.0f records/s\n", decodeRate);
    std::printf("report:  %10.0f records/s (%lld characters)\n", reportRate,
                static_cast<long long>(reportChars));
    std::printf("csv:     %10.0f records/s (%lld bytes)\n", csvRate * kCount,
                static_cast<long long>(csv.size()));

    LargeFieldFigures();
    PrintTextFigure();

    constexpr int kRead = 50;
    constexpr int kBaud = 9600;
    sim::VirtualTester tester(link::SteadyClock::instance());
    tester.setBaud(kBaud);
    tester.model().records().setRecords(Records(kRead));
    sim::SimTransport sim(tester, link::SteadyClock::instance());
    CountingTransport counting(sim);
    kalvo::bench::QuietPrompter prompter;
    link::Link link(counting, prompter);
    link.OpenPort(QStringLiteral("Simulator"));
    const auto start = std::chrono::steady_clock::now();
    const int count = records::CountRecords(link).value_or(0);
    for (int i = 1; i <= count; ++i)
        (void)records::ReadRecord(link, i, records::FillerRule::Position);
    const double elapsed = Seconds(std::chrono::steady_clock::now() - start).count();
    const double wire = counting.bytes() * 10.0 / kBaud;
    std::printf("read %d records at %d baud: %.2f s for %lld bytes, wire time %.2f s, ratio %.3f\n", count,
                kBaud, elapsed, static_cast<long long>(counting.bytes()), wire, elapsed / wire);
    return 0;
}
