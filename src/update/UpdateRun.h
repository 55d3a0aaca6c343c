// Loading firmware and packages into the tester: one chosen file, a file by its exact name, or
// the whole package of a language, each ahead of its loader command.
#pragma once

#include "CalibrationFixUp.h"
#include "HexFile.h"
#include "UpdateKinds.h"
#include "UpdatePermission.h"
#include "link/Identification.h"
#include "link/LanguageTable.h"

#include <QStringList>
#include <functional>
#include <optional>

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::update {

// The package languages: ge gb fr it nl es ts pl.
const QStringList &PackageLanguageCodes();

// What the runs check before their first command, for a front end that talks to the tester before
// it starts one (kalvo-cli wakes and identifies it first): a firmware file that is not Intel HEX
// and a package beyond its size limit throw link::FormatError. Missing and short files pass: their
// step reports them. Returns the firmware file read.
std::optional<HexFile> CheckBeforeSending(ContentKind kind, const QString &path);
// The same for the four files of a language in `directory`.
void CheckPackageBeforeSending(const QString &directory, const QString &languageCode);

struct UpdateContext {
    QString directory;         // the download directory
    link::LanguageTable texts; // the refusal texts of the program's language
    // Told the path of each file before its loader is announced, so the person watching sees which
    // of a package's files is going; called on the thread that runs the update.
    std::function<void(const QString &path)> fileStarting;
};

struct UpdateOutcome {
    QStringList sent;                // file names that reached the tester whole
    QStringList missing;             // reported " nicht gefunden"
    QList<ContentKind> notPermitted; // refused by the update-permitted flag
    // The identity read after the run (the window shows it; the fix-up goes by its version).
    std::optional<link::TesterIdentity> identity;
    std::optional<FixUpResult> fixUp;
    bool Complete() const { return missing.isEmpty() && notPermitted.isEmpty(); }
};

// Whatever goes wrong before the first command throws and sends nothing: a firmware file that is
// not Intel HEX, a file beyond its size limit (link::FormatError). A failed transfer (link::Timeout,
// link::TransferError, link::ProtocolError), or a loader command the tester refuses, ends that
// transfer: no loader opens after it, but the run still restarts the tester and reads its identity
// where it would have, then throws the failure (a package run makes no calibration fix-up then). A
// port that is gone ends the run at once. A file that is missing or too short is reported
// " nicht gefunden" and the run goes on. Nothing is sent while the port is closed (the user is told).

// A file chosen in the file list of `kind`: "idn!99", "kal!ein", the loader command and the
// file; after a package file also "rst!0" and EOT (firmware restarts the tester by itself); then
// the identity is read again. Choosing the file permits its update.
UpdateOutcome UpdateSingleFile(link::Link &link, link::Prompter &prompter, UpdatePermission &permission,
                               ContentKind kind, const QString &path, const UpdateContext &context);

// The start button: `fileName` is compared exactly, case included, with the language's sequence
// and help files, "bilder.p" and "med.hex", in this order; any other name is not sent. "rst!0" and
// EOT always follow.
UpdateOutcome UpdateByName(link::Link &link, link::Prompter &prompter, const UpdatePermission &permission,
                           const QString &fileName, const link::PackageFiles &languageFiles,
                           const UpdateContext &context);

// All four files of a language (a code of PackageLanguageCodes): firmware, pictures, sequences,
// help, "rst!0" and EOT, the identity, and the calibration fix-up on firmware above 1.4.
UpdateOutcome UpdatePackage(link::Link &link, link::Prompter &prompter, UpdatePermission &permission,
                            const QString &languageCode, const UpdateContext &context);

} // namespace kalvo::update
