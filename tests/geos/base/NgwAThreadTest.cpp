#include "geos/base/NgwAThread.h"

#include "basic/error/NbeException.h"
#include "basic/error/NbeMemoryError.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "geos/base/NgwThreadPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <exception>
#include <functional>
#include <new>
#include <typeinfo>

namespace {

class TestThread : public NgwAThread
{
public:
  TestThread(NgwThreadPool *pool, std::function<void()> body)
      : NgwAThread(pool), _body(std::move(body))
  {
    ++nAlive;
  }
  ~TestThread() override { --nAlive; }

  static std::atomic<int> nAlive;

protected:
  void _run() override { _body(); }

private:
  std::function<void()> _body;
};

std::atomic<int> TestThread::nAlive{0};

struct SilentError : std::exception
{
  const char *what() const noexcept override { return nullptr; }
};

struct FailureCase
{
  const char *name;
  std::function<void()> body;
  QString text;
};

QString failed(const std::exception &exception, const char *prefix)
{
  return QStringLiteral("Thread failed:\n") + QLatin1String(prefix) +
         QLatin1String(exception.what()) + QStringLiteral("\n");
}

}  // namespace

TEST(NgwAThread, FailuresBecomeTheTextOfThePool)
{
  const FailureCase cases[] = {
      {"success", [] {}, QString()},
      {"bad_alloc", [] { throw std::bad_alloc(); }, failed(std::bad_alloc(), "std::bad_alloc: ")},
      {"bad_cast", [] { throw std::bad_cast(); }, failed(std::bad_cast(), "std::bad_cast: ")},
      {"bad_typeid", [] { throw std::bad_typeid(); },
       failed(std::bad_typeid(), "std::bad_typeid: ")},
      {"bad_exception", [] { throw std::bad_exception(); },
       failed(std::bad_exception(), "std::bad_exception: ")},
      {"other standard", [] { throw std::runtime_error("boom"); },
       QStringLiteral("Thread failed:\nstd::exception: boom\n")},
      {"no text", [] { throw SilentError(); },
       QStringLiteral("Thread failed:\nstd::exception: Unknown exception\n")},
      {"anything", [] { throw 42; }, QStringLiteral("Thread failed:\nUnknown exception.\n")},
      {"user error", [] { throw NbeUserError(QStringLiteral("mend it")); },
       QStringLiteral("Thread failed:\nmend it\n")},
      {"memory error", [] { throw NbeMemoryError(QStringLiteral("no room")); },
       QStringLiteral("Thread failed:\nno room\n")},
      {"interruption", [] { throw NbeException(); },
       QStringLiteral("Calculator Interrupted by the User.")},
  };
  for (const FailureCase &failure : cases) {
    NgwThreadPool pool;
    pool.start(new TestThread(&pool, failure.body));
    pool.waitForDone(-1);
    EXPECT_EQ(pool.getMessage(), failure.text) << failure.name;
    EXPECT_EQ(pool.isOk(), failure.text.isEmpty()) << failure.name;
    EXPECT_EQ(TestThread::nAlive, 0) << failure.name;
  }
}

TEST(NgwAThread, OnlyTheFirstFailureIsTold)
{
  NgwThreadPool pool;
  EXPECT_EQ(pool.maxThreadCount(), 1);
  pool.setMaxThreadCount(4);
  for (int i = 0; i < 50; ++i)
    pool.start(new TestThread(&pool, [] { throw NbeUserError(QStringLiteral("same")); }));
  pool.waitForDone(-1);
  EXPECT_EQ(pool.getMessage(), QStringLiteral("Thread failed:\nsame\n"));

  pool.reset();
  EXPECT_TRUE(pool.isOk());
  EXPECT_EQ(pool.getMessage(), QString());
  pool.reportFailure(QStringLiteral("first\n"));
  pool.reportFailure(QString());
  EXPECT_EQ(pool.getMessage(), QStringLiteral("Thread failed:\nfirst\n"));
}
