#include "app/console/Interruption.h"

#include "basic/error/NbeException.h"

#include <csignal>

namespace orvenal {

namespace {

volatile std::sig_atomic_t receivedSignal = 0;

void receive(int number)
{
  receivedSignal = number;
}

}  // namespace

void Interruption::install()
{
  struct sigaction action = {};
  action.sa_handler = receive;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

bool Interruption::isRequested()
{
  return receivedSignal != 0;
}

void Interruption::check()
{
  if (isRequested())
    throw NbeException();
}

int Interruption::exitCode()
{
  return 128 + (isRequested() ? int(receivedSignal) : SIGINT);
}

}  // namespace orvenal
