#include "geos/base/NgcACalculatorSimple.h"

#include "TestCalculators.h"
#include "basic/calc/NbcStatBasic.h"
#include "basic/data/NbdEnumCatalog.h"
#include "basic/data/NbdMacroIndexInfo.h"
#include "basic/data/NbdVariableMulti.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/data/NgdDataSetGrid.h"

#include <map>

using testcalc::assign;
using testcalc::Doubler;
using testcalc::errorOf;
using testcalc::makeDataSet;
using testcalc::messageOf;
using testcalc::Provider;
using testing::HasSubstr;
using testsupport::normal;

namespace {

/// Reads whatever is bound to the output data set, and lets statistics be made of it.
class Reader : public NgcAVariableCreator
{
public:
  explicit Reader(int nSamplesPerBuffer)
      : NgcAVariableCreator(Nbd::Role::VOUTPUT), _nSamplesPerBuffer(nSamplesPerBuffer)
  {
  }
  ~Reader() override { _finish(); }

  void readMacro(Nbd::EVariableType type, bool byPiece)
  {
    _addMacroRule(Nbd::Dataset::OUTPUT, Nbd::Role::SIMU, Nbd::ACCESS_READ, type, 1, 1);
    if (byPiece)
      _getRules().setRuleMacroByPiece(Nbd::Dataset::OUTPUT, Nbd::Role::SIMU, true);
  }

  /// Spoils the buffers.
  std::function<void(NbdDataTable &)> onTable;

protected:
  void _initBufferManager() override
  {
    _getBufferManager()->setNSamplesPerBuffer(_nSamplesPerBuffer);
  }
  NgwAThread *_createComputingThread(NgwThreadPool *pool) override
  {
    return new Worker(pool, this);
  }

private:
  class Worker : public NgwAThread
  {
  public:
    Worker(NgwThreadPool *pool, Reader *reader) : NgwAThread(pool), _reader(reader) {}

  protected:
    void _run() override
    {
      while (std::unique_ptr<NbdAData> buffer{_reader->getNextBuffer()}) {
        if (_reader->onTable)
          _reader->onTable(buffer->getDataTable());
        _reader->_performStatistics(*buffer);
      }
    }

  private:
    Reader *_reader;
  };

  int _nSamplesPerBuffer;
};

struct BruteForce
{
  explicit BruteForce(const std::vector<double> &values)
  {
    for (double value : values) {
      ++nTotal;
      if (!NbbGlobal::isDefined(value))
        continue;
      ++nDefined;
      sum += value;
      minimum = std::min(minimum, value);
      maximum = std::max(maximum, value);
    }
    mean = sum / nDefined;
    for (double value : values)
      variance += NbbGlobal::isDefined(value) ? (value - mean) * (value - mean) / nDefined : 0.;
  }

  int nTotal = 0;
  int nDefined = 0;
  double sum = 0.;
  double minimum = 1e300;
  double maximum = -1e300;
  double mean = 0.;
  double variance = 0.;
};

void expectStatistics(const NbcStatBasic &actual, const std::vector<double> &values)
{
  const BruteForce expected(values);
  EXPECT_EQ(actual.getNTotal(), expected.nTotal);
  EXPECT_EQ(actual.getNDefined(), expected.nDefined);
  EXPECT_EQ(actual.getNDefinedNoW(), expected.nDefined);
  EXPECT_EQ(actual.getMinimum(), expected.minimum);
  EXPECT_EQ(actual.getMaximum(), expected.maximum);
  // Values are of order 1 to 10 and there are some hundred of them.
  EXPECT_NEAR(actual.getMean(), expected.mean, 1e-13);
  EXPECT_NEAR(actual.getVariance(), expected.variance, 1e-12);
}

template <class T>
std::vector<T> where(const std::vector<T> &values, const std::vector<bool> &flags)
{
  std::vector<T> kept;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (flags[i])
      kept.push_back(values[i]);
  }
  return kept;
}

std::vector<double> someValues(int n, int stream)
{
  std::vector<double> values(n);
  for (int i = 0; i < n; ++i)
    values[i] = i % 11 == 3 ? NbbGlobal::D_FFFF : 5. + normal(stream, i);
  return values;
}

std::vector<bool> someFlags(int n)
{
  std::vector<bool> flags(n);
  for (int i = 0; i < n; ++i)
    flags[i] = i % 3 != 1 && (i < 100 || i > 180);
  return flags;
}

}  // namespace

TEST(NgcACalculatorSimple, StatisticsAndProportionsOfSelectedPoints)
{
  const int n = 500;
  const std::vector<double> values = someValues(n, 1);
  std::vector<int> codes(n);
  for (int i = 0; i < n; ++i)
    codes[i] = i % 7 == 0 ? NbbGlobal::I32_FFFF : i % 4;
  const std::vector<bool> flags = someFlags(n);
  auto provider = testcalc::makeCounting(n);
  provider->addVariable(QStringLiteral("A"), values);
  provider->addVariable(QStringLiteral("CODES"), codes);
  NbdEnumCatalog catalog;
  std::vector<qint16> categories(codes.begin(), codes.end());
  for (int i = 0; i < n; i += 7)
    categories[i] = NbbGlobal::I16_FFFF;
  provider->addVariableEnum(QStringLiteral("CATEGORIES"), categories, catalog);
  ASSERT_TRUE(provider->setSelection(flags));

  NgdDataSetPoints dataSet = makeDataSet(provider);
  assign(dataSet, provider, Nbd::Role::V, "A");
  assign(dataSet, provider, Nbd::Role::CODE, "CODES");
  assign(dataSet, provider, Nbd::Role::ENUM, "CATEGORIES");
  assign(dataSet, provider, Nbd::Role::VSTAT, "A");
  Reader reader(13);
  reader.setOutputDataSet(dataSet);
  reader.setPerformStatistics(Nbd::Role::V);
  reader.setPerformStatistics(Nbd::Role::VSTAT);
  reader.setPerformProportions(Nbd::Role::CODE);
  reader.setPerformProportions(Nbd::Role::ENUM);
  ASSERT_EQ(reader.execute(), NbcAProgress::COMPLETED) << errorOf(reader);

  expectStatistics(reader.getStatistics(Nbd::Role::V, 0), where(values, flags));
  EXPECT_FALSE(reader.hasStatistics(Nbd::Role::VSTAT, 0));  // counted under V
  EXPECT_FALSE(reader.hasProportions(Nbd::Role::V, 0));
  EXPECT_FALSE(reader.hasStatistics(Nbd::Role::ENUM, 0));
  EXPECT_FALSE(reader.hasStatistics(Nbd::Role::V, 1));
  EXPECT_EQ(reader.getStatistics(Nbd::Role::CODE, 0).getNTotal(),
            std::count(flags.begin(), flags.end(), true));

  std::map<int, int> counts;
  for (int code : where(codes, flags))
    ++counts[code];
  const int nDefined = counts[0] + counts[1] + counts[2] + counts[3];
  for (const QString &role : {Nbd::Role::CODE, Nbd::Role::ENUM}) {
    const NbcProportions proportions = reader.getProportions(role, 0);
    for (const auto &[code, count] : counts)
      EXPECT_EQ(proportions.getNbUnits(code), count) << code;
    EXPECT_DOUBLE_EQ(proportions.getProportion(2), counts[2] / double(nDefined));
  }
}

TEST(NgcACalculatorSimple, StatisticsOfAMaskedGridLeaveTheMaskedOut)
{
  const auto provider = testsupport::makeGrid(7, 9, 5);
  const int n = 7 * 9 * 5;
  const std::vector<double> values = someValues(n, 3);
  const std::vector<bool> flags = someFlags(n);
  provider->addVariable(QStringLiteral("A"), values);
  ASSERT_TRUE(provider->setSelection(flags));
  NgdDataSetGrid dataSet;
  dataSet.setDataProvider(provider);
  assign(dataSet, provider, Nbd::Role::V, "A");
  Reader reader(45);
  reader.setOutputDataSet(dataSet);
  reader.setPerformStatsOrProps(true);
  ASSERT_EQ(reader.execute(), NbcAProgress::COMPLETED) << errorOf(reader);
  expectStatistics(reader.getStatistics(Nbd::Role::V, 0), where(values, flags));
}

TEST(NgcACalculatorSimple, BitsDoNotDependOnThreads)
{
  const int n = 20000;
  auto provider = testcalc::makeCounting(n);
  provider->addVariable(QStringLiteral("A"), someValues(n, 5));
  NgdDataSetPoints dataSet = makeDataSet(provider);
  assign(dataSet, provider, Nbd::Role::V, "A");
  NbcStatBasic reference;
  for (int nThreads : {1, 2, 8}) {
    for (int run = 0; run < 3; ++run) {
      Reader reader(37);
      reader.setOutputDataSet(dataSet);
      reader.setPerformStatistics(Nbd::Role::V);
      reader.setNThread(nThreads);
      ASSERT_EQ(reader.execute(), NbcAProgress::COMPLETED) << errorOf(reader);
      const NbcStatBasic record = reader.getStatistics(Nbd::Role::V, 0);
      if (nThreads == 1 && run == 0)
        reference = record;
      ASSERT_EQ(record.getMean(), reference.getMean()) << nThreads;
      ASSERT_EQ(record.getVariance(), reference.getVariance()) << nThreads;
    }
  }
}

namespace {

/// Points with "A" and three realizations of "SIM", which are exact in single precision.
struct MacroData
{
  static constexpr int N = 120;
  Provider provider = testcalc::makeCounting(N);
  QString macro;
  NgdDataSetPoints dataSet;

  MacroData()
  {
    provider->addVariable(QStringLiteral("A"), someValues(N, 5));
    macro = provider->addMacro(QStringLiteral("SIM"), Nbd::TYPE_DOUBLE, NbdMacroIndexInfo());
    for (int index = 1; index <= 3; ++index)
      provider->addRealization(macro, NbdMacroIndex(index), realization(index));
    dataSet = makeDataSet(provider);
    dataSet.assignMacro(Nbd::Role::SIMU, macro);
    assign(dataSet, provider, Nbd::Role::V, "A");
  }

  static std::vector<double> realization(int index)
  {
    std::vector<double> values = someValues(N, 10 + index);
    for (double &value : values)
      value = float(value);
    return values;
  }
};

}  // namespace

TEST(NgcACalculatorSimple, EachRealizationHasItsStatistics)
{
  const std::pair<Nbd::EVariableType, bool> cases[] = {{Nbd::TYPE_DOUBLE, false},
                                                       {Nbd::TYPE_DOUBLE, true},
                                                       {Nbd::TYPE_MULTI_FLOAT, false},
                                                       {Nbd::TYPE_MULTI_FLOAT, true}};
  MacroData data;
  for (const auto &[type, byPiece] : cases) {
    SCOPED_TRACE(testing::Message() << "type " << type << (byPiece ? " by piece" : ""));
    Reader reader(11);
    reader.readMacro(type, byPiece);
    reader.setOutputDataSet(data.dataSet);
    reader.setPerformStatsOrProps(true);
    ASSERT_EQ(reader.execute(), NbcAProgress::COMPLETED) << errorOf(reader);
    for (int index = 1; index <= 3; ++index)
      expectStatistics(reader.getMacroStatistics(Nbd::Role::SIMU, 0, NbdMacroIndex(index)),
                       MacroData::realization(index));
    // A plain variable comes by once per realization and is counted once.
    expectStatistics(reader.getStatistics(Nbd::Role::V, 0), someValues(MacroData::N, 5));
    EXPECT_FALSE(reader.hasStatistics(Nbd::Role::SIMU, 0));
    EXPECT_FALSE(reader.hasMacroStatistics(Nbd::Role::SIMU, 0, NbdMacroIndex(4)));
  }
}

TEST(NgcACalculatorSimple, MisuseIsTold)
{
  Reader reader(10);
  const QString role = Nbd::Role::V;
  const NbdMacroIndex macro(2);
  using Call = std::function<void()>;
  const std::pair<Call, std::pair<const char *, const char *>> cases[] = {
      {[&] { reader.getStatistics(role, 1); },
       {"Statistics not activated!", "Statistics not available for role V #1!"}},
      {[&] { reader.getMacroStatistics(role, 0, macro); },
       {"Statistics not activated!", "Statistics not available for role V #0[index]!"}},
      {[&] { reader.getProportions(role, 0); },
       {"Proportions not activated!", "Proportions not available for role V #0!"}},
      {[&] { reader.getMacroProportions(role, 3, macro); },
       {"Proportions not activated!", "Proportions not available for role V #3[index]!"}}};
  for (bool activated : {false, true}) {
    reader.setPerformStatsOrProps(activated);
    EXPECT_EQ(reader.getPerformStatsorProps(), activated);
    for (const auto &[call, texts] : cases) {
      EXPECT_THROW(call(), NbeProgrammingError);
      EXPECT_THAT(messageOf(call), HasSubstr(activated ? texts.second : texts.first));
      EXPECT_THAT(messageOf(call), HasSubstr("in file 'base\\NgcACalculatorSimple' failed:\n\n"));
    }
  }
  EXPECT_FALSE(reader.hasStatistics(role, 0));
  EXPECT_FALSE(reader.hasMacroProportions(role, 0, macro));
  reader.setPerformStatsOrProps(false);
  EXPECT_THROW(reader.hasStatistics(role, 0), NbeProgrammingError);
  EXPECT_THROW(reader.hasProportions(role, 0), NbeProgrammingError);
}

TEST(NgcACalculatorSimple, ABufferWithoutTheVariableIsAnError)
{
  const struct
  {
    Nbd::EVariableType type;
    QString role;
    std::string text;
  } cases[] = {
      {Nbd::TYPE_DOUBLE, Nbd::Role::V, "No stats for variable index #0 of role V"},
      {Nbd::TYPE_DOUBLE, Nbd::Role::SIMU, "No stats for macro index '1' of role 'SIMU'."},
      {Nbd::TYPE_MULTI_FLOAT, Nbd::Role::SIMU, "No stats for variable index #0 of role SIMU"},
  };
  MacroData data;
  for (const auto &[type, role, text] : cases) {
    Reader reader(10);
    reader.readMacro(type, false);
    reader.setOutputDataSet(data.dataSet);
    reader.setPerformStatistics(role);
    reader.onTable = [name = role](NbdDataTable &table) { table.deleteVariable(name, 0); };
    EXPECT_EQ(reader.execute(), NbcAProgress::FAILED);
    EXPECT_THAT(errorOf(reader), HasSubstr(text));
  }

  Reader reader(10);
  reader.readMacro(Nbd::TYPE_MULTI_FLOAT, false);
  reader.setOutputDataSet(data.dataSet);
  reader.setPerformStatistics(Nbd::Role::SIMU);
  reader.onTable = [](NbdDataTable &table) {
    table.getVarMulti(Nbd::Role::SIMU)->setNRealizations(2);
  };
  EXPECT_EQ(reader.execute(), NbcAProgress::FAILED);
  EXPECT_THAT(errorOf(reader), HasSubstr("No stats for realization #3 of role SIMU"));
}
