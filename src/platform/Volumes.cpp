// The Linux file-system types that another machine serves.
#include "Volumes.h"

#include <array>
#include <utility>

namespace kalvo::platform {

Volume VolumeOfLinuxType(quint64 type)
{
    // Every file system whose files several machines share: byte-range locks are unreliable there,
    // and the shared memory of SQLite's write-ahead log is not shared between machines at all.
    // FUSE is left out: it also carries local disks (NTFS, exFAT), and its type does not say which.
    static constexpr std::array<std::pair<quint64, const char *>, 11> kNetwork = {{
        {0x6969, "nfs"},
        {0x517B, "smb"},
        {0xFF534D42, "cifs"},
        {0xFE534D42, "smb2"},
        {0x5346414F, "afs"},
        {0x6B414653, "afs"}, // the kernel's own AFS client
        {0x73757245, "coda"},
        {0x564C, "ncp"},
        {0x01021997, "9p"}, // also the Windows drives of WSL 2
        {0x00C36400, "ceph"},
        {0x0BD00BD0, "lustre"},
    }};
    for (const auto &[magic, name] : kNetwork)
        if (magic == type)
            return {true, QString::fromLatin1(name)};
    return {};
}

} // namespace kalvo::platform
