// The five print templates a new tester holds, as template text with field markers.
#pragma once

#include <QByteArray>

namespace kalvo::sim {

constexpr int kPrintTemplates = 5;

// 0 "Universal", 1..4 the templates a user can replace by loading a P-file.
QByteArray SampleTemplateName(int number);
// The text of template 0..4: CR LF lines in the tester's code page with IBM PC box-drawing
// characters and the markers that PrintRenderer fills in; empty for any other number.
QByteArray SampleTemplateText(int number);

} // namespace kalvo::sim
