#pragma once

namespace orvenal {

/// Requests to stop that come from outside (Ctrl-C, SIGTERM).
namespace Interruption {

/// Starts to listen. A write to a closed pipe, or beyond the largest size of a file, fails as any
/// other one and no longer ends the process.
void install();

bool isRequested();

/// Throws NbeException when a stop was requested; for loops on the program's own thread.
void check();

/// Exit code of an interrupted program: 128 + the signal, 130 for Ctrl-C.
int exitCode();

}  // namespace Interruption

}  // namespace orvenal
