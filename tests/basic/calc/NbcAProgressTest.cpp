#include "basic/calc/NbcAProgress.h"

#include "basic/error/NbeException.h"
#include "basic/error/NbeMemoryError.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"

#include <QSemaphore>
#include <QStringList>

#include <gtest/gtest.h>

#include <functional>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

/// A progress whose body is given by the test and that notes the calls of its virtual operations.
class Job : public NbcAProgress
{
public:
  explicit Job(std::function<void(Job &)> body = nullptr) : _body(std::move(body)) {}
  ~Job() override { _finish(); }

  std::function<void()> onCleanup;
  std::function<void()> onError;
  QStringList calls;

  using NbcAProgress::_runSubProgress;

protected:
  void _doRun() override
  {
    calls.append(QStringLiteral("run"));
    if (_body)
      _body(*this);
  }
  void _errorOccurred(const NbeError &error) override
  {
    calls.append(QStringLiteral("error ") + error.getMessage());
    if (onError)
      onError();
  }
  void _cleanup() override
  {
    calls.append(QStringLiteral("cleanup"));
    EXPECT_EQ(getState(), RUNNING) << "the state is set last";
    if (onCleanup)
      onCleanup();
  }

private:
  std::function<void(Job &)> _body;
};

/// Works until it is told to stop; `started` is released by the first step.
std::function<void(Job &)> untilStopped(QSemaphore &started)
{
  return [&started](Job &job) {
    started.release();
    while (true) {
      job._checkForProgressStop();
      std::this_thread::yield();
    }
  };
}

}  // namespace

TEST(NbcAProgress, CompletedRunCallsBodyThenCleanup)
{
  Job job([](Job &self) { EXPECT_TRUE(self.isRunning()); });
  EXPECT_EQ(job.getState(), NbcAProgress::IDLE);
  job.start();
  EXPECT_TRUE(job.wait());
  EXPECT_TRUE(job.isCompleted());
  EXPECT_FALSE(job.isRunning());
  EXPECT_EQ(job.calls, QStringList({QStringLiteral("run"), QStringLiteral("cleanup")}));
  EXPECT_EQ(job.getErrorType(), NbeError::NO_ERROR_TYPE);
}

TEST(NbcAProgress, ErrorIsKeptReportedAndCleanedUpAfter)
{
  Job job([](Job &) { throw NbeUserError(QStringLiteral("no data")); });
  job.start();
  job.wait();
  EXPECT_EQ(job.getState(), NbcAProgress::FAILED);
  EXPECT_FALSE(job.isCompleted());
  EXPECT_EQ(job.getErrorMessage(), QStringLiteral("no data"));
  EXPECT_EQ(job.getErrorType(), NbeError::USER);
  EXPECT_EQ(job.calls, QStringList({QStringLiteral("run"), QStringLiteral("error no data"),
                                    QStringLiteral("cleanup")}));
}

TEST(NbcAProgress, ForeignExceptionsAreTranslated)
{
  Job outOfMemory([](Job &) { throw std::bad_alloc(); });
  EXPECT_EQ(outOfMemory.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(outOfMemory.getErrorMessage(), QStringLiteral("std::bad_alloc: std::bad_alloc"));
  EXPECT_EQ(outOfMemory.getErrorType(), NbeError::MEMORY);

  Job foreign([](Job &) { throw 1; });
  EXPECT_EQ(foreign.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(foreign.getErrorMessage(), QStringLiteral("Unknown exception."));
}

TEST(NbcAProgress, ErrorInCleanupIsKeptOnlyWhenThereWasNoneBefore)
{
  Job clean;
  clean.onCleanup = [] { throw NbeUserError(QStringLiteral("cannot close")); };
  EXPECT_EQ(clean.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(clean.getErrorMessage(), QStringLiteral("cannot close"));

  Job failing([](Job &) { throw NbeUserError(QStringLiteral("first")); });
  failing.onError = [] { throw std::runtime_error("handler"); };
  failing.onCleanup = [] { throw NbeUserError(QStringLiteral("second")); };
  EXPECT_EQ(failing.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(failing.getErrorMessage(), QStringLiteral("first"));
}

TEST(NbcAProgress, InterruptionHasNoTextAndIsNotReported)
{
  QSemaphore started;
  Job job(untilStopped(started));
  job.start();
  started.acquire();
  job.stop();
  job.wait();
  EXPECT_EQ(job.getState(), NbcAProgress::INTERRUPTED);
  EXPECT_EQ(job.getErrorMessage(), QString());
  EXPECT_EQ(job.getErrorType(), NbeError::INTERRUPTION);
  EXPECT_EQ(job.calls, QStringList({QStringLiteral("run"), QStringLiteral("cleanup")}));
}

TEST(NbcAProgress, StopBetweenStartAndFirstStepCounts)
{
  for (int round = 0; round < 50; ++round) {
    QSemaphore started;
    Job job(untilStopped(started));
    job.start();
    job.stop();
    job.wait();
    EXPECT_EQ(job.getState(), NbcAProgress::INTERRUPTED);
  }
}

TEST(NbcAProgress, StopOutsideARunDoesNotReachTheNextRun)
{
  Job job;
  job.stop();
  EXPECT_EQ(job.execute(), NbcAProgress::COMPLETED);
  job.stop();
  job.start();
  job.wait();
  EXPECT_EQ(job.getState(), NbcAProgress::COMPLETED);
}

TEST(NbcAProgress, StoppedRunIsInterruptedEvenWhenTheBodyReturnsOrThrowsText)
{
  Job returning([](Job &self) { self.stop(); });
  EXPECT_EQ(returning.execute(), NbcAProgress::INTERRUPTED);

  Job throwing([](Job &self) {
    self.stop();
    throw NbeUserError(QStringLiteral("Calculator Interrupted by the User."));
  });
  EXPECT_EQ(throwing.execute(), NbcAProgress::INTERRUPTED);
  EXPECT_EQ(throwing.getErrorMessage(), QStringLiteral("Calculator Interrupted by the User."));
}

TEST(NbcAProgress, FailureFlagStopsWorkersAndFailsTheRun)
{
  Job returning([](Job &self) {
    EXPECT_FALSE(self._mustStop());
    self._setFailed();
    EXPECT_TRUE(self._mustStop());
    EXPECT_FALSE(self._isStopRequested());
  });
  EXPECT_EQ(returning.execute(), NbcAProgress::FAILED);
  EXPECT_FALSE(returning._hasFailed()) << "flags are cleared when a run ends";

  Job throwing([](Job &self) {
    self._setFailed();
    self._checkForProgressStop();
    ADD_FAILURE() << "the check did not throw";
  });
  EXPECT_EQ(throwing.execute(), NbcAProgress::FAILED);
}

TEST(NbcAProgress, NextRunStartsAfresh)
{
  int run = 0;
  Job job([&run](Job &self) {
    EXPECT_EQ(self.getCounter(), 0);
    EXPECT_EQ(self.getProgressMessageDetail(), QString());
    self._initCounter(10);
    self._incrementCounter(4);
    self._setProgressMessageDetail(QStringLiteral("step"));
    if (++run == 1)
      throw NbeUserError(QStringLiteral("first time"));
  });
  job.setProgressMessage(QStringLiteral("Kriging"));
  EXPECT_EQ(job.execute(), NbcAProgress::FAILED);
  job.start();
  job.wait();
  EXPECT_TRUE(job.isCompleted());
  EXPECT_EQ(job.getErrorMessage(), QString());
  EXPECT_EQ(job.getProgressMessage(), QStringLiteral("Kriging"));
  EXPECT_EQ(job.getPercent(), 40);
}

TEST(NbcAProgress, CanBeStartedAgainAsSoonAsARunHasEnded)
{
  int runs = 0;
  Job job([&runs](Job &) { ++runs; });
  for (int i = 1; i <= 200; ++i) {
    job.start();
    while (job.isRunning())
      std::this_thread::yield();
    ASSERT_EQ(runs, i);
  }
}

TEST(NbcAProgress, SecondStartIsRefusedWhileRunning)
{
  QSemaphore started;
  Job job(untilStopped(started));
  job.start();
  started.acquire();
  job.start();
  EXPECT_THROW(job.execute(), NbeProgrammingError);
  job.stop();
  job.wait();
  EXPECT_EQ(job.calls.count(QStringLiteral("run")), 1);
}

TEST(NbcAProgress, ThreadThatCannotStartIsAFailedRun)
{
  Job job;
  job.setStackSize(1);
  job.start();
  EXPECT_EQ(job.getState(), NbcAProgress::FAILED);
  EXPECT_EQ(job.getErrorType(), NbeError::MEMORY);
  EXPECT_TRUE(job.calls.isEmpty());
}

TEST(NbcAProgress, DestructionStopsTheRun)
{
  QSemaphore started;
  bool ended = false;
  {
    Job job(untilStopped(started));
    job.onCleanup = [&ended] { ended = true; };
    job.start();
    started.acquire();
  }
  EXPECT_TRUE(ended);
}

TEST(NbcAProgress, CountsFromManyThreadsAndEmitsEachPercentOnce)
{
  constexpr int nThreads = 8, perThread = 25000;
  std::mutex mutex;
  std::vector<int> percents;
  Job job([](Job &self) {
    self._initCounter(nThreads * perThread);
    std::vector<std::thread> threads;
    for (int t = 0; t < nThreads; ++t)
      threads.emplace_back([&self] {
        for (int i = 0; i < perThread; ++i)
          self._incrementCounter(1);
      });
    for (std::thread &thread : threads)
      thread.join();
  });
  QObject::connect(
      &job, &NbcAProgress::progressChanged, &job,
      [&](int percent) {
        std::lock_guard<std::mutex> lock(mutex);
        percents.push_back(percent);
      },
      Qt::DirectConnection);
  EXPECT_EQ(job.execute(), NbcAProgress::COMPLETED);

  EXPECT_EQ(job.getCounter(), qint64(nThreads) * perThread);
  EXPECT_EQ(job.getPercent(), 100);
  std::sort(percents.begin(), percents.end());
  EXPECT_TRUE(std::adjacent_find(percents.begin(), percents.end()) == percents.end());
  EXPECT_LE(percents.size(), 100u);
  ASSERT_FALSE(percents.empty());
  EXPECT_EQ(percents.back(), 100);
}

TEST(NbcAProgress, PercentIsBoundedAndCannotOverflow)
{
  Job job;
  EXPECT_EQ(job.getPercent(), 0);
  job._initCounter(std::numeric_limits<qint64>::max());
  job._setCounter(std::numeric_limits<qint64>::max() / 2);
  EXPECT_NEAR(job.getPercent(), 50, 1);
  job._initCounter(10);
  job._setCounter(15);
  EXPECT_EQ(job.getPercent(), 100);
  job._setCounter(-5);
  EXPECT_EQ(job.getPercent(), 0);
}

TEST(NbcAProgress, MessagesAreEmittedOnChangeOnly)
{
  Job job;
  QStringList seen;
  const auto note = [&seen](const QString &text) { seen.append(text); };
  QObject::connect(&job, &NbcAProgress::messageChanged, note);
  QObject::connect(&job, &NbcAProgress::detailChanged, note);
  job.setProgressMessage(QStringLiteral("m"));
  job.setProgressMessage(QStringLiteral("m"));
  job._setProgressMessageDetail(QStringLiteral("d"));
  job._setProgressMessageDetail(QStringLiteral("d"));
  EXPECT_EQ(seen, QStringList({QStringLiteral("m"), QStringLiteral("d")}));
}

TEST(NbcAProgress, ThreadCountIsNeverBelowOne)
{
  Job job;
  EXPECT_GE(job.getNThread(), 1);
  EXPECT_GT(job.getAvailableMemBytes(), 0);
  job.setNThread(-3);
  EXPECT_EQ(job.getNThread(), 1);
}

TEST(NbcAProgressSub, CounterIsMappedOnTheShare)
{
  QSemaphore halfway, goOn;
  Job sub([&](Job &self) {
    EXPECT_EQ(self.getNThread(), 3);
    EXPECT_EQ(self.getAvailableMemBytes(), 12345);
    self._initCounter(10);
    self._incrementCounter(5);
    halfway.release();
    goOn.acquire();
  });
  Job parent([&](Job &self) {
    self._initCounter(1000);
    self._incrementCounter(100);
    self._runSubProgress(sub, false, 400);
  });
  parent.setNThread(3);
  parent.setAvailableMemBytes(12345);
  parent.start();
  halfway.acquire();
  while (parent.getCounter() < 300)
    std::this_thread::yield();
  EXPECT_EQ(parent.getCounter(), 300);
  goOn.release();
  parent.wait();
  EXPECT_TRUE(parent.isCompleted());
  EXPECT_EQ(parent.getCounter(), 500);
}

TEST(NbcAProgressSub, ErrorArrivesInTheParentWithItsClass)
{
  Job sub([](Job &) { throw NbeMemoryError(QStringLiteral("too small")); });
  bool caught = false;
  Job parent([&](Job &self) {
    try {
      self._runSubProgress(sub, false, 10);
    } catch (const NbeMemoryError &) {
      caught = true;
      throw;
    }
  });
  EXPECT_EQ(parent.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(caught);
  EXPECT_EQ(parent.getErrorMessage(), QStringLiteral("too small"));
  EXPECT_EQ(parent.getErrorType(), NbeError::MEMORY);
}

TEST(NbcAProgressSub, IgnoredFailureLetsTheParentGoOn)
{
  Job sub([](Job &) { throw NbeUserError(QStringLiteral("bad")); });
  Job parent([&](Job &self) {
    self._initCounter(10);
    self._runSubProgress(sub, true, 10);
  });
  EXPECT_EQ(parent.execute(), NbcAProgress::COMPLETED);
  EXPECT_EQ(parent.getCounter(), 10);
  EXPECT_EQ(sub.getErrorMessage(), QStringLiteral("bad"));
}

TEST(NbcAProgressSub, StopIsForwardedAndComesBack)
{
  for (const bool ignoreFailure : {false, true}) {
    QSemaphore started;
    Job sub(untilStopped(started));
    Job parent([&](Job &self) { self._runSubProgress(sub, ignoreFailure, 10); });
    parent.start();
    started.acquire();
    parent.stop();
    parent.wait();
    EXPECT_EQ(sub.getState(), NbcAProgress::INTERRUPTED);
    EXPECT_EQ(parent.getState(), NbcAProgress::INTERRUPTED);
  }

  // Stopped by itself, it interrupts its parent too.
  QSemaphore started;
  Job sub(untilStopped(started));
  Job parent([&](Job &self) { self._runSubProgress(sub, false, 10); });
  parent.start();
  started.acquire();
  sub.stop();
  parent.wait();
  EXPECT_EQ(parent.getState(), NbcAProgress::INTERRUPTED);
}
