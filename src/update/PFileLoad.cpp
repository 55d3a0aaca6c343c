// A template's P-file made beside it, and loaded into the tester through the picture loader.
#include "PFileLoad.h"

#include "FileBytes.h"
#include "PFile.h"
#include "RunFailure.h"
#include "Transfers.h"
#include "UpdateKinds.h"
#include "link/Link.h"
#include "link/Prompter.h"
#include "link/ServiceSession.h"
#include "link/UserFiles.h"

#include <QFileInfo>

namespace kalvo::update {

std::optional<MadePFile> MakePFile(link::Prompter &prompter, const QString &templatePath, int slot,
                                   const QString &outPath)
{
    const PFileBuild build = BuildPFile(ReadTemplateLines(templatePath), slot);
    if (build.bytes.isEmpty()) {
        prompter.message(kTooLongText, link::Prompter::Icon::Warning);
        return std::nullopt;
    }
    // Beside the template, or in the user's data folder when the template's folder is read-only.
    MadePFile made{outPath.isEmpty() ? link::PlaceFileAndSay(prompter, PFileName(templatePath)) : outPath,
                   build.bytes};
    SaveBytes(made.path, made.bytes);
    return made;
}

bool LoadPFile(link::Link &link, link::Prompter &prompter, const MadePFile &pfile)
{
    const link::TransferScope transfer(link);
    const link::RefusalWatch session(link);
    RunFailure failure(link);
    link.SendCommand(QByteArray{} + link::kEOT + link::kCR);
    link.Wait(kPFileWakePause);
    link::OpenServiceSession(link);
    const bool send = pfile.bytes.size() >= kShortestPackageBytes;
    failure.Attempt([&] {
        AnnounceLoader(link, session, InfoFor(ContentKind::Pictures).announce, pfile.path);
        if (!send) {
            prompter.message(NotFoundText(pfile.path), link::Prompter::Icon::Warning);
            return;
        }
        StreamBytes(link, prompter, pfile.bytes);
        // The loader reports on a template as on a picture set: taken only when it says so.
        AwaitPackageReport(link, QFileInfo(pfile.path).fileName());
    });
    // Whatever the loader made of it, the tester leaves its loader and configuration mode.
    failure.Finish([&] {
        link.Wait(kPFileSettlePause);
        link::RestartTester(link);
    });
    return send;
}

bool BuildAndLoadPFile(link::Link &link, link::Prompter &prompter, const QString &templatePath, int slot)
{
    const auto made = MakePFile(prompter, templatePath, slot);
    return made && LoadPFile(link, prompter, *made);
}

} // namespace kalvo::update
