#include "app/console/Interruption.h"

#include "basic/error/NbeException.h"

#include <QObject>

#include <poll.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <mutex>
#include <thread>
#include <vector>

namespace orvenal {

namespace {

volatile std::sig_atomic_t receivedSignal = 0;
int signalPipe[2] = {-1, -1};

void receive(int number)
{
  const int error = errno;
  receivedSignal = number;
  const char byte = 0;
  if (write(signalPipe[1], &byte, 1) < 0) {
    // The pipe is full of requests; one of them is enough.
  }
  errno = error;
}

/// The clean-ups of the moment. Never destroyed: the watchdog outlives all static objects.
struct Cleanups
{
  std::mutex mutex;
  std::vector<const Interruption::Cleanup *> list;
};

Cleanups &cleanups()
{
  static Cleanups *const instance = new Cleanups;
  return *instance;
}

void say(const QString &text)
{
  const QByteArray bytes = ((isatty(STDERR_FILENO) ? QStringLiteral("\n") : QString()) +
                            QStringLiteral("orvenal: ") + text + '\n')
                               .toUtf8();
  if (write(STDERR_FILENO, bytes.constData(), std::size_t(bytes.size())) < 0) {
    // Nobody is there to read it.
  }
}

/// Waits for a request, and ends the process when it has not ended by itself.
void watch()
{
  constexpr int graceMilliseconds = 1000;
  char byte;
  while (read(signalPipe[0], &byte, 1) != 1) {
  }
  pollfd again = {signalPipe[0], POLLIN, 0};
  poll(&again, 1, graceMilliseconds);
  Cleanups &all = cleanups();
  const std::lock_guard<std::mutex> lock(all.mutex);
  const bool leftNothing = std::all_of(all.list.begin(), all.list.end(),
                                       [](const auto *cleanup) { return cleanup->call(); });
  say(leftNothing ? QObject::tr("interrupted; nothing was written") : QObject::tr("interrupted"));
  _exit(Interruption::exitCode());
}

void listenTo(int number)
{
  struct sigaction action = {};
  action.sa_handler = receive;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  sigaction(number, &action, nullptr);
}

bool isIgnored(int number)
{
  struct sigaction action = {};
  return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

void Interruption::install()
{
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  if (pipe(signalPipe) != 0)
    return;
  listenTo(SIGINT);
  listenTo(SIGTERM);
  if (!isIgnored(SIGHUP))  // as nohup does
    listenTo(SIGHUP);
  std::thread(watch).detach();
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

Interruption::Cleanup::Cleanup(std::function<bool()> function) : _function(std::move(function))
{
  const std::lock_guard<std::mutex> lock(cleanups().mutex);
  cleanups().list.push_back(this);
}

Interruption::Cleanup::~Cleanup()
{
  const std::lock_guard<std::mutex> lock(cleanups().mutex);
  std::vector<const Cleanup *> &list = cleanups().list;
  list.erase(std::remove(list.begin(), list.end(), this), list.end());
}

}  // namespace orvenal
