// The text console on Unix: terminals take UTF-8 as they are.
#include "Console.h"

#include <cstdio>
#include <unistd.h>

namespace kalvo::platform {

bool StderrIsTerminal()
{
    return ::isatty(fileno(stderr)) != 0;
}

void UseUtf8Console()
{}

QByteArray WindowlessPlatformPlugin()
{
    return QByteArrayLiteral("offscreen");
}

} // namespace kalvo::platform
