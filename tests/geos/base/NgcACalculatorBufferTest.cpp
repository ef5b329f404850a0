#include "geos/base/NgcACalculatorBuffer.h"

#include "TestCalculators.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "geos/base/NgcALoopOnInputPatchOutput.h"

#include <QSemaphore>

#include <new>

using testcalc::assign;
using testcalc::Doubler;
using testcalc::errorOf;
using testcalc::makeCounting;
using testcalc::makeDataSet;
using testcalc::messageOf;
using testcalc::Provider;
using testcalc::valuesOf;
using testing::HasSubstr;

namespace {

int countDefined(const std::vector<double> &values)
{
  return int(std::count_if(values.begin(), values.end(),
                           [](double value) { return NbbGlobal::isDefined(value); }));
}

void expectDoubled(const std::vector<double> &out)
{
  for (std::size_t i = 0; i < out.size(); ++i)
    ASSERT_EQ(out[i], 2. * double(i) + 1.) << i;
}

}  // namespace

TEST(NgcACalculatorBuffer, RunsItsStepsInOrder)
{
  const Provider provider = makeCounting(95);
  Doubler calculator(10);
  calculator.setProvider(provider);
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
  const QStringList expected = {QStringLiteral("_checkDatasets"),
                                QStringLiteral("_addRuntimeConstraints"),
                                QStringLiteral("_checkConstraints"),
                                QStringLiteral("_preProcessing"),
                                QStringLiteral("Pre Processing..."),
                                QStringLiteral("_initBufferManager"),
                                QStringLiteral("_initCalculatorCounter"),
                                QStringLiteral("_createBufferIterator"),
                                QStringLiteral("_createComputingThread"),
                                QStringLiteral("_createComputingThread"),
                                QStringLiteral("_postProcessing"),
                                QStringLiteral("Post Processing..."),
                                QStringLiteral("_cleanup")};
  EXPECT_EQ(calculator.diary, expected);
  EXPECT_EQ(calculator.nTaken, 10);
  EXPECT_EQ(calculator.getCounterMax(), 11);
  EXPECT_EQ(calculator.getCounter(), 11);
  expectDoubled(valuesOf(provider, "OUT"));
}

TEST(NgcACalculatorBuffer, WithoutSelectedSampleNothingStarts)
{
  const Provider provider = makeCounting(30);
  ASSERT_TRUE(provider->setSelection(std::vector<bool>(30, false)));
  Doubler calculator;
  calculator.setProvider(provider);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(errorOf(calculator),
            "WARNING: nothing to do, there is no selected data in the dataset.");
  EXPECT_EQ(calculator.getErrorType(), NbeError::USER);
  EXPECT_FALSE(calculator.diary.contains(QStringLiteral("_createComputingThread")));
  EXPECT_EQ(calculator.diary.last(), QStringLiteral("_cleanup"));
}

TEST(NgcACalculatorBuffer, UnselectedSamplesKeepTheirValues)
{
  const Provider provider = makeCounting(100);
  std::vector<bool> flags(100);
  for (int i = 0; i < 100; ++i)
    flags[i] = i % 3 == 0 && (i < 40 || i >= 60);
  ASSERT_TRUE(provider->setSelection(flags));
  Doubler calculator(10);
  calculator.setProvider(provider);
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
  EXPECT_EQ(calculator.getCounter(), calculator.getCounterMax());

  ASSERT_TRUE(provider->setSelection(std::vector<bool>(100, true)));
  const std::vector<double> out = valuesOf(provider, "OUT");
  for (int i = 0; i < 100; ++i)
    EXPECT_EQ(out[i], flags[i] ? 2. * i + 1. : NbbGlobal::D_FFFF) << i;
}

TEST(NgcACalculatorBuffer, TheFirstFailingWorkerSpeaks)
{
  Doubler calculator(10);
  calculator.setProvider(makeCounting(100));
  QSemaphore both;
  calculator.onBuffer = [&both](int rank) {
    // The second worker fails when the first has, or is about to.
    both.release();
    if (rank == 1)
      both.acquire(2);
    throw NbeUserError(QStringLiteral("buffer failed"));
  };
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(errorOf(calculator), "Thread failed:\nbuffer failed\n");
  EXPECT_EQ(calculator.getErrorType(), NbeError::USER);
  EXPECT_TRUE(calculator.diary.contains(QStringLiteral("_errorOccurred")));
  EXPECT_FALSE(calculator.diary.contains(QStringLiteral("_postProcessing")));
}

TEST(NgcACalculatorBuffer, AStandardExceptionOfAWorkerEndsTheRun)
{
  Doubler calculator(10);
  calculator.setProvider(makeCounting(1000));
  calculator.onBuffer = [](int rank) {
    if (rank == 3)
      throw std::bad_alloc();
  };
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(errorOf(calculator),
            std::string("Thread failed:\nstd::bad_alloc: ") + std::bad_alloc().what() + "\n");
  // The others stop taking buffers.
  EXPECT_LT(calculator.nTaken, 100);
}

TEST(NgcACalculatorBuffer, NoWorkerStartsWhenOneCannotBeMade)
{
  const Provider provider = makeCounting(95);
  Doubler calculator(10);
  calculator.setProvider(provider);
  int nMade = 0;
  calculator.onStep = [&nMade](const QString &step) {
    if (step == QStringLiteral("_createComputingThread") && ++nMade == 2)
      throw NbeUserError(QStringLiteral("no second worker"));
  };
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(errorOf(calculator), "no second worker");
  EXPECT_EQ(calculator.nTaken, 0);
  EXPECT_EQ(countDefined(valuesOf(provider, "OUT")), 0);
}

TEST(NgcACalculatorBuffer, AStopRequestInterrupts)
{
  const Provider provider = makeCounting(1000);
  Doubler calculator(10);
  calculator.setProvider(provider);
  calculator.setPerformStatistics(Nbd::Role::VOUTPUT);
  calculator.onBuffer = [&calculator](int rank) {
    if (rank == 5)
      calculator.stop();
  };
  EXPECT_EQ(calculator.execute(), NbcAProgress::INTERRUPTED);
  EXPECT_EQ(errorOf(calculator), "Calculator Interrupted by the User.");
  EXPECT_LE(calculator.nTaken, 7);
  EXPECT_LT(countDefined(valuesOf(provider, "OUT")), 70);
  EXPECT_FALSE(calculator.hasStatistics(Nbd::Role::VOUTPUT, 0));
  EXPECT_EQ(calculator.diary.last(), QStringLiteral("_cleanup"));
}

TEST(NgcACalculatorBuffer, AStopBeforeTheFirstStepCounts)
{
  Doubler calculator(10);
  calculator.setProvider(makeCounting(100));
  QSemaphore stopped;
  calculator.onStep = [&stopped](const QString &step) {
    if (step == QStringLiteral("_checkDatasets"))
      stopped.acquire();
  };
  calculator.start();
  calculator.stop();
  stopped.release();
  ASSERT_TRUE(calculator.wait(10000));
  EXPECT_EQ(calculator.getState(), NbcAProgress::INTERRUPTED);
  EXPECT_EQ(calculator.nTaken, 0);
}

TEST(NgcACalculatorBuffer, RunsAgainAfterFailureAndInterruption)
{
  const Provider provider = makeCounting(200);
  Doubler calculator(10);
  calculator.setProvider(provider);
  calculator.setPerformStatistics(Nbd::Role::VOUTPUT);

  calculator.onBuffer = [](int) { throw NbeUserError(QStringLiteral("no")); };
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_NE(errorOf(calculator), "");
  calculator.onBuffer = [&calculator](int) { calculator.stop(); };
  EXPECT_EQ(calculator.execute(), NbcAProgress::INTERRUPTED);

  calculator.onBuffer = nullptr;
  for (int run = 0; run < 2; ++run) {
    ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
    EXPECT_EQ(errorOf(calculator), "");
    EXPECT_EQ(calculator.getCounter(), 21);
    EXPECT_EQ(calculator.getStatistics(Nbd::Role::VOUTPUT, 0).getNTotal(), 200);
    EXPECT_EQ(calculator.getStatistics(Nbd::Role::VOUTPUT, 0).getMean(), 200.);
  }
  expectDoubled(valuesOf(provider, "OUT"));
}

TEST(NgcACalculatorBuffer, TemporariesNeverSurviveTheRun)
{
  const Provider provider = makeCounting(100);
  const QString name = QStringLiteral("__TMP_OUT");
  NgdDataSetPoints dataSet = makeDataSet(provider);
  assign(dataSet, provider, Nbd::Role::VINPUT, "IN");
  dataSet.assignTemporaryVariable(Nbd::Role::VOUTPUT, name, Nbd::TYPE_DOUBLE);
  Doubler calculator(10);
  calculator.setOutputDataSet(dataSet);
  calculator.setPerformStatistics(Nbd::Role::VOUTPUT);

  bool existed = false;
  calculator.onStep = [&](const QString &step) {
    if (step == QStringLiteral("_preProcessing"))
      existed = !provider->getIdFromName(name).isEmpty();
  };
  const std::pair<std::function<void(int)>, NbcAProgress::State> cases[] = {
      {nullptr, NbcAProgress::COMPLETED},
      {[](int) { throw std::bad_alloc(); }, NbcAProgress::FAILED},
      {[&calculator](int) { calculator.stop(); }, NbcAProgress::INTERRUPTED},
      {nullptr, NbcAProgress::COMPLETED},
  };
  for (const auto &[onBuffer, state] : cases) {
    calculator.onBuffer = onBuffer;
    existed = false;
    EXPECT_EQ(calculator.execute(), state) << errorOf(calculator);
    EXPECT_TRUE(existed);
    EXPECT_EQ(provider->getIdFromName(name), QString());
    EXPECT_FALSE(provider->isVariableOpen(provider->getIdFromName(QStringLiteral("IN"))));
  }
  EXPECT_EQ(calculator.getStatistics(Nbd::Role::VOUTPUT, 0).getMean(), 100.);
}

namespace {

/// Registers rules only.
class RuleTester : public Doubler
{
public:
  RuleTester(int min, int max)
  {
    _addVariableRule(Nbd::Dataset::OUTPUT, Nbd::Role::CODE, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, min,
                     max);
  }
  ~RuleTester() override { _finish(); }
  using Doubler::_addRuleCountMatch;
};

/// Adds a rule at run time, for the run only.
class RuntimeRule : public Doubler
{
public:
  ~RuntimeRule() override { _finish(); }
  bool wantsCode = false;

protected:
  void _addRuntimeConstraints() override
  {
    if (!wantsCode)
      return;
    _addVariableRule(Nbd::Dataset::OUTPUT, Nbd::Role::CODE, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, -1,
                     -1);
    _addRuleCount(Nbd::Dataset::OUTPUT, Nbd::Role::CODE, 1, 1);
  }
};

}  // namespace

TEST(NgcACalculator, BoundsOfVariableRules)
{
  const struct
  {
    int min;
    int max;
    std::string text;  // empty: no complaint about a role without variables
  } cases[] = {{2, 1, "Expected number = [2,2]"},
               {2, -5, "Expected number = [2,INF]"},
               {1, 3, "Expected number = [1,3]"},
               {0, 0, ""},
               {-1, 4, ""}};
  for (const auto &[min, max, text] : cases) {
    RuleTester calculator(min, max);
    calculator.setProvider(makeCounting(20));
    const auto state = calculator.execute();
    EXPECT_EQ(state, text.empty() ? NbcAProgress::COMPLETED : NbcAProgress::FAILED) << min;
    EXPECT_THAT(errorOf(calculator), HasSubstr(text));
  }

  RuleTester matching(0, -1);
  matching.setProvider(makeCounting(20));
  matching._addRuleCountMatch(Nbd::Dataset::OUTPUT, Nbd::Role::CODE, Nbd::Dataset::OUTPUT,
                              Nbd::Role::VINPUT);
  EXPECT_EQ(matching.execute(), NbcAProgress::FAILED);
}

TEST(NgcACalculator, RulesOfARunEndWithIt)
{
  RuntimeRule calculator;
  calculator.setProvider(makeCounting(20));
  calculator.wantsCode = true;
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  calculator.wantsCode = false;
  EXPECT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
}

TEST(NgcAVariableCreator, NeedsAnOutput)
{
  Doubler calculator;
  EXPECT_EQ(messageOf([&] { calculator.getOutputDataset(); }), "No output dataset defined!");
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(errorOf(calculator), "No output dataset defined!");
  EXPECT_EQ(calculator.getErrorType(), NbeError::PROGRAMMING);
}

TEST(NgcACalculator, KeepsItsOwnCopyOfADataSet)
{
  const Provider provider = makeCounting(20);
  Doubler calculator;
  {
    NgdDataSetPoints dataSet = makeDataSet(provider);
    assign(dataSet, provider, Nbd::Role::VINPUT, "IN");
    assign(dataSet, provider, Nbd::Role::VOUTPUT, "OUT");
    calculator.setOutputDataSet(dataSet);
    dataSet.clearAllRoles();
  }
  EXPECT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
}

namespace {

/// Input sample number s goes to the output sample n + 1 - s, with its value as the distance.
class Mirror : public NgcALoopOnInputPatchOutput
{
public:
  Mirror() { setNThread(2); }
  ~Mirror() override { _finish(); }

protected:
  void _initBufferManager() override { _getBufferManager()->setNSamplesPerBuffer(7); }

  NgwAThread *_createComputingThread(NgwThreadPool *pool) override
  {
    return new Worker(pool, this);
  }

private:
  class Worker : public NgwAThread
  {
  public:
    Worker(NgwThreadPool *pool, Mirror *mirror) : NgwAThread(pool), _mirror(mirror) {}

  protected:
    void _run() override
    {
      while (std::unique_ptr<NbdAData> input{_mirror->getNextInputBuffer()}) {
        const std::unique_ptr<NbdDataPoints> output(_mirror->getOutputBuffer());
        const int n = input->getNSamples();
        output->appendSamples(n);
        NbdAVariableNumeric &distance =
            output->getDataTable().getVarNumericRef(Nbd::Role::DISTANCE);
        NbdAVariableNumeric &number = output->getDataTable().getVarNumericRef(Nbd::Role::SN);
        for (int i = 0; i < n; ++i) {
          const double value = input->getDataTable().getVarNumericRef(Nbd::Role::V).getValue(i);
          distance.setValue(i, value);
          number.setValue(i, double(_mirror->_getNInputSamples()) - value);
        }
        _mirror->saveBuffer(*output);
      }
    }

  private:
    Mirror *_mirror;
  };
};

}  // namespace

TEST(NgcALoopOnInputPatchOutput, PatchesByForeignSampleNumbers)
{
  const int n = 50;
  const Provider input = makeCounting(n);
  const Provider output = makeCounting(n);
  NgdDataSetPoints in = makeDataSet(input);
  assign(in, input, Nbd::Role::V, "IN");
  NgdDataSetPoints out = makeDataSet(output);
  assign(out, output, Nbd::Role::DISTANCE, "OUT");

  Mirror mirror;
  EXPECT_EQ(mirror.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(errorOf(mirror), "No input dataset defined!");
  mirror.setInputDataSet(in);
  EXPECT_EQ(mirror.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(errorOf(mirror), "No output dataset defined!");
  mirror.setOutputDataSet(out);
  ASSERT_EQ(mirror.execute(), NbcAProgress::COMPLETED) << errorOf(mirror);
  EXPECT_FALSE(mirror.isGridOutputDataset());
  EXPECT_FALSE(mirror.hasOverlappedStats());
  EXPECT_EQ(mirror.getCounter(), mirror.getCounterMax());

  const std::vector<double> values = valuesOf(output, "OUT");
  for (int i = 0; i < n; ++i)
    EXPECT_EQ(values[i], n - 1. - i) << i;
}
