#include "geos/base/NgcACalculatorSequential.h"

#include "TestCalculators.h"

using testcalc::assign;
using testcalc::errorOf;
using testcalc::makeCounting;
using testcalc::makeDataSet;
using testcalc::Provider;
using testcalc::valuesOf;
using testing::HasSubstr;

namespace {

/// Writes OUT = rank of IN within the buffer * 10, with a diary. `Base` is one of the sequential
/// calculators.
template <class Base>
class Sequential : public Base
{
public:
  Sequential()
  {
    this->_addVariableRule(Nbd::Dataset::INOUT, Nbd::Role::V, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 1,
                           1);
    this->_addVariableRule(Nbd::Dataset::INOUT, Nbd::Role::VOUTPUT, Nbd::ACCESS_WRITE,
                           Nbd::TYPE_DOUBLE, 1, 1);
  }
  ~Sequential() override { this->_finish(); }

  void setProvider(const Provider &provider)
  {
    NgdDataSetPoints dataSet = makeDataSet(provider);
    assign(dataSet, provider, Nbd::Role::V, "IN");
    assign(dataSet, provider, Nbd::Role::VOUTPUT, "OUT");
    this->setDataSet(dataSet);
  }

  using Base::_setNeedCoordinates;
  using Base::_setSaveOutput;

  int nSamplesPerBuffer = 0;  // 0: as the base sizes them
  QStringList diary;
  std::function<void()> onProcessing;
  int nDimensions = -1;
  double lastValue = 0.;

protected:
  void _preProcessing() override { diary.append(QStringLiteral("pre")); }
  void _postProcessing() override { diary.append(QStringLiteral("post")); }
  void _initBufferManager(NgdABufferManager *manager) const override
  {
    if (nSamplesPerBuffer > 0)
      manager->setNSamplesPerBuffer(nSamplesPerBuffer);
    else
      Base::_initBufferManager(manager);
  }
  void _processing(NbdAData &buffer) override
  {
    diary.append(QStringLiteral("buffer of %1").arg(buffer.getNSamples()));
    nDimensions = buffer.getDataTable().getX() ? 1 : 0;
    const auto &in = buffer.getDataTable().getVarDoubleRef(Nbd::Role::V);
    auto &out = buffer.getDataTable().getVarDoubleRef(Nbd::Role::VOUTPUT);
    for (int i = 0; i < buffer.getNSamples(); ++i) {
      EXPECT_GE(in.getValue(i), lastValue);
      lastValue = in.getValue(i);
      out.setValue(i, 10. * in.getValue(i));
    }
    if (onProcessing)
      onProcessing();
  }
};

using Whole = Sequential<NgcACalculatorSequential>;
using ByBuffer = Sequential<NgcACalculatorSequentialBuffer>;

}  // namespace

TEST(NgcACalculatorSequential, ProcessesTheWholeDataSetAtOnce)
{
  const Provider provider = makeCounting(300);
  Whole calculator;
  calculator.setProvider(provider);
  calculator.setPerformStatistics(Nbd::Role::VOUTPUT);
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
  EXPECT_EQ(calculator.diary, (QStringList{QStringLiteral("pre"), QStringLiteral("buffer of 300"),
                                           QStringLiteral("post")}));
  EXPECT_EQ(calculator.nDimensions, 0);
  EXPECT_EQ(calculator.getCounterMax(), 100);
  EXPECT_EQ(valuesOf(provider, "OUT")[299], 2990.);
  EXPECT_EQ(calculator.getStatistics(Nbd::Role::VOUTPUT, 0).getMaximum(), 2990.);

  calculator._setNeedCoordinates(true);
  calculator.setProvider(provider);
  calculator.lastValue = 0.;
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
  EXPECT_EQ(calculator.nDimensions, 1);
}

TEST(NgcACalculatorSequential, WritesBackOnRequestOnly)
{
  const Provider provider = makeCounting(30);
  Whole calculator;
  calculator.setProvider(provider);
  calculator.setPerformStatistics(Nbd::Role::VOUTPUT);
  calculator._setSaveOutput(false);
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
  EXPECT_EQ(valuesOf(provider, "OUT")[29], NbbGlobal::D_FFFF);
  EXPECT_EQ(calculator.getStatistics(Nbd::Role::VOUTPUT, 0).getNTotal(), 0);
}

TEST(NgcACalculatorSequential, AStoppedRunLeavesNoStatistics)
{
  const Provider provider = makeCounting(300);
  Whole calculator;
  calculator.setProvider(provider);
  calculator.setPerformStatistics(Nbd::Role::VOUTPUT);
  calculator.onProcessing = [&] { calculator.stop(); };
  ASSERT_EQ(calculator.execute(), NbcAProgress::INTERRUPTED);
  EXPECT_FALSE(calculator.hasStatistics(Nbd::Role::VOUTPUT, 0));

  calculator.onProcessing = nullptr;
  calculator.lastValue = 0.;
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED);
  EXPECT_EQ(calculator.getStatistics(Nbd::Role::VOUTPUT, 0).getNDefined(), 300);
}

TEST(NgcACalculatorSequential, WithoutSelectionThereIsNothingToProcess)
{
  const Provider provider = makeCounting(30);
  ASSERT_TRUE(provider->setSelection(std::vector<bool>(30, false)));
  Whole whole;
  whole.setProvider(provider);
  EXPECT_EQ(whole.execute(), NbcAProgress::COMPLETED) << errorOf(whole);
  EXPECT_EQ(whole.diary, (QStringList{QStringLiteral("pre"), QStringLiteral("post")}));
  ByBuffer byBuffer;
  byBuffer.setProvider(provider);
  EXPECT_EQ(byBuffer.execute(), NbcAProgress::COMPLETED) << errorOf(byBuffer);
  EXPECT_EQ(byBuffer.diary, (QStringList{QStringLiteral("pre"), QStringLiteral("post")}));
}

TEST(NgcACalculatorSequential, TellsWhatIsMissing)
{
  Whole calculator;
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_THAT(errorOf(calculator), HasSubstr("No Input/Output Dataset provided"));
  EXPECT_THAT(errorOf(calculator), HasSubstr("'base\\NgcACalculatorSequential'"));

  const Provider provider = makeCounting(100000);
  calculator.setProvider(provider);
  calculator.setAvailableMemBytes(100000);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(errorOf(calculator), "There is not enough memory to run the sequential algorithm!");
  EXPECT_EQ(calculator.getErrorType(), NbeError::MEMORY);
}

TEST(NgcACalculatorSequentialBuffer, TakesOneBufferAfterAnother)
{
  const Provider provider = makeCounting(95);
  std::vector<bool> flags(95, true);
  std::fill(flags.begin() + 20, flags.begin() + 40, false);
  ASSERT_TRUE(provider->setSelection(flags));
  ByBuffer calculator;
  calculator.setProvider(provider);
  calculator.setPerformStatistics(Nbd::Role::VOUTPUT);
  calculator.nSamplesPerBuffer = 20;
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
  EXPECT_EQ(calculator.diary,
            (QStringList{QStringLiteral("pre"), QStringLiteral("buffer of 20"),
                         QStringLiteral("buffer of 20"), QStringLiteral("buffer of 20"),
                         QStringLiteral("buffer of 15"), QStringLiteral("post")}));
  EXPECT_EQ(calculator.getCounter(), 500);
  EXPECT_EQ(calculator.getCounterMax(), 500);
  EXPECT_EQ(calculator.getStatistics(Nbd::Role::VOUTPUT, 0).getNTotal(), 75);
}

TEST(NgcACalculatorSequentialBuffer, StopsBetweenBuffers)
{
  const Provider provider = makeCounting(100);
  ByBuffer calculator;
  calculator.setProvider(provider);
  calculator.nSamplesPerBuffer = 10;
  calculator.onProcessing = [&calculator] {
    if (calculator.diary.size() == 4)
      calculator.stop();
  };
  EXPECT_EQ(calculator.execute(), NbcAProgress::INTERRUPTED);
  EXPECT_EQ(errorOf(calculator), "");
  // The third buffer was processed but not written.
  const std::vector<double> out = valuesOf(provider, "OUT");
  EXPECT_EQ(out[19], 190.);
  EXPECT_EQ(out[20], NbbGlobal::D_FFFF);
}
