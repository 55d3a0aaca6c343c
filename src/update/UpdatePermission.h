// Whether an update may be sent: the update-permitted and package-run flags and the upoc entry.
#pragma once

#include "UpdateKinds.h"

namespace kalvo::update {

// Kept by the window (or a command-line run) for as long as it lives. A fresh one stands for
// the program's start, where the update is permitted.
struct UpdatePermission {
    bool permitted = true;
    bool packageRun = false;
    bool upoc = false; // "update ohne Versionskontrolle" checked

    // Choosing a file in the file list permits its update.
    void FileChosen() { permitted = true; }
    // Switching upoc on permits updates; switching it off only clears its check mark.
    void SetUpoc(bool on);
    // Sequences and help go out during a package run whatever `permitted` says; pictures and
    // firmware only when permitted.
    bool Allows(ContentKind kind) const;
};

} // namespace kalvo::update
