#include "geos/base/NgcACalculatorComposite.h"

#include "TestCalculators.h"
#include "basic/error/NbeMemoryError.h"
#include "basic/error/NbeProgrammingError.h"

using testcalc::Doubler;
using testcalc::errorOf;
using testcalc::makeCounting;
using testcalc::messageOf;
using testcalc::Provider;
using testcalc::valuesOf;
using testing::HasSubstr;

namespace {

const QString FIRST = QStringLiteral("CALC_FIRST");
const QString SECOND = QStringLiteral("CALC_SECOND");

/// Runs two doublers.
class Composite : public NgcACalculatorComposite
{
public:
  Composite()
  {
    first = new Doubler(10);
    second = new Doubler(10);
    second->setProgressMessage(QStringLiteral("own message"));
    _registerProgressable(SECOND, second, QString(), 3, true);
    _registerProgressable(FIRST, first, QStringLiteral("first message"), 2, false);
  }
  ~Composite() override { _finish(); }

  using NgcACalculatorComposite::_getCurrentProgressableId;
  using NgcACalculatorComposite::_getIds;
  using NgcACalculatorComposite::_getProgressable;
  using NgcACalculatorComposite::_registerProgressable;
  using NgcACalculatorComposite::_reset;
  using NgcACalculatorComposite::_setDataset;

  QPointer<Doubler> first;
  QPointer<Doubler> second;
  QString skipped;
  QStringList diary;

protected:
  bool _prepareProgressable(const QString &id) override
  {
    diary.append(QStringLiteral("prepare %1 (%2) at %3")
                     .arg(id, getProgressMessage(), QString::number(getCounter())));
    EXPECT_EQ(_getCurrentProgressableId(), id);
    return id != skipped;
  }
  void _progressableFinished(const QString &id) override
  {
    diary.append(QStringLiteral("finished %1").arg(id));
  }
  void _preProcessing() override
  {
    NgcACalculatorComposite::_preProcessing();
    diary.append(getProgressMessageDetail());
  }
  void _postProcessing() override
  {
    NgcACalculatorComposite::_postProcessing();
    diary.append(getProgressMessageDetail());
  }
};

}  // namespace

TEST(NgcACalculatorComposite, RunsItsPartsInOrder)
{
  const Provider provider1 = makeCounting(40);
  const Provider provider2 = makeCounting(50);
  Composite composite;
  composite.first->setProvider(provider1);
  composite.second->setProvider(provider2);
  composite.setNThread(3);
  ASSERT_EQ(composite.execute(), NbcAProgress::COMPLETED) << errorOf(composite);
  EXPECT_EQ(
      composite.diary,
      (QStringList{QStringLiteral("Pre Processing..."),
                   QStringLiteral("prepare CALC_FIRST (first message) at 0"),
                   QStringLiteral("finished CALC_FIRST"),
                   QStringLiteral("prepare CALC_SECOND (own message) at 200"),
                   QStringLiteral("finished CALC_SECOND"), QStringLiteral("Post processing...")}));
  EXPECT_EQ(composite.getCounterMax(), 600);
  EXPECT_EQ(composite.getCounter(), 600);
  EXPECT_EQ(composite.first->diary.count(QStringLiteral("_createComputingThread")), 3);
  EXPECT_EQ(valuesOf(provider1, "OUT")[39], 79.);
  EXPECT_EQ(valuesOf(provider2, "OUT")[49], 99.);
}

TEST(NgcACalculatorComposite, ASkippedPartStillCounts)
{
  Composite composite;
  composite.skipped = FIRST;
  composite.second->setProvider(makeCounting(50));
  ASSERT_EQ(composite.execute(), NbcAProgress::COMPLETED) << errorOf(composite);
  EXPECT_EQ(composite.first->getState(), NbcAProgress::IDLE);
  EXPECT_EQ(composite.getCounter(), 600);
  EXPECT_FALSE(composite.diary.contains(QStringLiteral("finished CALC_FIRST")));
}

TEST(NgcACalculatorComposite, IdsAreUnique)
{
  Composite composite;
  Doubler other;
  EXPECT_EQ(composite._getIds(), (QStringList{FIRST, SECOND}));
  const auto again = [&] { composite._registerProgressable(FIRST, &other, QString(), 1, true); };
  EXPECT_THROW(again(), NbeProgrammingError);
  EXPECT_THAT(messageOf(again), HasSubstr("Id 'CALC_FIRST' must be unique."));
  composite._reset();
  EXPECT_TRUE(composite._getIds().isEmpty());
  EXPECT_TRUE(composite.first.isNull());
}

TEST(NgcACalculatorComposite, AFailingPartEndsItWithItsError)
{
  Composite composite;
  composite.first->setProvider(makeCounting(40));
  composite.second->setProvider(makeCounting(40));
  composite.first->onStep = [](const QString &step) {
    if (step == QStringLiteral("_preProcessing"))
      throw NbeMemoryError(QStringLiteral("no room"));
  };
  EXPECT_EQ(composite.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(errorOf(composite), "no room");
  EXPECT_EQ(composite.getErrorType(), NbeError::MEMORY);
  EXPECT_EQ(composite.second->getState(), NbcAProgress::IDLE);

  composite.first->onStep = nullptr;
  EXPECT_EQ(composite.execute(), NbcAProgress::COMPLETED) << errorOf(composite);
}

TEST(NgcACalculatorComposite, StoppingItStopsThePartUnderWay)
{
  Composite composite;
  composite.first->setProvider(makeCounting(100000));
  composite.first->onBuffer = [&](int rank) {
    if (rank == 3)
      composite.stop();
  };
  EXPECT_EQ(composite.execute(), NbcAProgress::INTERRUPTED);
  EXPECT_EQ(composite.first->getState(), NbcAProgress::INTERRUPTED);
  EXPECT_EQ(composite.second->getState(), NbcAProgress::IDLE);
}

TEST(NgcACalculatorComposite, LeavesItsOwnVariablesToTheParts)
{
  const Provider provider = makeCounting(40);
  Composite composite;
  NgdDataSetPoints dataSet = testcalc::makeDataSet(provider);
  testcalc::assign(dataSet, provider, Nbd::Role::V, "IN");
  composite._setDataset(Nbd::Dataset::INPUT, dataSet);
  composite.first->setProvider(provider);
  composite.second->setProvider(provider);
  const QString id = provider->getIdFromName(QStringLiteral("IN"));
  bool wasOpen = true;
  composite.first->onStep = [&](const QString &step) {
    if (step == QStringLiteral("_checkDatasets"))
      wasOpen = provider->isVariableOpen(id);
  };
  ASSERT_EQ(composite.execute(), NbcAProgress::COMPLETED) << errorOf(composite);
  EXPECT_FALSE(wasOpen);
}
