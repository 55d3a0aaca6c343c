// An SQLite archive in a folder shared over the network is refused for writing.
#pragma once

#include "ArchiveLocation.h"
#include "platform/Volumes.h"

namespace kalvo::archive {

// Throws ArchiveError recommending a PostgreSQL address when `volume` is a network file system:
// SQLite's locks and its write-ahead log do not work between machines, so two PCs writing one
// file there would damage it.
void RefuseNetworkVolume(const ArchiveTarget &target, const platform::Volume &volume);

// How the archive learns the volume of a file; platform::VolumeOf unless replaced. Returns the
// probe it replaces. (The tests give it the file-system type of a share they cannot mount.)
using VolumeProbe = platform::Volume (*)(const QString &path);
VolumeProbe SetVolumeProbe(VolumeProbe probe);
platform::Volume ProbeVolume(const QString &path);

} // namespace kalvo::archive
