#pragma once

#include "app/commands/CommandOption.h"

#include <QCommandLineParser>

namespace orvenal {

class Command;

/// The arguments of a command, taken apart by its options; --help is one of them. An option that it
/// does not have is a UsageError with the nearest one.
void parseArguments(const Command &command, const QStringList &arguments,
                    QCommandLineParser &parser);

/// A UsageError that says where the help of the command is.
[[noreturn]] void failUsage(const Command &command, const QString &message);

/// The options that every command with work to do has: --quiet, --threads, --memory, --help.
CommandOptions commonOptions();

/// --help.
CommandOption helpOption();

}  // namespace orvenal
