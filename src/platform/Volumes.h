// Which kind of file system holds a file: one of this PC's disks or a folder shared over the network.
#pragma once

#include <QString>
#include <QtGlobal>

namespace kalvo::platform {

struct Volume {
    bool network = false; // another machine serves the files (NFS, SMB, a mapped network drive)
    QString type;         // what the system calls it ("nfs", "cifs", "Netzlaufwerk"); empty when local
};

// The volume of `path`, or of the nearest folder above it that exists (a file about to be made).
// A volume that cannot be asked counts as local: nothing is refused on a guess.
Volume VolumeOf(const QString &path);

// The Linux file-system type number that statfs() reports (f_type), as a volume. Every system
// knows it, so that the list can be tested anywhere.
Volume VolumeOfLinuxType(quint64 type);

} // namespace kalvo::platform
