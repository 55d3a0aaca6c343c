// What every kalvo-cli command works with: options, the prompter, the transport and the link.
#include "CliContext.h"

#include "archive/Archive.h"
#include "archive/RecordKeeping.h"
#include "link/Errors.h"
#include "link/PortNames.h"
#include "link/SerialTransport.h"
#include "platform/Console.h"
#include "shell/Settings.h"
#include "sim/SimTransport.h"
#include "sim/VirtualTester.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>

namespace kalvo::cli {

struct CliContext::Simulator {
    sim::VirtualTester tester{link::SteadyClock::instance()};
};

CliContext::CliContext(const CliOptions &options)
    : m_options(options),
      m_prompter(options.yes, platform::StderrIsTerminal() ? ProgressStyle::Bar : ProgressStyle::Percentages),
      m_out(stdout)
{
    if (options.simulate) {
        m_simulator = std::make_unique<Simulator>();
        m_transport = std::make_unique<sim::SimTransport>(m_simulator->tester, link::SteadyClock::instance());
    } else {
        m_transport = std::make_unique<link::SerialTransport>();
    }
    m_link = std::make_unique<link::Link>(*m_transport, m_prompter);
    m_prompter.WatchRefusals(m_link.get());
    const shell::Settings settings = shell::ReadSettings();
    for (const QString &warning : settings.warnings)
        m_prompter.message(warning, link::Prompter::Icon::Warning);
    UseLanguage(!options.language.isEmpty() ? options.language
                                            : settings.language.value_or(QStringLiteral("deutsch")));
    m_link->setTimeout(link::FromSeconds(options.timeoutSeconds));
    if (!options.traceFile.isEmpty())
        m_link->StartTrace(options.traceFile);
}

void CliContext::UseLanguage(const QString &language)
{
    if (link::FindLanguage(language))
        m_language = language;
    QString error;
    try {
        const QString file = QDir(QCoreApplication::applicationDirPath()).filePath(link::kLanguageFileName);
        if (!m_texts.SetLanguageFromFile(language, file, &error) && !error.isEmpty())
            m_prompter.message(error, link::Prompter::Icon::Warning);
    } catch (const link::KalvoError &e) {
        m_prompter.message(e.message(), link::Prompter::Icon::Warning);
    }
    m_link->setPortNotOpenText(m_texts.text(link::TxtPortNotOpen));
    m_link->setProtocolErrorText(m_texts.text(link::TxtProtocolError));
}

void CliContext::TesterIdentified(const link::TesterIdentity &identity)
{
    // As in the window, the tester's display language becomes the program's; a language asked
    // for on the command line stays, since a script that reads the messages relies on it.
    if (m_options.language.isEmpty() && identity.language.name != m_texts.language())
        UseLanguage(identity.language.name);
}

void CliContext::PrintJson(const QJsonValue &value)
{
    const QJsonDocument document =
        value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    m_out << document.toJson(QJsonDocument::Indented);
}

CliContext::~CliContext()
{
    m_out.flush();
    m_link->ClosePort();
}

void CliContext::OpenPort()
{
    m_link->OpenPort(portName());
}

void CliContext::OpenPortForRecords()
{
    OpenPort();
    if (!archive::KeepingRecords(m_options.archiveUrl, m_options.noArchive))
        return;
    const link::TesterIdentity identity = link::IdentifyTester(*m_link, {});
    TesterIdentified(identity);
    m_testerName = identity.DesignationText();
    m_testerSerial = identity.SerialText();
}

archive::RecordSource CliContext::TesterSource(const QString &accessory, const QString &file) const
{
    return {m_testerName.isEmpty() ? portName() : m_testerName, m_testerSerial, accessory, file,
            m_options.customer};
}

QString CliContext::portName() const
{
    if (m_options.simulate)
        return link::kSimulatorPortName;
    if (!m_options.port.isEmpty())
        return m_options.port;
    return shell::ReadSettings().portName;
}

archive::Archive &CliContext::archive(archive::ArchiveAccess access)
{
    if (!m_archive) {
        const QString url =
            m_options.archiveUrl.isEmpty() ? archive::ReadArchiveSettings().url : m_options.archiveUrl;
        m_archive = std::make_unique<archive::Archive>(archive::ParseArchiveUrl(url), access);
    }
    return *m_archive;
}

bool CliContext::KeepInArchive(const QList<QByteArray> &records, const archive::RecordSource &source)
{
    archive::RecordSource withCustomer = source;
    if (withCustomer.customer.isEmpty())
        withCustomer.customer = m_options.customer;
    const archive::KeepOutcome outcome =
        archive::KeepReadRecords(records, withCustomer, m_options.archiveUrl, m_options.noArchive);
    for (const QString &message : outcome.messages)
        m_prompter.message(message,
                           outcome.failed ? link::Prompter::Icon::Critical : link::Prompter::Icon::Warning);
    return !outcome.failed;
}

} // namespace kalvo::cli
