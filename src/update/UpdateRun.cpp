// Loading firmware and packages into the tester: one chosen file, a file by its exact name, or
// the whole package of a language, each ahead of its loader command.
#include "UpdateRun.h"

#include "HexFile.h"
#include "RunFailure.h"
#include "Transfers.h"
#include "link/Link.h"
#include "link/PackageFiles.h"
#include "link/Prompter.h"
#include "link/ServiceSession.h"

#include <QDir>
#include <QFileInfo>

namespace kalvo::update {

namespace {

// The steps a run is made of, over one link, one permission and one outcome.
class Steps {
public:
    Steps(link::Link &link, link::Prompter &prompter, const UpdatePermission &permission,
          const UpdateContext &context)
        : m_link(link), m_prompter(prompter), m_permission(permission), m_context(context), m_transfer(link),
          m_session(link), m_failure(link)
    {}

    QString PathOf(const QString &fileName) const { return QDir(m_context.directory).filePath(fileName); }

    void CheckBeforeSending(ContentKind kind, const QString &path)
    {
        if (auto hex = update::CheckBeforeSending(kind, path))
            m_hex = std::move(hex);
    }

    // The firmware: its loader and the lines when permitted, otherwise the refusal and a restart.
    void SendFirmware(const QString &path)
    {
        if (!m_permission.Allows(ContentKind::System)) {
            Refuse(ContentKind::System);
            link::RestartTester(m_link);
            return;
        }
        if (!m_hex || m_hex->path() != path)
            CheckBeforeSending(ContentKind::System, path);
        Transfer(path, [&] {
            AnnounceLoader(m_link, m_session, InfoFor(ContentKind::System).announce, path);
            Count(SendHexFile(m_link, m_prompter, *m_hex), path);
        });
    }

    // A package file: its loader and the stream when permitted, otherwise the refusal.
    void SendPackage(ContentKind kind, const QString &path)
    {
        if (!m_permission.Allows(kind)) {
            Refuse(kind);
            return;
        }
        Transfer(path, [&] {
            AnnounceLoader(m_link, m_session, InfoFor(kind).announce, path);
            Count(SendPackageFile(m_link, m_prompter, path), path);
        });
    }

    void Send(ContentKind kind, const QString &path)
    {
        if (kind == ContentKind::System)
            SendFirmware(path);
        else
            SendPackage(kind, path);
    }

    void ReadIdentity() { m_outcome.identity = link::IdentifyTester(m_link, {m_context.directory}); }

    // What ends a run, done even after a failed transfer; the failure is told after it.
    template <typename Closing> void Finish(Closing closing) { m_failure.Finish(closing); }
    bool failed() const { return m_failure.failed(); }

    UpdateOutcome &outcome() { return m_outcome; }

private:
    // A file's loader and transfer; after a failed one no loader opens, and the file is not sent.
    template <typename Send> void Transfer(const QString &path, Send send)
    {
        if (m_failure.failed())
            return;
        TellFile(path);
        m_failure.Attempt(send);
    }

    void TellFile(const QString &path) const
    {
        if (m_context.fileStarting)
            m_context.fileStarting(path);
    }

    void Refuse(ContentKind kind)
    {
        m_prompter.message(m_context.texts.text(InfoFor(kind).refusal), link::Prompter::Icon::Warning);
        m_outcome.notPermitted << kind;
    }

    void Count(bool sent, const QString &path)
    {
        (sent ? m_outcome.sent : m_outcome.missing) << QFileInfo(path).fileName();
    }

    link::Link &m_link;
    link::Prompter &m_prompter;
    const UpdatePermission &m_permission;
    const UpdateContext &m_context;
    // The whole run is one transfer: from its first command the tester's contents are in flux.
    const link::TransferScope m_transfer;
    const link::RefusalWatch m_session; // from the start of the run: no loader opens after a refusal
    RunFailure m_failure;
    std::optional<HexFile> m_hex;
    UpdateOutcome m_outcome;
};

// The package-run flag for the life of a package run, however it ends.
class PackageRunScope {
public:
    explicit PackageRunScope(UpdatePermission &permission) : m_permission(permission)
    {
        m_permission.packageRun = true;
    }
    ~PackageRunScope() { m_permission.packageRun = false; }
    PackageRunScope(const PackageRunScope &) = delete;
    PackageRunScope &operator=(const PackageRunScope &) = delete;

private:
    UpdatePermission &m_permission;
};

// The package files of a language run after its firmware, in their order.
std::array<std::pair<QString, ContentKind>, 3> PackageOrder(const link::PackageFiles &files)
{
    return {{{files.pictures, ContentKind::Pictures},
             {files.sequences, ContentKind::Sequences},
             {files.help, ContentKind::Help}}};
}

} // namespace

std::optional<HexFile> CheckBeforeSending(ContentKind kind, const QString &path)
{
    if (!InfoFor(kind).lineTransfer) {
        CheckPackageFileSize(path);
        return std::nullopt;
    }
    HexFile hex = HexFile::Read(path);
    if (!hex.missing())
        hex.Check();
    return hex;
}

void CheckPackageBeforeSending(const QString &directory, const QString &languageCode)
{
    const link::PackageFiles files = link::PackageFilesFor(languageCode);
    const QDir dir(directory);
    CheckBeforeSending(ContentKind::System, dir.filePath(files.system));
    for (const auto &[name, kind] : PackageOrder(files))
        CheckBeforeSending(kind, dir.filePath(name));
}

const QStringList &PackageLanguageCodes()
{
    static const QStringList kCodes = {"ge", "gb", "fr", "it", "nl", "es", "ts", "pl"};
    return kCodes;
}

UpdateOutcome UpdateSingleFile(link::Link &link, link::Prompter &prompter, UpdatePermission &permission,
                               ContentKind kind, const QString &path, const UpdateContext &context)
{
    permission.FileChosen();
    Steps steps(link, prompter, permission, context);
    if (link.PortClosed())
        return steps.outcome();
    steps.CheckBeforeSending(kind, path);
    link::OpenServiceSession(link);
    steps.Send(kind, path);
    steps.Finish([&] {
        if (kind != ContentKind::System)
            link::RestartTester(link);
        steps.ReadIdentity();
    });
    return steps.outcome();
}

UpdateOutcome UpdateByName(link::Link &link, link::Prompter &prompter, const UpdatePermission &permission,
                           const QString &fileName, const link::PackageFiles &languageFiles,
                           const UpdateContext &context)
{
    Steps steps(link, prompter, permission, context);
    if (link.PortClosed())
        return steps.outcome();
    const std::pair<QString, ContentKind> candidates[] = {
        {languageFiles.sequences, ContentKind::Sequences},
        {languageFiles.help, ContentKind::Help},
        {languageFiles.pictures, ContentKind::Pictures},
        {languageFiles.system, ContentKind::System},
    };
    std::optional<ContentKind> kind;
    for (const auto &[name, candidate] : candidates) {
        if (fileName == name) {
            kind = candidate;
            break;
        }
    }
    const QString path = steps.PathOf(fileName);
    if (kind)
        steps.CheckBeforeSending(*kind, path);
    link::OpenServiceSession(link);
    if (kind)
        steps.Send(*kind, path);
    steps.Finish([&] {
        link::RestartTester(link);
        steps.ReadIdentity();
    });
    return steps.outcome();
}

UpdateOutcome UpdatePackage(link::Link &link, link::Prompter &prompter, UpdatePermission &permission,
                            const QString &languageCode, const UpdateContext &context)
{
    const PackageRunScope packageRun(permission);
    Steps steps(link, prompter, permission, context);
    if (link.PortClosed())
        return steps.outcome();
    const link::PackageFiles files = link::PackageFilesFor(languageCode);
    CheckPackageBeforeSending(context.directory, languageCode);

    link::OpenServiceSession(link);
    if (permission.upoc)
        permission.permitted = true;
    steps.SendFirmware(steps.PathOf(files.system));
    steps.Finish([&] {
        // The tester has restarted after its firmware.
        link::OpenServiceSession(link);
        for (const auto &[name, kind] : PackageOrder(files))
            steps.SendPackage(kind, steps.PathOf(name));
        link::RestartTester(link);
        steps.ReadIdentity();
        // Calibration values are changed only after a package that went in whole.
        if (!steps.failed() && FixUpNeeded(steps.outcome().identity->firmwareVersion))
            steps.outcome().fixUp = FixUpCalibration(link, prompter);
    });
    return steps.outcome();
}

} // namespace kalvo::update
