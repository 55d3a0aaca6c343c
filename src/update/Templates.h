// The tester's five print templates: read out, kept in ".pr" files, stored back through a P-file.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::update {

constexpr int kFirstTemplate = 0;
constexpr int kLastTemplate = 4;

// "prn?" + k, the number without a blank (as "prn!1" is sent); the tester's answer may echo it
// either way, and nothing is read from the echo.
QByteArray TemplateReadCommand(int k);
// The template in an answer: of its payload (the answer without DC1, and without the ".Y" and
// line end that close it, when they do) what follows the two characters "\v" when it has them,
// otherwise all of it; only LF, CR and the characters 32 to 255 are kept.
QByteArray TemplateText(const QByteArray &answer);
// k + ".pr", the template's file when it was read from the tester.
QString TemplateFileName(int k);

// The text of template k (0..4) as the tester holds it; nullopt when the port is closed (the user
// has been told) or the tester refused the read. Throws link::FormatError for an answer that holds
// no template: neither the "\v" marker nor the closing ".Y".
std::optional<QByteArray> ReadTemplate(link::Link &link, int k);
// Reads template k (0..4) and saves its text to `path` through a QSaveFile. When the tester
// refuses the read, or the port is closed, no file is written (an old one stays) and false is returned.
// Throws link::FormatError when the file cannot be written.
bool SaveTemplateFromTester(link::Link &link, int k, const QString &path);

// "speichern im Kalvomer": saves `text` to `path`, then builds its P-file beside it and loads it
// into slot 1..4. False when nothing was loaded.
bool StoreTemplate(link::Link &link, link::Prompter &prompter, const QByteArray &text, const QString &path,
                   int slot);

} // namespace kalvo::update
