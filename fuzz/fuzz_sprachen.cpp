// The language file "sprachen.TXT": its grid, every language column, and reading it by path.
#include "FuzzFiles.h"

#include "link/Errors.h"
#include "link/LanguageTable.h"

using namespace kalvo;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzz::InputBytes(data, size);
    const link::LanguageGrid grid = link::ReadLanguageGrid(bytes);
    for (const link::LanguageColumn &column : link::LanguageColumns()) {
        link::LanguageTable table;
        try {
            fuzz::Expect(table.SetLanguage(column.name, grid), "every listed language is known");
        } catch (const link::KalvoError &) {
            // More rows than the table has entries.
            continue;
        }
        for (int id = -1; id <= link::LanguageTable::kEntries; ++id)
            table.text(id);
    }
    link::LanguageTable fromFile;
    try {
        fromFile.SetLanguageFromFile(QStringLiteral("englisch"),
                                     fuzz::WriteScratchFile(link::kLanguageFileName, bytes));
    } catch (const link::KalvoError &) {
    }
    return 0;
}
