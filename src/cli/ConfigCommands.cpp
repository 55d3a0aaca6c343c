// kalvo-cli vars, limits, cal and modem: the tester's configuration, limits, calibration, modem.
#include "CliCommand.h"
#include "CliContext.h"
#include "CliWords.h"

#include "config/Calibration.h"
#include "config/CalibrationDiff.h"
#include "config/Limits.h"
#include "config/VariableFile.h"
#include "config/Variables.h"
#include "link/Identification.h"
#include "link/TextRules.h"
#include "link/UserFiles.h"
#include "modem/ModemSettings.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>

namespace kalvo::cli {

namespace {

const QString kVarsSynopsis =
    QStringLiteral("list [--json] | read NAME|ADDRESS [--json] | dump [--json] | store");

// Forwards to the command line's prompter but answers a store question with OK when asked to
// store (--store) — unless the tester refused something: then the command line's prompter answers
// Cancel, whatever --store or --yes say, so that nothing half-written is kept.
class StoringPrompter final : public link::Prompter {
public:
    StoringPrompter(CliPrompter &inner, bool store) : m_inner(inner), m_store(store) {}
    void message(const QString &text, Icon icon) override { m_inner.message(text, icon); }
    bool confirm(const QString &text) override
    {
        if (!m_store || m_inner.RefusalSeen())
            return m_inner.confirm(text);
        m_inner.message(text + QStringLiteral(" -> OK (--store)"), Icon::Information);
        return true;
    }
    // --store is the command line's answer to "store over what the tester holds?" as well.
    bool confirmLoss(const QString &text) override { return confirm(text); }
    std::optional<QString> askText(const QString &t, const QString &p, const QString &d) override
    {
        return m_inner.askText(t, p, d);
    }
    QString askOpenFile(const QString &filter) override { return m_inner.askOpenFile(filter); }
    QString askSaveFile(const QString &filter) override { return m_inner.askSaveFile(filter); }
    void progress(int percent) override { m_inner.progress(percent); }
    void busy(bool on) override { m_inner.busy(on); }

private:
    CliPrompter &m_inner;
    bool m_store;
};

// Takes "--store" out of `words`; true when it was there.
bool TakeStore(QStringList &words)
{
    return words.removeAll(QStringLiteral("--store")) > 0;
}

int Vars(CliContext &context, const QStringList &arguments)
{
    const Words w = SplitWords(arguments, {}, {QStringLiteral("--json")});
    const QStringList &words = w.positional;
    const bool json = w.flags.contains(QStringLiteral("--json"));
    const QString action = words.value(0);
    QTextStream &out = context.out();
    if (action == QLatin1String("store") && words.size() == 1 && !json) {
        context.OpenPort();
        return config::StoreConfiguration(context.link(), context.prompter()) ? kExitDone : kExitFailed;
    }
    if (action == QLatin1String("list") && words.size() == 1) {
        const config::VariableFile file = config::VariableFile::Load(config::VariableFile::Locate());
        if (json)
            context.PrintJson(QJsonArray::fromStringList(file.entries()));
        else
            for (const QString &entry : file.entries())
                out << entry << '\n';
        return kExitDone;
    }
    if (action == QLatin1String("dump") && words.size() == 1) {
        const config::VariableFile file = config::VariableFile::Load(config::VariableFile::Locate());
        context.OpenPort();
        const QStringList lines = config::DumpConfiguration(context.link(), file.blockEntries()).lines;
        if (json)
            context.PrintJson(QJsonArray::fromStringList(lines));
        else
            out << lines.join(QLatin1Char('\n')) << '\n';
        return kExitDone;
    }
    if (action == QLatin1String("read") && words.size() == 2) {
        // A name or address from variable.mas; a bare address not in the file is read as a variable.
        QString entry;
        const QString path = config::VariableFile::Locate();
        if (QFile::exists(path))
            entry = config::VariableFile::Load(path).Find(words[1]);
        if (entry.isEmpty()) {
            static const QRegularExpression address(QStringLiteral("^[0-9A-Fa-f]{2}$"));
            if (!address.match(words[1]).hasMatch())
                throw Usage(UsageText::NotInVariableFile, {words[1]});
            entry = QStringLiteral("V#") + words[1].toUpper();
        }
        context.OpenPort();
        const config::VariableReading reading = config::ReadVariable(context.link(), entry);
        if (json) {
            context.PrintJson(QJsonObject{{QStringLiteral("entry"), entry},
                                          {QStringLiteral("command"), QString::fromLatin1(reading.command)},
                                          {QStringLiteral("value"), QString::fromLatin1(reading.value)},
                                          {QStringLiteral("binary"), reading.binary},
                                          {QStringLiteral("number"), reading.number}});
            return kExitDone;
        }
        out << entry << ' ' << reading.command << ": " << reading.value << ' ' << reading.binary << " ("
            << reading.number << ")\n";
        return kExitDone;
    }
    throw Usage(UsageText::Expected, {kVarsSynopsis});
}

config::LimitKind LimitArgument(const QString &word)
{
    const auto kind = config::LimitKindFromName(word);
    if (!kind)
        throw Usage(UsageText::NoneOf, {word, QStringLiteral("kuschl, ubez, pzhv")});
    return *kind;
}

int Limits(CliContext &context, QStringList words)
{
    const bool store = TakeStore(words);
    const QString action = words.value(0);
    QTextStream &out = context.out();
    if (action == QLatin1String("get") && words.size() == 2 && !store) {
        const config::LimitKind kind = LimitArgument(words[1]);
        context.OpenPort();
        const int value = config::ReadLimit(context.link(), kind);
        out << config::Limit(kind).name << config::LimitLabel(kind, value) << '\n';
        return kExitDone;
    }
    if (action == QLatin1String("set") && words.size() == 3) {
        const config::LimitKind kind = LimitArgument(words[1]);
        bool ok = false;
        const int value = words[2].toInt(&ok);
        const config::LimitInfo &info = config::Limit(kind);
        if (!ok || !config::InRange(kind, value))
            throw Usage(UsageText::Between,
                        {words[1], QString::number(info.minimum), QString::number(info.maximum), words[2]});
        context.OpenPort();
        // A refused limit is not stored: WriteLimit said so and the store is not sent.
        if (!config::WriteLimit(context.link(), context.prompter(), kind, value))
            return kExitFailed;
        if (store && !config::StoreLimits(context.link(), context.prompter()))
            return kExitFailed;
        return kExitDone;
    }
    throw Usage(UsageText::Expected,
                {QStringLiteral("get kuschl|ubez|pzhv | set kuschl|ubez|pzhv VALUE [--store]")});
}

QJsonValue JsonNumber(const std::optional<double> &value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

QJsonObject Json(const config::CalibrationDifference &d)
{
    return {{QStringLiteral("entry"), d.entry},
            {QStringLiteral("before"),
             QJsonArray{QString::fromLatin1(d.before[0]), QString::fromLatin1(d.before[1])}},
            {QStringLiteral("after"),
             QJsonArray{QString::fromLatin1(d.after[0]), QString::fromLatin1(d.after[1])}},
            {QStringLiteral("percent"), QJsonArray{JsonNumber(d.percent[0]), JsonNumber(d.percent[1])}},
            {QStringLiteral("text"), config::DescribeDifference(d)}};
}

int Cal(CliContext &context, QStringList words)
{
    const bool store = TakeStore(words);
    const bool json = words.removeAll(QStringLiteral("--json")) > 0;
    const QString action = words.value(0);
    QTextStream &out = context.out();
    const auto show = [&out](const QString &line) { out << line << Qt::endl; };
    if (action == QLatin1String("backup") && words.size() <= 2 && !store && !json) {
        context.OpenPort();
        QString path = words.value(1);
        if (path.isEmpty()) {
            const link::TesterIdentity id = link::IdentifyTester(context.link(), {});
            context.TesterIdentified(id);
            path =
                link::PlaceFileAndSay(context.prompter(), {}, config::DefaultBackupName(id.shortDesignation));
        }
        config::BackupCalibration(context.link(), context.prompter(), path, show);
        out << "51 entries -> " << QDir::toNativeSeparators(path) << '\n';
        return kExitDone;
    }
    if (action == QLatin1String("restore") && words.size() == 2 && !json) {
        // Read before anything is sent: a bad file ends the command with the tester untouched.
        config::ReadCalibrationFile(words[1], config::RestoreSource::MainForm);
        context.OpenPort();
        StoringPrompter prompter(context.prompter(), store);
        const auto result = config::RestoreCalibration(
            context.link(), prompter, words[1], config::RestoreSource::MainForm, show, context.language());
        out << result.entriesWritten << " entries written, " << (result.stored ? "stored" : "not stored")
            << '\n';
        return kExitDone;
    }
    if (action == QLatin1String("diff") && words.size() == 3 && !store) {
        const auto differences = config::DiffCalibration(words[1], words[2]);
        if (json) {
            QJsonArray list;
            for (const auto &d : differences)
                list.append(Json(d));
            context.PrintJson(list);
            return kExitDone;
        }
        for (const auto &d : differences)
            out << config::DescribeDifference(d) << '\n';
        if (differences.isEmpty())
            out << "no differences\n";
        return kExitDone;
    }
    throw Usage(UsageText::Expected,
                {QStringLiteral("backup [FILE] | restore FILE [--store] | diff A.cal B.cal [--json]")});
}

int Modem(CliContext &context, const QStringList &words)
{
    const Words w =
        SplitWords(words, {QStringLiteral("--tel1"), QStringLiteral("--tel2"), QStringLiteral("--init")},
                   {QStringLiteral("--store")});
    if (w.positional != QStringList{QStringLiteral("set")})
        throw Usage(UsageText::Expected, {QStringLiteral("set [--tel1 T] [--tel2 T] [--init S] [--store]")});
    const bool store = w.flags.contains(QStringLiteral("--store"));
    const QMap<QString, QString> &given = w.options;
    context.OpenPort();
    // As the modem window does: all five registers are written, and what is not given is empty
    // (the tester has no command that reads them back).
    const modem::ModemSettings settings{given.value(QStringLiteral("--tel1")),
                                        given.value(QStringLiteral("--tel2")),
                                        given.value(QStringLiteral("--init"))};
    StoringPrompter prompter(context.prompter(), store);
    const QList<QByteArray> refused = modem::WriteModemSettings(context.link(), settings);
    if (store && !modem::StoreModemSettings(context.link(), prompter,
                                            context.texts().text(link::TxtModemStored), refused))
        return kExitFailed;
    return kExitDone;
}

} // namespace

QList<CliCommand> ConfigCommands()
{
    return {
        {QStringLiteral("vars"), kVarsSynopsis,
         QStringLiteral("the names of variable.mas, one variable or bit, the configuration block D0..FF, "
                        "store the configuration (cfg!pgm)"),
         Vars},
        {QStringLiteral("limits"),
         QStringLiteral("get kuschl|ubez|pzhv | set kuschl|ubez|pzhv VALUE [--store]"),
         QStringLiteral("read or write a limit (15..95 mA, 90..300 V, 1..60 s); --store keeps it (cfg!pgm)"),
         Limits},
        {QStringLiteral("cal"),
         QStringLiteral("backup [FILE] | restore FILE [--store] | diff A.cal B.cal [--json]"),
         QStringLiteral("save the calibration table (default: the tester's name + .cal), write one back "
                        "(stored with --store or --yes), compare two backups"),
         Cal},
        {QStringLiteral("modem"), QStringLiteral("set [--tel1 T] [--tel2 T] [--init S] [--store]"),
         QStringLiteral("write the modem's telephone numbers and initialisation string (all five string "
                        "registers; what is not given is sent empty); --store keeps them"),
         Modem},
    };
}

} // namespace kalvo::cli
