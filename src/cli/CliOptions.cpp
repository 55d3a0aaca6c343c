// The global options of kalvo-cli and the command words behind them.
#include "CliOptions.h"

namespace kalvo::cli {

std::optional<CliOptions> ParseCliOptions(const QStringList &arguments, QString &error)
{
    CliOptions options;
    const std::pair<const char *, QString *> textOptions[] = {{"--port", &options.port},
                                                              {"--trace", &options.traceFile},
                                                              {"--lang", &options.language},
                                                              {"--archive", &options.archiveUrl}};
    QString timeout;
    qsizetype i = 0;
    for (; i < arguments.size() && arguments[i].startsWith(QLatin1String("--")); ++i) {
        const QString &arg = arguments[i];
        if (arg == QLatin1String("--simulate")) {
            options.simulate = true;
            continue;
        }
        if (arg == QLatin1String("--no-archive")) {
            options.noArchive = true;
            continue;
        }
        if (arg == QLatin1String("--yes")) {
            options.yes = true;
            continue;
        }
        if (arg == QLatin1String("--help")) {
            options.words = {QStringLiteral("help")};
            return options;
        }
        QString *target = arg == QLatin1String("--timeout") ? &timeout : nullptr;
        for (const auto &[name, field] : textOptions)
            if (arg == QLatin1String(name))
                target = field;
        if (!target) {
            error = QStringLiteral("unbekannte Option %1").arg(arg);
            return std::nullopt;
        }
        if (++i >= arguments.size()) {
            error = QStringLiteral("%1 braucht einen Wert").arg(arg);
            return std::nullopt;
        }
        *target = arguments[i];
    }
    if (!timeout.isNull()) {
        bool ok = false;
        options.timeoutSeconds = timeout.toDouble(&ok);
        if (!ok || !(options.timeoutSeconds > 0)) { // "nan" is no number of seconds
            error = QStringLiteral("--timeout braucht eine Zahl von Sekunden größer 0");
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
