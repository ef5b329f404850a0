#include "basic/data/NbdDataLines.h"
#include "basic/data/NbdVariableDouble.h"
#include "geos/base/NgwAThread.h"
#include "geos/data/NgdDataSetLines.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/lines/NgcALineSupportCreator.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

namespace {

using testsupport::makeLines;
using testsupport::makePoints;

/// Copies every second sample of each input line to the output line of the same rank and doubles
/// the input's values.
class Thinning : public NgcALineSupportCreator
{
public:
  Thinning()
  {
    _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::V, Nbd::ACCESS_READ_WRITE, Nbd::TYPE_DOUBLE, 1,
                     1);
    _addVariableRule(Nbd::Dataset::OUTPUT, Nbd::Role::V, Nbd::ACCESS_WRITE, Nbd::TYPE_DOUBLE, 1, 1);
  }
  ~Thinning() override { _finish(); }

  void countOnOutput() { _setProgressMode(PROGRESS_ON_OUTPUT); }

protected:
  class Worker : public NgwAThread
  {
  public:
    Worker(NgwThreadPool *pool, Thinning *calculator) : NgwAThread(pool), _calculator(calculator) {}

  protected:
    void _run() override
    {
      while (const std::unique_ptr<NbdDataLines> lines{_calculator->getNextInputLines()}) {
        const std::unique_ptr<NbdDataLines> output{_calculator->getNewOutputLines(false, true)};
        _thin(*lines, *output);
        _calculator->saveLines(*output);
        _calculator->saveInputLines(*lines);
      }
    }

    static void _thin(NbdDataLines &lines, NbdDataLines &output)
    {
      NbdVariableDouble &input = lines.getDataTable().getVarDoubleRef(Nbd::Role::V);
      QVector<int> counts;
      for (const int count : lines.getNSamplesPerLine())
        counts << (count + 1) / 2;
      output.setLines(lines.getLineRanks(), counts);
      NbdVariableDouble &thinned = output.getDataTable().getVarDoubleRef(Nbd::Role::V);
      for (int index = 0; index < lines.getNLines(); ++index) {
        const NbdDataLines::Line from = lines.getLineRef(index);
        const NbdDataLines::Line to = output.getLineRef(index);
        for (int i = 0; i < to.count; ++i)
          thinned.setValue(to.first + i, input.getValue(from.first + 2 * i));
      }
      for (int i = 0; i < lines.getNSamples(); ++i)
        input.setValue(i, 2. * input.getValue(i));
    }

  private:
    Thinning *_calculator;
  };

  NgwAThread *_createComputingThread(NgwThreadPool *pool) override
  {
    return new Worker(pool, this);
  }
};

template <class Provider>
NgdDataSetLines makeDataSet(const Provider &provider, const char *variable)
{
  NgdDataSetLines dataSet;
  dataSet.setDataProvider(provider);
  dataSet.assignVariable(Nbd::Role::V, provider->getIdFromName(QLatin1String(variable)));
  return dataSet;
}

template <class Provider>
std::vector<double> valuesOf(const Provider &provider, const char *name)
{
  NgdDataSetLines dataSet = makeDataSet(provider, name);
  dataSet.openAllVariables();
  NbdDataPoints buffer;
  dataSet.loadAllData(buffer, false, false);
  dataSet.closeAllVariables();
  return buffer.getDataTableConst().getVarDoubleRef(Nbd::Role::V).getVector();
}

std::string runError(Thinning &calculator)
{
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  return calculator.getErrorMessage().toStdString();
}

}  // namespace

TEST(NgcALineCalculator, ReadsWritesBackAndCreatesLines)
{
  std::vector<int> counts;
  std::vector<double> expected;
  for (int line = 0; line < 2300; ++line)
    counts.push_back(testsupport::uniformInt(5, line, 4));  // empty ones too
  auto input = makeLines(counts);
  const std::vector<double> values = valuesOf(input, "Z2");
  int first = 0;
  for (const int count : counts) {
    for (int i = 0; i < count; i += 2)
      expected.push_back(values[first + i]);
    first += count;
  }
  for (const int nThreads : {1, 3}) {
    input = makeLines(counts);
    auto output = makeLines(std::vector<int>(counts.size(), 0));
    Thinning calculator;
    calculator.setInputDataSet(makeDataSet(input, "Z2"));
    calculator.setOutputDataSet(makeDataSet(output, "Z2"));
    calculator.setNThread(nThreads);
    if (nThreads == 3)
      calculator.countOnOutput();
    ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED)
        << qPrintable(calculator.getErrorMessage());
    EXPECT_GE(calculator.getCounterMax(), 3);
    EXPECT_EQ(calculator.getCounter(), calculator.getCounterMax());
    EXPECT_EQ(valuesOf(output, "Z2"), expected);
    const std::vector<double> doubled = valuesOf(input, "Z2");
    for (std::size_t i = 0; i < values.size(); ++i)
      ASSERT_EQ(doubled[i], 2. * values[i]);
  }
}

TEST(NgcALineCalculator, TellsWhatIsMissing)
{
  Thinning calculator;
  EXPECT_EQ(runError(calculator), "NgcALineCalculator: No input dataset defined.");

  const auto points = makePoints(10);
  NgdDataSetPoints notLines;
  notLines.setDataProvider(points);
  calculator.setInputDataSet(notLines);
  EXPECT_EQ(runError(calculator), "NgcALineCalculator: No input dataset defined.");

  calculator.setInputDataSet(makeDataSet(makeLines({}), "Z2"));
  EXPECT_EQ(runError(calculator),
            "WARNING: nothing to do, there is no line in the input line dataset.");
  EXPECT_EQ(calculator.getErrorType(), NbeError::USER);

  const auto lines = makeLines({3, 4});
  calculator.setInputDataSet(makeDataSet(lines, "Z2"));
  EXPECT_EQ(runError(calculator), "NgcALineSupportCreator: No output dataset defined.");
  EXPECT_EQ(calculator.getErrorType(), NbeError::PROGRAMMING);

  // A line that the output does not have.
  calculator.setOutputDataSet(makeDataSet(makeLines({3}), "Z2"));
  const std::string error = runError(calculator);
  EXPECT_NE(error.find("Error when creating the samples of line 2."), std::string::npos) << error;
}
