#include "basic/calc/NbcAProgressComposite.h"

#include "basic/calc/NbcAProgressCompositeDefault.h"
#include "basic/error/NbeUserError.h"

#include <QSemaphore>

#include <gtest/gtest.h>

#include <functional>

namespace {

class Step : public NbcAProgress
{
public:
  explicit Step(std::function<void(Step &)> body) : _body(std::move(body)) {}
  ~Step() override
  {
    _finish();
    if (onDestroyed)
      onDestroyed();
  }
  std::function<void()> onDestroyed;

protected:
  void _doRun() override { _body(*this); }

private:
  std::function<void(Step &)> _body;
};

/// Notes the calls of its operations, and the detail and counter that it has then.
class Study : public NbcAProgressComposite<NbcAProgress>
{
public:
  ~Study() override
  {
    _finish();
    _reset();  // the steps note their end in `calls`
  }

  QStringList calls;
  QString skipped;

  void add(const QString &id, int weight, bool append = true, const QString &message = QString(),
           std::function<void(Step &)> body = nullptr)
  {
    Step *step = new Step([this, id, body](Step &self) {
      calls.append(QStringLiteral("run ") + id + ' ' + _getCurrentProgressableId());
      if (body)
        body(self);
    });
    step->setProgressMessage(QStringLiteral("own message of ") + id);
    step->onDestroyed = [this, id] { calls.append(QStringLiteral("delete ") + id); };
    _registerProgressable(id, step, message, weight, append);
  }

  using NbcAProgressComposite<NbcAProgress>::_getIds;
  using NbcAProgressComposite<NbcAProgress>::_getProgressable;
  using NbcAProgressComposite<NbcAProgress>::_registerProgressable;
  using NbcAProgressComposite<NbcAProgress>::_reset;

protected:
  void _doFinalChecks() override { calls.append(QStringLiteral("checks")); }
  void _preProcessing() override
  {
    NbcAProgressComposite<NbcAProgress>::_preProcessing();
    calls.append(QStringLiteral("pre ") + getProgressMessageDetail());
  }
  bool _prepareProgressable(const QString &id) override
  {
    calls.append(
        QStringLiteral("prepare %1 %2 '%3'").arg(id).arg(getCounter()).arg(getProgressMessage()));
    return id != skipped;
  }
  void _progressableFinished(const QString &id) override
  {
    calls.append(QStringLiteral("finished %1 %2").arg(id).arg(getCounter()));
  }
  void _postProcessing() override
  {
    EXPECT_EQ(_getCurrentProgressableId(), QString());
    NbcAProgressComposite<NbcAProgress>::_postProcessing();
    calls.append(QStringLiteral("post ") + getProgressMessageDetail());
  }
};

QStringList lines(const char *text)
{
  return QString::fromLatin1(text).split('\n', Qt::SkipEmptyParts);
}

}  // namespace

TEST(NbcAProgressComposite, RunsInOrderWithWeightsAndSkips)
{
  Study study;
  study.add(QStringLiteral("B"), 3, true, QStringLiteral("message of B"));
  study.add(QStringLiteral("C"), 2);
  study.add(QStringLiteral("A"), 1, false);
  study.skipped = QStringLiteral("B");
  EXPECT_EQ(study.execute(), NbcAProgress::COMPLETED);

  EXPECT_EQ(study.calls, lines("checks\n"
                               "pre Pre Processing...\n"
                               "prepare A 0 'own message of A'\n"
                               "run A A\n"
                               "finished A 100\n"
                               "prepare B 100 'message of B'\n"
                               "prepare C 400 'own message of C'\n"
                               "run C C\n"
                               "finished C 600\n"
                               "post Post processing...\n"));
  EXPECT_EQ(study.getCounter(), 700);
  EXPECT_EQ(study.getCounterMax(), 700);
}

TEST(NbcAProgressComposite, IdsAreUnique)
{
  Study study;
  study.add(QStringLiteral("CALC_QUICK_STATS"), 1);
  Step other([](Step &) {});
  try {
    study._registerProgressable(QStringLiteral("CALC_QUICK_STATS"), &other, QString(), 1, true);
    FAIL() << "registered twice";
  } catch (const NbeProgrammingError &error) {
    EXPECT_EQ(error.getMessage(), QStringLiteral("Id 'CALC_QUICK_STATS' must be unique."));
  }
  EXPECT_EQ(study._getIds().size(), 1);
}

TEST(NbcAProgressComposite, FailureEndsTheRunAndIsTheComposites)
{
  Study study;
  study.add(QStringLiteral("A"), 1, true, QString(),
            [](Step &) { throw NbeUserError(QStringLiteral("no data")); });
  study.add(QStringLiteral("B"), 1);
  study.start();
  study.wait();
  EXPECT_EQ(study.getState(), NbcAProgress::FAILED);
  EXPECT_EQ(study.getErrorMessage(), QStringLiteral("no data"));
  EXPECT_FALSE(study.calls.contains(QStringLiteral("run B B")));
}

TEST(NbcAProgressComposite, StopReachesTheRunningStep)
{
  Study study;
  QSemaphore started;
  study.add(QStringLiteral("A"), 1, true, QString(), [&started](Step &self) {
    self._setProgressMessageDetail(QStringLiteral("detail of A"));
    started.release();
    while (true)
      self._checkForProgressStop();
  });
  study.add(QStringLiteral("B"), 1);
  study.start();
  started.acquire();
  EXPECT_EQ(study.getProgressMessageDetail(), QStringLiteral("detail of A"));
  study.stop();
  study.wait();
  EXPECT_EQ(study.getState(), NbcAProgress::INTERRUPTED);
  EXPECT_FALSE(study.calls.contains(QStringLiteral("run B B")));
}

TEST(NbcAProgressComposite, ResetDeletesWhatStillExists)
{
  Study study;
  study.add(QStringLiteral("A"), 1);
  study.add(QStringLiteral("B"), 1);
  delete study._getProgressable(QStringLiteral("A"));
  EXPECT_EQ(study._getProgressable(QStringLiteral("A")), nullptr);
  study._reset();
  EXPECT_EQ(study.calls, lines("delete A\ndelete B"));
  EXPECT_TRUE(study._getIds().isEmpty());
  study.add(QStringLiteral("A"), 1);
  EXPECT_EQ(study.execute(), NbcAProgress::COMPLETED);
  study._reset();
}

TEST(NbcAProgressComposite, StepThatWasDestroyedIsAnErrorUnlessSkipped)
{
  Study study;
  study.add(QStringLiteral("A"), 1);
  delete study._getProgressable(QStringLiteral("A"));
  EXPECT_EQ(study.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(study.getErrorType(), NbeError::PROGRAMMING);
  study.skipped = QStringLiteral("A");
  EXPECT_EQ(study.execute(), NbcAProgress::COMPLETED);
}

TEST(NbcAProgressCompositeDefault, RunsAllAndOwnsThem)
{
  int runs = 0, deleted = 0;
  {
    NbcAProgressCompositeDefault composite;
    for (const char *id : {"A", "B", "C"}) {
      Step *step = new Step([&runs](Step &) { ++runs; });
      step->onDestroyed = [&deleted] { ++deleted; };
      composite.registerProgressable(QString::fromLatin1(id), step, QString());
    }
    EXPECT_EQ(composite.execute(), NbcAProgress::COMPLETED);
    EXPECT_EQ(composite.getPercent(), 100);
    EXPECT_EQ(runs, 3);
    EXPECT_EQ(deleted, 0);
  }
  EXPECT_EQ(deleted, 3);
}
