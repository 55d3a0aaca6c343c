// The tester's five print templates: a record rendered as the framed report the tester prints.
#pragma once

#include <QByteArray>

namespace kalvo::sim {

class PrintRenderer {
public:
    static constexpr int kTemplates = 5;

    // 0 "Universal", 1..4 the templates the user can load into the tester.
    static QByteArray TemplateName(int number);
    // The print text: lines ended by CR LF, IBM PC box-drawing characters, the tester's code page.
    static QByteArray Render(int number, const QByteArray &record);
};

} // namespace kalvo::sim
