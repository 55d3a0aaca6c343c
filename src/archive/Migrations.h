// The archive's schema, built and upgraded by numbered steps recorded in schema_version.
#pragma once

namespace kalvo::archive {

class Archive;

// The newest schema this program knows.
int LatestSchemaVersion();

// Throws ArchiveError ("bitte kalvo aktualisieren") when `version` is newer than this program knows.
void RefuseNewerSchema(const Archive &archive, int version);

// Applies, in one transaction, every step the archive lacks and returns the version reached. Two
// programs opening a new archive at once create it once. Throws ArchiveError when the archive was
// written by a newer program, or (SQLite) when the file holds tables of another program.
int ApplyMigrations(Archive &archive);

} // namespace kalvo::archive
