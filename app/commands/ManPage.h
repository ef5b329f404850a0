#pragma once

#include <QString>

namespace orvenal {

class Program;

/// The man page orvenal(1), made of the help of all commands, in roff with the man macros.
QString manPage(const Program &program);

}  // namespace orvenal
