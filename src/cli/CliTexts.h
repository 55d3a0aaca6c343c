// kalvo-cli's own usage texts in each language of the language switch.
#pragma once

#include <QString>

namespace kalvo::cli {

// The texts of a usage error. The rows of "sprachen.TXT" belong to the installation and the window
// program; the command line's words live here, so that a usage error speaks the user's language
// even when the language file is missing or edited.
enum class UsageText {
    UnknownOption,     // %1: the option
    NeedsValue,        // %1: the option
    TakesNoValue,      // %1: the option
    NoCommand,         //
    UnknownCommand,    // %1: the word typed
    DidYouMean,        // %1: the nearest commands
    Or,                // between two of the nearest commands
    TimeoutSeconds,    //
    UnknownArgument,   // %1: the word
    NotANumber,        // %1: what, %2: the word
    Between,           // %1: what, %2: lowest, %3: highest, %4: the word
    OneOf,             // %1: what, %2: the choices, %3: the word
    NoneOf,            // %1: the word, %2: the choices
    NeedsDate,         // %1: what, %2: the word
    NotInVariableFile, // %1: the word
    NoFileMask,        // %1: the file name
    NotADirectory,     // %1: the path
    Expected,          // %1: the words a command or action takes
};

// `text` in `language` (a name of the language switch: "deutsch", "englisch", ...); German for a
// name the switch does not know.
QString UsageTextIn(const QString &language, UsageText text);

// The language usage errors speak before a command runs: `--lang` when the switch knows it, else
// line 2 of Q417.ini, else German.
QString UsageLanguage(const QString &languageOption);

} // namespace kalvo::cli
