#pragma once

#include <QString>

namespace orvenal {

class Program;

/// Completion scripts of shells, made of the commands and options of the program.
QString bashCompletion(const Program &program);
QString zshCompletion(const Program &program);
QString fishCompletion(const Program &program);

}  // namespace orvenal
