// The language file "sprachen.TXT": its grid, every language column, and reading it by path.
#include "FuzzFiles.h"

#include "link/Errors.h"
#include "shell/LanguageTable.h"

using namespace kalvo;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzz::InputBytes(data, size);
    const shell::LanguageGrid grid = shell::ReadLanguageGrid(bytes);
    for (const shell::LanguageColumn &column : shell::LanguageColumns()) {
        shell::LanguageTable table;
        try {
            fuzz::Expect(table.SetLanguage(column.name, grid), "every listed language is known");
        } catch (const link::KalvoError &) {
            // More rows than the table has entries.
            continue;
        }
        for (int id = -1; id <= shell::LanguageTable::kEntries; ++id)
            table.text(id);
    }
    shell::LanguageTable fromFile;
    try {
        fromFile.SetLanguageFromFile(QStringLiteral("englisch"),
                                     fuzz::WriteScratchFile(shell::kLanguageFileName, bytes));
    } catch (const link::KalvoError &) {
    }
    return 0;
}
