// The text console on Windows: switched to UTF-8, which is what Qt writes.
#include "Console.h"

#include <cstdio>
#include <io.h>
#include <windows.h>

namespace kalvo::platform {

bool StderrIsTerminal()
{
    return _isatty(_fileno(stderr)) != 0;
}

void UseUtf8Console()
{
    ::SetConsoleOutputCP(CP_UTF8);
    ::SetConsoleCP(CP_UTF8);
}

QByteArray WindowlessPlatformPlugin()
{
    return {};
}

} // namespace kalvo::platform
