// The global options of kalvo-cli and the command words behind them.
#include "CliOptions.h"

namespace kalvo::cli {

std::optional<CliOptions> ParseCliOptions(const QStringList &arguments, QString &error)
{
    CliOptions options;
    qsizetype i = 0;
    const auto value = [&](const QString &name) -> std::optional<QString> {
        if (i + 1 >= arguments.size()) {
            error = QStringLiteral("%1 braucht einen Wert").arg(name);
            return std::nullopt;
        }
        return arguments[++i];
    };
    for (; i < arguments.size(); ++i) {
        const QString &arg = arguments[i];
        if (!arg.startsWith(QLatin1String("--")))
            break;
        if (arg == QLatin1String("--simulate")) {
            options.simulate = true;
        } else if (arg == QLatin1String("--yes")) {
            options.yes = true;
        } else if (arg == QLatin1String("--port")) {
            const auto v = value(arg);
            if (!v)
                return std::nullopt;
            options.port = *v;
        } else if (arg == QLatin1String("--timeout")) {
            const auto v = value(arg);
            if (!v)
                return std::nullopt;
            bool ok = false;
            options.timeoutSeconds = v->toDouble(&ok);
            if (!ok || options.timeoutSeconds <= 0) {
                error = QStringLiteral("--timeout braucht eine Zahl von Sekunden größer 0");
                return std::nullopt;
            }
        } else if (arg == QLatin1String("--trace")) {
            const auto v = value(arg);
            if (!v)
                return std::nullopt;
            options.traceFile = *v;
        } else if (arg == QLatin1String("--lang")) {
            const auto v = value(arg);
            if (!v)
                return std::nullopt;
            options.language = *v;
        } else if (arg == QLatin1String("--help")) {
            options.words = {QStringLiteral("help")};
            return options;
        } else {
            error = QStringLiteral("unbekannte Option %1").arg(arg);
            return std::nullopt;
        }
    }
    options.words = arguments.mid(i);
    if (options.words.isEmpty()) {
        error = QStringLiteral("kein Befehl angegeben");
        return std::nullopt;
    }
    return options;
}

} // namespace kalvo::cli
