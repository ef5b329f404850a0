#pragma once

#include <functional>

namespace orvenal {

/// Requests to stop that come from outside (Ctrl-C, SIGTERM, a closed terminal).
///
/// The program stops by itself where it looks for such a request. Where it does not within a second
/// (a long factorisation), or at once when a second request comes, the clean-ups are called and the
/// process ends.
namespace Interruption {

/// Starts to listen. A write to a closed pipe, or beyond the largest size of a file, fails as any
/// other one and no longer ends the process.
void install();

bool isRequested();

/// Throws NbeException when a stop was requested; for loops on the program's own thread.
void check();

/// Exit code of an interrupted program: 128 + the signal, 130 for Ctrl-C.
int exitCode();

/// While it lives, `function` is called before the process is ended. It runs on a thread of its own
/// while all others go on, and must leave alone what they use; it returns whether the run has left
/// nothing behind.
class Cleanup
{
public:
  explicit Cleanup(std::function<bool()> function);
  ~Cleanup();
  Cleanup(const Cleanup &) = delete;
  Cleanup &operator=(const Cleanup &) = delete;

  bool call() const { return _function(); }

private:
  std::function<bool()> _function;
};

}  // namespace Interruption

}  // namespace orvenal
