// The tester's five print templates: read out, kept in ".pr" files, stored back through a P-file.
#pragma once

#include <QByteArray>
#include <QString>
#include <array>
#include <optional>

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::update {

constexpr int kFirstTemplate = 0;
constexpr int kLastTemplate = 4;
constexpr int kTemplateCount = kLastTemplate - kFirstTemplate + 1;
using TemplateTable = std::array<QByteArray, kTemplateCount>;

// "prn?" + k, the number without a blank (as "prn!1" is sent); the tester's answer may echo it
// either way, and nothing is read from the echo.
QByteArray TemplateReadCommand(int k);
// The template in an answer: what follows the two characters "\v" when it has them, otherwise
// the whole answer, the closing ".Y" and line end included; only LF, CR and the characters 32 to
// 255 are kept (the DC1 that ends the answer goes with the other control bytes).
QByteArray TemplateText(const QByteArray &answer);
// k + ".pr", the template's file when it was read from the tester.
QString TemplateFileName(int k);

// The five templates as the record form reads them: "prn?" + k for k = 0 to 4, each answer kept
// as template k. nullopt when the port is closed (the user has been told) or the tester refused a
// read: a "Protokoll" refusal, or an answer without "\v" that the tester closed with ".N" or
// ".Nx" instead of a text (told to the user); the other templates are read all the same.
std::optional<TemplateTable> ReadTemplates(link::Link &link);
// Template k (0..4) of ReadTemplates.
std::optional<QByteArray> ReadTemplate(link::Link &link, int k);
// Reads the templates and saves the text of template k (0..4) to `path` through a QSaveFile. When
// the tester refuses a read, or the port is closed, no file is written (an old one stays) and
// false is returned.
// Throws link::FormatError when the file cannot be written.
bool SaveTemplateFromTester(link::Link &link, int k, const QString &path);

// "speichern im Kalvomer": saves `text` to `path`, then builds its P-file beside it and loads it
// into slot 1..4. False when nothing was loaded.
bool StoreTemplate(link::Link &link, link::Prompter &prompter, const QByteArray &text, const QString &path,
                   int slot);

} // namespace kalvo::update
