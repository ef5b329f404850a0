#include "NbpIProviderConformance.h"

#include "basic/data/NbdEMacroIndexType.h"
#include "basic/data/NbdEVarRole.h"
#include "basic/data/NbdEVarType.h"
#include "basic/data/NbdEnumCatalog.h"
#include "basic/data/NbdMacroIndexInfo.h"
#include "basic/data/NbdVarTypeFlags.h"
#include "basic/data/NbdVariableAlpha.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableEnum.h"
#include "basic/data/NbdVariableFactory.h"
#include "basic/data/NbdVariableFloat.h"
#include "basic/data/NbdVariableInt32.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/data/NbdVariableMulti.h"
#include "basic/data/NbdVariablePoint3D.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/geom/NbgBox.h"
#include "basic/geom/NbgEDimension.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/interval/NbiIntervalIntSmall.h"
#include "basic/provider/NbpIProviderGridW.h"
#include "basic/provider/NbpIProviderObjectW.h"
#include "support/Random.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <numeric>
#include <set>
#include <thread>

namespace {

constexpr int N = FileContent::N;
constexpr double UNDEFINED = NbbGlobal::D_FFFF;
const NbiIntervalIntLarge ALL(0, N - 1);

NbdVariableDouble column(int n, double value = -1.)
{
  NbdVariableDouble variable;
  variable.resizeAndFill(n, value);
  return variable;
}

/// The selections under which ranges are compared with a walk over all samples.
std::vector<std::vector<bool>> selections()
{
  std::vector<std::vector<bool>> all(5, std::vector<bool>(N));
  for (int rank = 0; rank < N; ++rank) {
    all[0][rank] = true;
    all[1][rank] = false;
    all[2][rank] = rank % 2 == 1;
    all[3][rank] = rank >= 6 && rank < 17;
    all[4][rank] = testsupport::uniform(5, rank) < 0.6;
  }
  return all;
}

/// Ranks of first ... last that are selected.
std::vector<int> selectedRanks(const std::vector<bool> &selected, int first, int last)
{
  std::vector<int> ranks;
  for (int rank = first; rank <= last; ++rank)
    if (selected[rank])
      ranks.push_back(rank);
  return ranks;
}

QString failure(const NbpIProviderR &provider)
{
  const QString text = provider.getLastError();
  EXPECT_FALSE(text.isEmpty());
  return text;
}

}  // namespace

void ProviderSuite::selectAs(const std::vector<bool> &selected)
{
  ASSERT_TRUE(provider->setSelectionId(QString()));
  for (int rank = 0; rank < N; ++rank) {
    const NbiIntervalIntLarge one(rank, rank);
    ASSERT_TRUE(selected[rank] ? provider->select(one) : provider->deselect(one));
  }
}

// Catalogue.

TEST_P(ProviderConformance, CatalogueDescribesItsVariables)
{
  EXPECT_EQ(provider->getSampleCount(), N);
  EXPECT_EQ(provider->getDimension(), NbgEDimension::DIM_3D);
  EXPECT_EQ(provider->isWriter(), !provider.dynamicCast<NbpIProviderW>().isNull());

  const QStringList variables = provider->getVariableIds();
  const QStringList macros = provider->getMacroIds();
  const QStringList all = variables + macros;
  EXPECT_EQ(std::set<QString>(all.begin(), all.end()).size(), std::size_t(all.size()));
  const char *const names[] = {"number", "count", "text", "flag"};
  const Nbd::EVariableType types[] = {Nbd::TYPE_DOUBLE, Nbd::TYPE_INT32, Nbd::TYPE_ALPHA,
                                      Nbd::TYPE_BOOLEAN};
  int previous = -1;
  for (int v = 0; v < 4; ++v) {
    const int place = variables.indexOf(id(names[v]));
    EXPECT_GT(place, previous) << names[v];
    previous = place;
    Nbd::EVariableType type = Nbd::TYPE_NONE;
    NbdVariableDetails details;
    EXPECT_TRUE(provider->getVariableType(id(names[v]), type));
    EXPECT_EQ(type, types[v]);
    EXPECT_TRUE(provider->getDetails(id(names[v]), details));
    EXPECT_EQ(details.getName(), QString::fromLatin1(names[v]));
    EXPECT_NE(id(names[v]), details.getName());
    EXPECT_FALSE(provider->isMacro(id(names[v])));
  }
  EXPECT_EQ(macros, QStringList{id("macro")});
  EXPECT_TRUE(provider->isMacro(id("macro")));
}

TEST_P(ProviderConformance, TestsKindAndType)
{
  EXPECT_TRUE(provider->testVariable(id("number"), NbdVarTypeFlags::NUMERIC));
  EXPECT_TRUE(provider->testVariable(id("text"), NbdVarTypeFlags::ANY));
  EXPECT_FALSE(provider->testVariable(id("text"), NbdVarTypeFlags::NUMERIC));
  EXPECT_FALSE(provider->testVariable(id("macro"), NbdVarTypeFlags::ANY));
  EXPECT_TRUE(provider->testMacro(id("macro"), NbdVarTypeFlags::NUMERIC));
  EXPECT_FALSE(provider->testMacro(id("macro"), NbdEVarType::INT_32));
  EXPECT_FALSE(provider->testMacro(id("number"), NbdVarTypeFlags::ANY));
}

TEST_P(ProviderConformance, NamesTheMacrosRealizationsByIndex)
{
  QList<NbdMacroIndex> indices;
  ASSERT_TRUE(provider->getMacroIndices(id("macro"), indices));
  EXPECT_EQ(indices, (QList<NbdMacroIndex>{NbdMacroIndex(1), NbdMacroIndex(3)}));
  NbdMacroIndexInfo info;
  ASSERT_TRUE(provider->getMacroIndexInfo(id("macro"), info));
  EXPECT_EQ(info.getType(), NbdEMacroIndexType::INTEGER);

  const QString third = provider->getRealizationId(id("macro"), NbdMacroIndex(3));
  NbdVariableDouble values = column(N);
  ASSERT_TRUE(provider->readVariable(third, ALL, values, 0));
  EXPECT_EQ(values.getValue(7), 307.);
  EXPECT_FALSE(provider->getVariableIds().contains(third));
  NbdVariableDetails details;
  ASSERT_TRUE(provider->getDetails(third, details));
  EXPECT_EQ(details.getName(), QStringLiteral("macro"));

  EXPECT_TRUE(provider->getRealizationId(id("macro"), NbdMacroIndex(2)).isEmpty());
  EXPECT_TRUE(failure(*provider).contains(QStringLiteral("macro")));
  EXPECT_FALSE(provider->readVariable(id("macro"), ALL, values, 0));
  failure(*provider);
}

TEST_P(ProviderConformance, ReadsRealizationsIntoTheCurrentOne)
{
  NbdVariableMulti multi(NbdVariableDetails(), {NbdMacroIndex(1), NbdMacroIndex(3)},
                         NbdMacroIndexInfo());
  multi.resizeAndFill(N);
  for (int rank = 0; rank < 2; ++rank) {
    multi.setCurrentRealizationRank(rank);
    const QString realization =
        provider->getRealizationId(id("macro"), multi.getCurrentRealizationIndex());
    ASSERT_TRUE(provider->readVariable(realization, ALL, multi, 0));
  }
  for (int rank = 0; rank < N; ++rank) {
    EXPECT_EQ(multi.getRealizationValue(0, rank), 100. + rank);
    EXPECT_EQ(multi.getRealizationValue(1, rank), 300. + rank);
  }
}

TEST_P(ProviderConformance, UnknownIdsFailWithAReason)
{
  const QString unknown = QStringLiteral("nothing has this id");
  Nbd::EVariableType type = Nbd::TYPE_NONE;
  NbdVariableDetails details;
  NbdEnumCatalog catalog;
  NbdMacroIndexInfo info;
  QList<NbdMacroIndex> indices;
  NbdVariableDouble values = column(N);

  EXPECT_TRUE(provider->getIdFromName(QStringLiteral("NUMBER")).isEmpty());  // case-sensitive
  EXPECT_TRUE(failure(*provider).contains(QStringLiteral("NUMBER")));
  EXPECT_FALSE(provider->getVariableType(unknown, type));
  EXPECT_TRUE(failure(*provider).contains(unknown));
  EXPECT_FALSE(provider->getDetails(unknown, details));
  failure(*provider);
  EXPECT_FALSE(provider->getCatalog(unknown, catalog));
  failure(*provider);
  EXPECT_FALSE(provider->getMacroIndexInfo(unknown, info));
  failure(*provider);
  EXPECT_FALSE(provider->getMacroIndices(unknown, indices));
  failure(*provider);
  EXPECT_FALSE(provider->openVariable(unknown, Nbd::ACCESS_READ));
  failure(*provider);
  EXPECT_FALSE(provider->setSelectionId(unknown));
  failure(*provider);
  EXPECT_FALSE(provider->readVariable(unknown, ALL, values, 0));
  failure(*provider);
  EXPECT_FALSE(provider->testVariable(unknown, NbdVarTypeFlags::ANY));
  EXPECT_FALSE(provider->isMacro(unknown));
  EXPECT_FALSE(provider->isVariableOpen(unknown));
  provider->closeVariable(unknown);

  EXPECT_EQ(provider->getSampleCount(), N);  // the next call forgets the error
  EXPECT_TRUE(provider->getLastError().isEmpty());
}

TEST_P(ProviderConformance, CountsOpenings)
{
  const QString number = id("number");
  provider->closeVariable(number);  // not open: nothing happens
  EXPECT_FALSE(provider->isVariableOpen(number));
  EXPECT_TRUE(provider->openVariable(number, Nbd::ACCESS_READ));
  EXPECT_TRUE(provider->openVariable(number, Nbd::ACCESS_READ));
  provider->closeVariable(number);
  EXPECT_TRUE(provider->isVariableOpen(number));
  provider->closeVariable(number);
  EXPECT_FALSE(provider->isVariableOpen(number));

  EXPECT_TRUE(provider->openVariable(id("macro"), Nbd::ACCESS_READ));
  const QString first = provider->getRealizationId(id("macro"), NbdMacroIndex(1));
  EXPECT_TRUE(provider->isVariableOpen(first));
  provider->closeVariable(id("macro"));
  EXPECT_FALSE(provider->isVariableOpen(first));

  EXPECT_EQ(provider->openVariable(number, Nbd::ACCESS_WRITE), provider->isWriter());
}

// Reading.

TEST_P(ProviderConformance, ReadsEveryRangeUnderEverySelection)
{
  const QString number = id("number");
  for (const std::vector<bool> &selected : selections()) {
    selectAs(selected);
    for (int first = 0; first < N; ++first) {
      for (int last = first; last < N; ++last) {
        const std::vector<int> ranks = selectedRanks(selected, first, last);
        const int n = int(ranks.size());
        const NbiIntervalIntLarge range(first, last);
        ASSERT_EQ(provider->getSelectedSampleCount(range), n);
        NbdVariableDouble values = column(n + 3);
        ASSERT_TRUE(provider->readVariable(number, range, values, 2));
        ASSERT_EQ(values.getValue(0), -1.);
        ASSERT_EQ(values.getValue(1), -1.);
        ASSERT_EQ(values.getValue(n + 2), -1.);
        for (int k = 0; k < n; ++k)
          ASSERT_EQ(values.getValue(k + 2), content.number[ranks[k]]) << first << " " << last;
      }
    }
  }
}

TEST_P(ProviderConformance, EmptyRangesReadNothing)
{
  NbdVariableDouble values = column(0);
  NbdVariableSelection selection;
  for (const NbiIntervalIntLarge &empty :
       {NbiIntervalIntLarge(), NbiIntervalIntLarge(5, 4), NbiIntervalIntLarge(100, 0)}) {
    EXPECT_TRUE(provider->readVariable(id("number"), empty, values, 0));
    EXPECT_TRUE(provider->readCoordinates(empty, &values, nullptr, &values, 0));
    EXPECT_TRUE(provider->readSelection(empty, selection));
    EXPECT_EQ(selection.getNValues(), 0);
    EXPECT_EQ(provider->getSelectedSampleCount(empty), 0);
    EXPECT_TRUE(provider->select(empty));
  }
}

TEST_P(ProviderConformance, RangesOutsideTheFileReadNothing)
{
  NbdVariableDouble values = column(N + 5);
  NbdVariableSelection selection;
  constexpr qint64 HUGE_RANK = std::numeric_limits<qint64>::max();
  for (const NbiIntervalIntLarge &range :
       {NbiIntervalIntLarge(-1, 3), NbiIntervalIntLarge(20, N), NbiIntervalIntLarge(N, N),
        NbiIntervalIntLarge(0, HUGE_RANK), NbiIntervalIntLarge(-HUGE_RANK, HUGE_RANK)}) {
    EXPECT_FALSE(provider->readVariable(id("number"), range, values, 0));
    failure(*provider);
    EXPECT_FALSE(provider->readCoordinates(range, &values, &values, &values, 0));
    EXPECT_FALSE(provider->readSelection(range, selection));
    EXPECT_FALSE(provider->select(range));
    EXPECT_FALSE(provider->hasSelection());
    EXPECT_EQ(provider->getSelectedSampleCount(range), 0);
    failure(*provider);
  }
  EXPECT_EQ(values.getMinValue(), -1.);
  EXPECT_EQ(values.getMaxValue(), -1.);
}

TEST_P(ProviderConformance, BuffersThatAreTooSmallReadNothing)
{
  NbdVariableDouble values = column(N);
  EXPECT_FALSE(provider->readVariable(id("number"), ALL, values, 1));
  failure(*provider);
  EXPECT_FALSE(provider->readVariable(id("number"), ALL, values, -1));
  NbdVariableDouble large = column(N + 1);
  EXPECT_FALSE(provider->readCoordinates(ALL, &large, &values, nullptr, 1));
  EXPECT_EQ(values.getMaxValue(), -1.);
  EXPECT_EQ(large.getMaxValue(), -1.);
}

TEST_P(ProviderConformance, ServesSampleNumbersAndCoordinatesByStructuralRole)
{
  std::vector<bool> selected(N, true);
  selected[0] = selected[9] = false;
  selectAs(selected);
  const std::vector<int> ranks = selectedRanks(selected, 0, N - 1);
  const int n = int(ranks.size());

  NbdVariableInt64 numbers;
  numbers.resizeAndFill(n);
  const QString sn = provider->getStructuralRoleId(NbdEVarRole::SN);
  ASSERT_TRUE(provider->readVariable(sn, ALL, numbers, 0));
  Nbd::EVariableType type = Nbd::TYPE_NONE;
  EXPECT_TRUE(provider->getVariableType(sn, type));
  EXPECT_EQ(type, Nbd::TYPE_INT64);
  EXPECT_FALSE(provider->openVariable(sn, Nbd::ACCESS_WRITE));
  EXPECT_TRUE(provider->openVariable(sn, Nbd::ACCESS_READ));

  NbdVariableDouble byRole[3] = {column(n), column(n), column(n)};
  NbdVariableDouble byRange[3] = {column(n), column(n), column(n)};
  const NbdEVarRole roles[3] = {NbdEVarRole::X, NbdEVarRole::Y, NbdEVarRole::Z};
  for (int axis = 0; axis < 3; ++axis) {
    const QString coordinate = provider->getStructuralRoleId(roles[axis]);
    ASSERT_TRUE(provider->readVariable(coordinate, ALL, byRole[axis], 0));
  }
  ASSERT_TRUE(provider->readCoordinates(ALL, &byRange[0], &byRange[1], &byRange[2], 0));
  const std::vector<double> *const expected[3] = {&content.x, &content.y, &content.z};
  for (int k = 0; k < n; ++k) {
    EXPECT_EQ(numbers.getValueAsType(k), ranks[k] + 1);
    for (int axis = 0; axis < 3; ++axis) {
      EXPECT_EQ(byRole[axis].getValue(k), (*expected[axis])[ranks[k]]);
      EXPECT_EQ(byRange[axis].getValue(k), (*expected[axis])[ranks[k]]);
    }
  }
  EXPECT_TRUE(provider->getStructuralRoleId(NbdEVarRole::INDEX).isEmpty());
  failure(*provider);
}

TEST_P(ProviderConformance, BoundingBoxHoldsTheSelectedSamples)
{
  NbgBox box;
  ASSERT_TRUE(provider->updateBoundingBox(box));
  EXPECT_EQ(box.getLowerLeftCorner(), NbgVector3D(100., 200., 300.));
  EXPECT_EQ(box.getUpperRightCorner(), NbgVector3D(110., 240., 315.));

  std::vector<bool> selected(N, false);
  selected[6] = selected[14] = true;
  selectAs(selected);
  NbgBox part;
  ASSERT_TRUE(provider->updateBoundingBox(part));
  EXPECT_EQ(part.getLowerLeftCorner(), NbgVector3D(100., 200., 310.));
  EXPECT_EQ(part.getUpperRightCorner(), NbgVector3D(110., 220., 310.));

  selectAs(std::vector<bool>(N, false));
  NbgBox none;
  ASSERT_TRUE(provider->updateBoundingBox(none));
  EXPECT_FALSE(none.isValid());
}

// Conversions. Expected values are spelt out, one row per stored value.

TEST_P(ProviderConformance, ConvertsWhatItReads)
{
  const auto read = [&](const char *name, int rank, Nbd::EVariableType type) {
    const auto values = NbdVariableFactory::createVariable(type, NbdVariableDetails());
    values->resizeAndFill(1);
    EXPECT_TRUE(provider->readVariable(id(name), NbiIntervalIntLarge(rank, rank), *values, 0));
    return values->getVariant(0);
  };
  // number: 10.5 at rank 1, undefined at rank 3, 0.5 at rank 0.
  EXPECT_EQ(read("number", 1, Nbd::TYPE_DOUBLE).toDouble(), 10.5);
  EXPECT_EQ(read("number", 1, Nbd::TYPE_FLOAT).toFloat(), 10.5f);
  EXPECT_EQ(read("number", 1, Nbd::TYPE_INT32).toInt(), 11);
  EXPECT_EQ(read("number", 0, Nbd::TYPE_INT64).toLongLong(), 1);
  EXPECT_EQ(read("number", 1, Nbd::TYPE_BOOLEAN).toBool(), true);
  EXPECT_EQ(read("number", 1, Nbd::TYPE_ALPHA).toString(), QStringLiteral("10.5"));
  for (const Nbd::EVariableType type : {Nbd::TYPE_DOUBLE, Nbd::TYPE_FLOAT, Nbd::TYPE_INT32,
                                        Nbd::TYPE_INT64, Nbd::TYPE_ALPHA, Nbd::TYPE_ENUM})
    EXPECT_FALSE(read("number", 3, type).isValid()) << int(type);
  EXPECT_EQ(read("number", 3, Nbd::TYPE_BOOLEAN).toBool(), false);
  // count: -5 at rank 0, undefined at rank 4, 0 at rank 5.
  EXPECT_EQ(read("count", 0, Nbd::TYPE_DOUBLE).toDouble(), -5.);
  EXPECT_EQ(read("count", 0, Nbd::TYPE_INT64).toLongLong(), -5);
  EXPECT_EQ(read("count", 0, Nbd::TYPE_BOOLEAN).toBool(), true);
  EXPECT_EQ(read("count", 5, Nbd::TYPE_BOOLEAN).toBool(), false);
  EXPECT_FALSE(read("count", 4, Nbd::TYPE_DOUBLE).isValid());
  EXPECT_FALSE(read("count", 4, Nbd::TYPE_INT64).isValid());
  // flag and text.
  EXPECT_EQ(read("flag", 3, Nbd::TYPE_DOUBLE).toDouble(), 1.);
  EXPECT_EQ(read("flag", 4, Nbd::TYPE_FLOAT).toDouble(), 0.);
  EXPECT_EQ(read("text", 4, Nbd::TYPE_ALPHA).toString(), QStringLiteral("s4"));
  EXPECT_FALSE(read("text", 4, Nbd::TYPE_DOUBLE).isValid());

  NbdVariablePoint3D points;
  points.resizeAndFill(N);
  EXPECT_FALSE(provider->readVariable(id("number"), ALL, points, 0));
  failure(*provider);
}

// Selection.

TEST_P(ProviderConformance, SwitchesBetweenSelections)
{
  NbdVariableSelection flags;
  EXPECT_FALSE(provider->hasSelection());
  EXPECT_TRUE(provider->readSelection(ALL, flags));
  EXPECT_EQ(flags.getNSelected(), N);

  EXPECT_TRUE(provider->deselect(NbiIntervalIntLarge(0, 9)));
  EXPECT_TRUE(provider->hasSelection());
  EXPECT_TRUE(provider->getSelectionId().isEmpty());
  EXPECT_EQ(provider->getSelectedSampleCount(ALL), N - 10);

  EXPECT_TRUE(provider->setSelectionId(id("flag")));
  EXPECT_EQ(provider->getSelectionId(), id("flag"));
  EXPECT_EQ(provider->getSelectedSampleCount(ALL), 8);
  EXPECT_FALSE(provider->select(ALL));  // it is a variable now
  failure(*provider);
  EXPECT_TRUE(provider->readSelection(NbiIntervalIntLarge(2, 7), flags));
  ASSERT_EQ(flags.getNValues(), 6);
  for (int k = 0; k < 6; ++k)
    EXPECT_EQ(flags.getBoolValue(k), (k + 2) % 3 == 0);

  // count is undefined at rank 4 and 0 at rank 5.
  EXPECT_TRUE(provider->setSelectionId(id("count")));
  EXPECT_EQ(provider->getSelectedSampleCount(ALL), N - 2);
  EXPECT_EQ(provider->getSelectedSampleCount(NbiIntervalIntLarge(4, 5)), 0);

  EXPECT_FALSE(provider->setSelectionId(id("text")));
  failure(*provider);
  EXPECT_FALSE(provider->setSelectionId(id("macro")));
  EXPECT_EQ(provider->getSelectionId(), id("count"));

  EXPECT_TRUE(provider->setSelectionId(QString()));
  EXPECT_FALSE(provider->hasSelection());
  EXPECT_EQ(provider->getSelectedSampleCount(ALL), N);
}

// Writing.

TEST_P(WriterConformance, NewVariablesAreUndefinedAndTheirNamesUnique)
{
  NbdVariableDetails details(QStringLiteral("ignored"));
  details.setDescription(QStringLiteral("kept"));
  const QString created =
      writer().createVariable(QStringLiteral("new"), Nbd::TYPE_FLOAT, details, nullptr);
  ASSERT_FALSE(created.isEmpty()) << writer().getLastError().toStdString();
  EXPECT_EQ(writer().getVariableIds().last(), created);
  NbdVariableDetails stored;
  EXPECT_TRUE(writer().getDetails(created, stored));
  EXPECT_EQ(stored.getName(), QStringLiteral("new"));
  EXPECT_EQ(stored.getDescription(), QStringLiteral("kept"));
  NbdVariableDouble values = column(N);
  EXPECT_TRUE(writer().readVariable(created, ALL, values, 0));
  EXPECT_EQ(values.getNDefined(), 0);

  const QString selection =
      writer().createVariable(QStringLiteral("NEW"), Nbd::TYPE_BOOLEAN, {}, nullptr);
  EXPECT_TRUE(writer().readVariable(selection, ALL, values, 0));
  EXPECT_EQ(values.computeSum(), N);

  for (const char *taken : {"new", "number", "macro"}) {
    const QString name = QString::fromLatin1(taken);
    EXPECT_TRUE(writer().createVariable(name, Nbd::TYPE_DOUBLE, {}, nullptr).isEmpty());
    EXPECT_TRUE(failure(*provider).contains(name));
    EXPECT_TRUE(writer().createTemporaryVariable(name, Nbd::TYPE_DOUBLE, {}).isEmpty());
    EXPECT_TRUE(writer().createMacro(name, Nbd::TYPE_FLOAT, {}, {}).isEmpty());
    EXPECT_TRUE(writer().createTemporaryMacro(name, Nbd::TYPE_FLOAT, {}, {}).isEmpty());
  }
  EXPECT_TRUE(writer().createVariable(QString(), Nbd::TYPE_DOUBLE, {}, nullptr).isEmpty());
  for (const Nbd::EVariableType type :
       {Nbd::TYPE_NONE, Nbd::TYPE_RESERVED_64, Nbd::TYPE_RESERVED_128, Nbd::TYPE_MULTI_FLOAT})
    EXPECT_TRUE(writer().createVariable(QStringLiteral("x1"), type, {}, nullptr).isEmpty());
}

TEST_P(WriterConformance, WritesOnlyWhatIsOpenForWriting)
{
  const QString number = id("number");
  const NbdVariableDouble values = column(N, 7.);
  EXPECT_FALSE(writer().writeVariable(number, ALL, values, 0));
  failure(*provider);
  ASSERT_TRUE(writer().openVariable(number, Nbd::ACCESS_READ));
  EXPECT_FALSE(writer().writeVariable(number, ALL, values, 0));
  ASSERT_TRUE(writer().openVariable(number, Nbd::ACCESS_WRITE));
  EXPECT_TRUE(writer().writeVariable(number, ALL, values, 0));
  writer().closeVariable(number);
  writer().closeVariable(number);
  EXPECT_FALSE(writer().writeVariable(number, ALL, column(N, 8.), 0));
  NbdVariableDouble read = column(N);
  EXPECT_TRUE(writer().readVariable(number, ALL, read, 0));
  EXPECT_EQ(read.getMinValue(), 7.);
  EXPECT_EQ(read.getMaxValue(), 7.);
}

TEST_P(WriterConformance, WritesEveryRangeToTheSelectedSamplesOnly)
{
  const QString number = id("number");
  ASSERT_TRUE(writer().openVariable(number, Nbd::ACCESS_READ_WRITE));
  std::vector<double> expected = content.number;
  double next = 1000.;
  for (const std::vector<bool> &selected : selections()) {
    for (int first = 0; first < N; first += 3) {
      for (int last = first; last < N; last += 2) {
        selectAs(selected);
        const std::vector<int> ranks = selectedRanks(selected, first, last);
        NbdVariableDouble values = column(int(ranks.size()) + 1);
        for (std::size_t k = 0; k < ranks.size(); ++k)
          values.setValue(int(k) + 1, expected[ranks[k]] = next++);
        ASSERT_TRUE(writer().writeVariable(number, NbiIntervalIntLarge(first, last), values, 1));
        writer().setSelectionId(QString());
        NbdVariableDouble read = column(N);
        ASSERT_TRUE(writer().readVariable(number, ALL, read, 0));
        ASSERT_EQ(read.getVector(), expected) << first << " " << last;
      }
    }
  }
  EXPECT_FALSE(writer().writeVariable(number, NbiIntervalIntLarge(0, N), column(N + 1), 0));
  EXPECT_FALSE(writer().writeVariable(number, ALL, column(N - 1), 0));
  NbdVariableDouble read = column(N);
  ASSERT_TRUE(writer().readVariable(number, ALL, read, 0));
  EXPECT_EQ(read.getVector(), expected);
}

TEST_P(WriterConformance, ConvertsWhatItWrites)
{
  // One value per row: as double, and what a variable of each type then gives back as double.
  // 1e39 is beyond the defined values; a double column keeps it as it is.
  const double in[N] = {2.5, -2.5, 0.49, 3e9, 1e20, 1e39, UNDEFINED, 0., -70000., 40000.};
  const auto written = [&](Nbd::EVariableType type) {
    const QString target =
        writer().createVariable(QStringLiteral("t%1").arg(int(type)), type, {}, nullptr);
    EXPECT_TRUE(writer().openVariable(target, Nbd::ACCESS_WRITE));
    NbdVariableDouble values = column(N);
    std::copy(in, in + N, values.getArray());
    EXPECT_TRUE(writer().writeVariable(target, ALL, values, 0));
    NbdVariableDouble read = column(N);
    EXPECT_TRUE(writer().readVariable(target, ALL, read, 0));
    return std::vector<double>(read.getArrayConst(), read.getArrayConst() + 10);
  };
  using Row = std::vector<double>;
  EXPECT_EQ(written(Nbd::TYPE_DOUBLE),
            (Row{2.5, -2.5, 0.49, 3e9, 1e20, 1e39, UNDEFINED, 0., -70000., 40000.}));
  EXPECT_EQ(written(Nbd::TYPE_FLOAT), (Row{2.5, -2.5, double(0.49f), 3e9, double(1e20f), UNDEFINED,
                                           UNDEFINED, 0., -70000., 40000.}));
  EXPECT_EQ(written(Nbd::TYPE_INT32),
            (Row{3., -3., 0., UNDEFINED, UNDEFINED, UNDEFINED, UNDEFINED, 0., -70000., 40000.}));
  EXPECT_EQ(written(Nbd::TYPE_INT64),
            (Row{3., -3., 0., 3e9, UNDEFINED, UNDEFINED, UNDEFINED, 0., -70000., 40000.}));
  EXPECT_EQ(written(Nbd::TYPE_ENUM), (Row{3., -3., 0., UNDEFINED, UNDEFINED, UNDEFINED, UNDEFINED,
                                          0., UNDEFINED, UNDEFINED}));
  EXPECT_EQ(written(Nbd::TYPE_BOOLEAN), (Row{1., 1., 1., 1., 1., 0., 0., 0., 1., 1.}));
  EXPECT_EQ(written(Nbd::TYPE_ALPHA),
            (Row{2.5, -2.5, 0.49, 3e9, 1e20, UNDEFINED, UNDEFINED, 0., -70000., 40000.}));
}

TEST_P(WriterConformance, ExchangesCategoriesAsCodesAndNames)
{
  NbdEnumCatalog catalog;
  catalog.setCategory(4, QStringLiteral("sand"));
  catalog.setCategory(9, QStringLiteral("clay"));
  const QString rock =
      writer().createVariable(QStringLiteral("rock"), Nbd::TYPE_ENUM, {}, &catalog);
  NbdEnumCatalog stored;
  ASSERT_TRUE(writer().getCatalog(rock, stored));
  EXPECT_EQ(stored, catalog);
  EXPECT_FALSE(writer().getCatalog(id("number"), stored));
  failure(*provider);

  NbdVariableAlpha names;
  names.resizeAndFill(3);
  names.setValue(0, QStringLiteral("clay"));
  names.setValue(1, QStringLiteral("granite"));
  names.setValue(2, QStringLiteral("sand"));
  ASSERT_TRUE(writer().openVariable(rock, Nbd::ACCESS_READ_WRITE));
  ASSERT_TRUE(writer().writeVariable(rock, NbiIntervalIntLarge(5, 7), names, 0));
  NbdVariableEnum codes;
  codes.resizeAndFill(3);
  ASSERT_TRUE(writer().readVariable(rock, NbiIntervalIntLarge(5, 7), codes, 0));
  EXPECT_EQ(codes.getVector(), (std::vector<qint16>{9, NbbGlobal::I16_FFFF, 4}));
  ASSERT_TRUE(writer().readVariable(rock, NbiIntervalIntLarge(5, 7), names, 0));
  EXPECT_EQ(names.getValue(0), QStringLiteral("clay"));
  EXPECT_TRUE(names.getValue(1).isEmpty());
}

TEST_P(WriterConformance, KeepsRealizationsThatExist)
{
  const QString macro = writer().createMacro(QStringLiteral("simu"), Nbd::TYPE_FLOAT,
                                             NbdMacroIndexInfo(NbdEMacroIndexType::STRING), {});
  ASSERT_FALSE(macro.isEmpty());
  QList<NbdMacroIndex> indices;
  EXPECT_TRUE(writer().getMacroIndices(macro, indices));
  EXPECT_TRUE(indices.isEmpty());
  const NbdMacroIndex low(QStringLiteral("low")), high(QStringLiteral("high"));
  // Opening the macro covers realizations that are created later.
  ASSERT_TRUE(writer().openVariable(macro, Nbd::ACCESS_WRITE));
  const QString first = writer().createMacroRealization(macro, low);
  ASSERT_TRUE(writer().writeVariable(first, ALL, column(N, 5.), 0));
  EXPECT_EQ(writer().createMacroRealization(macro, low), first);
  const QString second = writer().createMacroRealization(macro, high);
  EXPECT_NE(second, first);
  NbdVariableDouble values = column(N);
  EXPECT_TRUE(writer().readVariable(first, ALL, values, 0));
  EXPECT_EQ(values.computeSum(), 5. * N);
  EXPECT_TRUE(writer().readVariable(second, ALL, values, 0));
  EXPECT_EQ(values.getNDefined(), 0);
  EXPECT_TRUE(writer().getMacroIndices(macro, indices));
  EXPECT_EQ(indices, (QList<NbdMacroIndex>{high, low}));

  EXPECT_TRUE(writer().createMacroRealization(macro, NbdMacroIndex(1)).isEmpty());
  failure(*provider);
  EXPECT_TRUE(writer().createMacroRealization(macro, NbdMacroIndex()).isEmpty());
  EXPECT_TRUE(writer().createMacroRealization(id("number"), low).isEmpty());

  EXPECT_FALSE(writer().deleteMacro(macro));  // open
  writer().closeVariable(macro);
  EXPECT_TRUE(writer().deleteVariable(first));
  EXPECT_TRUE(writer().getRealizationId(macro, low).isEmpty());
  EXPECT_TRUE(writer().deleteMacro(macro));
  EXPECT_FALSE(writer().readVariable(second, ALL, values, 0));
  EXPECT_TRUE(writer().getIdFromName(QStringLiteral("simu")).isEmpty());
}

TEST_P(WriterConformance, DeletesWhatNobodyUses)
{
  const QString number = id("number");
  ASSERT_TRUE(writer().openVariable(number, Nbd::ACCESS_READ));
  EXPECT_FALSE(writer().deleteVariable(number));
  EXPECT_TRUE(failure(*provider).contains(QStringLiteral("number")));
  writer().closeVariable(number);
  ASSERT_TRUE(writer().setSelectionId(id("flag")));
  EXPECT_FALSE(writer().deleteVariable(id("flag")));
  EXPECT_FALSE(writer().deleteVariable(writer().getStructuralRoleId(NbdEVarRole::X)));
  EXPECT_FALSE(writer().deleteVariable(writer().getStructuralRoleId(NbdEVarRole::SN)));
  EXPECT_FALSE(writer().deleteVariable(id("macro")));
  EXPECT_FALSE(writer().deleteMacro(number));

  EXPECT_TRUE(writer().deleteVariable(number));
  EXPECT_FALSE(writer().getVariableIds().contains(number));
  EXPECT_FALSE(writer().openVariable(number, Nbd::ACCESS_READ));
  const QString again =
      writer().createVariable(QStringLiteral("number"), Nbd::TYPE_DOUBLE, {}, nullptr);
  EXPECT_FALSE(again.isEmpty());
  EXPECT_NE(again, number);
}

TEST_P(WriterConformance, DeletesTemporariesAtAnyTime)
{
  const QString plain =
      writer().createTemporaryVariable(QStringLiteral("__TMP_1"), Nbd::TYPE_BOOLEAN, {});
  const QString macro =
      writer().createTemporaryMacro(QStringLiteral("__TMP_2"), Nbd::TYPE_FLOAT, {}, {});
  const QString realization = writer().createMacroRealization(macro, NbdMacroIndex(1));
  ASSERT_TRUE(writer().openVariable(plain, Nbd::ACCESS_READ_WRITE));
  ASSERT_TRUE(writer().openVariable(macro, Nbd::ACCESS_READ_WRITE));
  ASSERT_TRUE(writer().openVariable(realization, Nbd::ACCESS_READ_WRITE));
  NbdVariableSelection none;
  none.resizeAndFill(N, 0);
  ASSERT_TRUE(writer().writeVariable(plain, ALL, none, 0));
  ASSERT_TRUE(writer().setSelectionId(plain));
  EXPECT_TRUE(writer().deleteVariable(plain));
  EXPECT_FALSE(writer().hasSelection());
  EXPECT_TRUE(writer().deleteMacro(macro));
  EXPECT_FALSE(writer().isVariableOpen(realization));
  EXPECT_TRUE(writer().getIdFromName(QStringLiteral("__TMP_2")).isEmpty());
}

TEST_P(WriterConformance, PatchesBySampleNumber)
{
  const QString number = id("number");
  selectAs(std::vector<bool>(N, false));  // sample numbers do not care
  NbdVariableInt64 numbers;
  NbdVariableDouble values = column(0);
  const qint64 given[] = {24, 5, NbbGlobal::I64_FFFF, 1, 0, 6, 6};
  for (const qint64 sampleNumber : given) {
    values.appendValue(100. * values.getNValues());
    numbers.appendValueAsType(sampleNumber);
  }
  EXPECT_FALSE(writer().patchVariable(number, numbers, values));  // not open
  ASSERT_TRUE(writer().openVariable(number, Nbd::ACCESS_READ_WRITE));
  ASSERT_TRUE(writer().patchVariable(number, numbers, values));
  std::vector<double> expected = content.number;
  expected[23] = 0.;
  expected[4] = 100.;
  expected[0] = 300.;
  expected[5] = 600.;
  writer().setSelectionId(QString());
  NbdVariableDouble read = column(N);
  ASSERT_TRUE(writer().readVariable(number, ALL, read, 0));
  EXPECT_EQ(read.getVector(), expected);

  numbers.setValueAsType(6, N + 1);
  values.setAllValues(-1.);
  EXPECT_FALSE(writer().patchVariable(number, numbers, values));
  failure(*provider);
  EXPECT_FALSE(writer().patchVariable(number, numbers, column(2)));
  ASSERT_TRUE(writer().readVariable(number, ALL, read, 0));
  EXPECT_EQ(read.getVector(), expected);
}

TEST_P(WriterConformance, WritingTheSelectionChangesIt)
{
  ASSERT_TRUE(writer().setSelectionId(id("flag")));
  ASSERT_TRUE(writer().openVariable(id("flag"), Nbd::ACCESS_WRITE));
  EXPECT_EQ(writer().getSelectedSampleCount(ALL), 8);
  NbdVariableSelection flags;
  flags.resizeAndFill(8);
  flags.setBoolValue(2, false);  // rank 6
  ASSERT_TRUE(writer().writeVariable(id("flag"), ALL, flags, 0));
  EXPECT_EQ(writer().getSelectedSampleCount(ALL), 7);
  EXPECT_EQ(writer().getSelectedSampleCount(NbiIntervalIntLarge(6, 6)), 0);
}

TEST_P(WriterConformance, AppendsSamplesOrSaysWhyNot)
{
  selectAs(selections()[2]);
  if (provider.dynamicCast<NbpIProviderGridW>() || provider.dynamicCast<NbpIProviderObjectW>()) {
    EXPECT_FALSE(writer().appendSamples(2));
    failure(*provider);
    EXPECT_EQ(writer().getSampleCount(), N);
    return;
  }
  EXPECT_FALSE(writer().appendSamples(-1));
  EXPECT_TRUE(writer().appendSamples(2));
  EXPECT_EQ(writer().getSampleCount(), N + 2);
  EXPECT_EQ(writer().getSelectedSampleCount(NbiIntervalIntLarge(0, N + 1)), N / 2 + 2);
  EXPECT_TRUE(writer().setSelectionId(id("flag")));
  EXPECT_EQ(writer().getSelectedSampleCount(NbiIntervalIntLarge(0, N + 1)), 8 + 2);
  NbdVariableDouble values = column(3);
  EXPECT_TRUE(writer().readVariable(id("number"), NbiIntervalIntLarge(N, N + 1), values, 0));
  EXPECT_TRUE(values.isUndefined(0) && values.isUndefined(1));
  const QString sn = writer().getStructuralRoleId(NbdEVarRole::SN);
  EXPECT_TRUE(writer().readVariable(sn, NbiIntervalIntLarge(N, N + 1), values, 0));
  EXPECT_EQ(values.getValue(1), N + 2);
}

TEST_P(WriterConformance, ThreadsShareAProvider)
{
  // Each thread writes its variable, fails in its own way, reads its error and its values.
  constexpr int N_ROUNDS = 300;
  std::atomic<int> faults{0};
  const auto work = [&](int thread) {
    const QString name = QStringLiteral("thread%1").arg(thread);
    const QString own = writer().createVariable(name, Nbd::TYPE_DOUBLE, {}, nullptr);
    writer().openVariable(own, Nbd::ACCESS_READ_WRITE);
    NbdVariableDouble read = column(N);
    for (int round = 0; round < N_ROUNDS; ++round) {
      const double value = 1000. * thread + round;
      bool fine = writer().writeVariable(own, ALL, column(N, value), 0);
      fine = fine && writer().readVariable(own, ALL, read, 0);
      fine = fine && read.getMinValue() == value && read.getMaxValue() == value;
      const QString wrong = QStringLiteral("wrong%1").arg(thread);
      fine = fine && !writer().openVariable(wrong, Nbd::ACCESS_READ);
      fine = fine && writer().getLastError().contains(wrong);
      faults += fine ? 0 : 1;
    }
  };
  std::thread first(work, 1);
  std::thread second(work, 2);
  first.join();
  second.join();
  EXPECT_EQ(faults, 0);
}

// Grids.

TEST_P(GridConformance, ReadsEveryBlockWhole)
{
  const auto &grid = dynamic_cast<const NbpIProviderGridR &>(*provider);
  EXPECT_EQ(grid.getGridGeometry(), content.geometry);
  EXPECT_FALSE(grid.isSparse());
  const std::vector<bool> selected = selections()[4];
  selectAs(selected);
  const NbiIntervalIntSmall is[] = {{0, 0}, {1, 1}, {0, 1}};
  const NbiIntervalIntSmall js[] = {{0, 0}, {1, 2}, {0, 2}};
  const NbiIntervalIntSmall ks[] = {{0, 3}, {1, 2}, {3, 3}};
  for (const NbiIntervalIntSmall &i : is) {
    for (const NbiIntervalIntSmall &j : js) {
      for (const NbiIntervalIntSmall &k : ks) {
        const int n = i.getLength() * j.getLength() * k.getLength();
        NbdVariableDouble values = column(n), x = column(n), y = column(n), z = column(n);
        NbdVariableSelection flags;
        ASSERT_TRUE(grid.readGrid(id("number"), i, j, k, values));
        ASSERT_TRUE(grid.readGridCoordinates(i, j, k, &x, &y, &z));
        ASSERT_TRUE(grid.readGridSelection(i, j, k, flags));
        ASSERT_EQ(flags.getNValues(), n);
        int position = 0;
        for (int rank = 0; rank < N; ++rank) {
          if (!i.isIncluded(rank / 12) || !j.isIncluded(rank / 4 % 3) || !k.isIncluded(rank % 4))
            continue;
          ASSERT_EQ(values.getValue(position), content.number[rank]);
          ASSERT_EQ(x.getValue(position), content.x[rank]);
          ASSERT_EQ(y.getValue(position), content.y[rank]);
          ASSERT_EQ(z.getValue(position), content.z[rank]);
          ASSERT_EQ(flags.getBoolValue(position), selected[rank]);
          ++position;
        }
        ASSERT_EQ(position, n);
      }
    }
  }
}

TEST_P(GridConformance, BlocksOutsideTheGridReadNothing)
{
  const auto &grid = dynamic_cast<const NbpIProviderGridR &>(*provider);
  NbdVariableDouble values = column(2 * N);
  const NbiIntervalIntSmall one(0, 0);
  EXPECT_FALSE(grid.readGrid(id("number"), {0, 2}, one, one, values));
  failure(*provider);
  EXPECT_FALSE(grid.readGrid(id("number"), one, {-1, 0}, one, values));
  EXPECT_FALSE(grid.readGrid(id("number"), one, one, {4, 4}, values));
  EXPECT_FALSE(grid.readGridCoordinates(one, one, {0, 4}, &values, &values, &values));
  NbdVariableDouble small = column(3);
  EXPECT_FALSE(grid.readGrid(id("number"), one, one, {0, 3}, small));
  EXPECT_TRUE(grid.readGrid(id("number"), {}, one, one, small));
  EXPECT_EQ(values.getMaxValue(), -1.);
  EXPECT_EQ(small.getMaxValue(), -1.);
}

TEST_P(GridConformance, WritesTheSelectedNodesOfABlock)
{
  auto *grid = dynamic_cast<NbpIProviderGridW *>(provider.data());
  if (!grid)
    return;
  const std::vector<bool> selected = selections()[4];
  selectAs(selected);
  ASSERT_TRUE(grid->openVariable(id("number"), Nbd::ACCESS_READ_WRITE));
  const NbiIntervalIntSmall i(0, 1), j(1, 2), k(0, 2);
  NbdVariableDouble values = column(12);
  std::iota(values.getArray(), values.getArray() + 12, 1000.);
  ASSERT_TRUE(grid->writeGrid(id("number"), i, j, k, values));
  EXPECT_FALSE(grid->writeGrid(id("number"), i, j, {0, 4}, column(N * 2)));

  std::vector<double> expected = content.number;
  int position = 0;
  for (int rank = 0; rank < N; ++rank) {
    if (!j.isIncluded(rank / 4 % 3) || !k.isIncluded(rank % 4))
      continue;
    if (selected[rank])
      expected[rank] = 1000. + position;
    ++position;
  }
  grid->setSelectionId(QString());
  NbdVariableDouble read = column(N);
  ASSERT_TRUE(grid->readVariable(id("number"), ALL, read, 0));
  EXPECT_EQ(read.getVector(), expected);
}

// Lines.

TEST_P(LineConformance, DescribesItsLines)
{
  const auto &lines = dynamic_cast<const NbpIProviderObjectR &>(*provider);
  const std::vector<bool> selected = selections()[3];
  selectAs(selected);
  const NbdObjectDefinitions definitions = lines.getObjectDefinitions();
  ASSERT_EQ(definitions.size(), 4);
  qint64 first = 0;
  for (int line = 0; line < 4; ++line) {
    const NbdObjectDefinition &definition = definitions.at(line);
    const int n = content.nSamplesPerLine[line];
    EXPECT_EQ(definition.rank, line);
    EXPECT_EQ(definition.firstSample, first);
    EXPECT_EQ(definition.supportLength, n);
    EXPECT_EQ(definition.selectedSupportLength,
              int(selectedRanks(selected, int(first), int(first) + n - 1).size()));
    first += n;
  }
}

TEST_P(LineConformance, ReadsAndWritesTheSelectedSamplesOfLines)
{
  auto &lines = dynamic_cast<NbpIProviderObjectW &>(*provider);
  const std::vector<bool> selected = selections()[4];
  selectAs(selected);
  // Lines in another order than that of the file, an empty one among them.
  const QList<int> asked{3, 1, 0};
  std::vector<int> ranks = selectedRanks(selected, 17, 23);
  for (const int rank : selectedRanks(selected, 0, 4))
    ranks.push_back(rank);
  const int n = int(ranks.size());

  NbdVariableDouble values = column(n), x = column(n), y = column(n);
  ASSERT_TRUE(lines.readObjects(id("number"), asked, values));
  ASSERT_TRUE(lines.readObjectsCoordinates(asked, &x, &y, nullptr));
  for (int k = 0; k < n; ++k) {
    EXPECT_EQ(values.getValue(k), content.number[ranks[k]]);
    EXPECT_EQ(x.getValue(k), content.x[ranks[k]]);
    EXPECT_EQ(y.getValue(k), content.y[ranks[k]]);
  }

  std::vector<double> expected = content.number;
  for (int k = 0; k < n; ++k)
    values.setValue(k, expected[ranks[k]] = 500. + k);
  EXPECT_FALSE(lines.writeObjects(id("number"), asked, values));  // not open
  ASSERT_TRUE(lines.openVariable(id("number"), Nbd::ACCESS_READ_WRITE));
  ASSERT_TRUE(lines.writeObjects(id("number"), asked, values));
  lines.setSelectionId(QString());
  NbdVariableDouble read = column(N);
  ASSERT_TRUE(lines.readVariable(id("number"), ALL, read, 0));
  EXPECT_EQ(read.getVector(), expected);

  for (const int wrong : {-1, 4}) {
    EXPECT_FALSE(lines.readObjects(id("number"), {0, wrong}, read));
    failure(*provider);
    EXPECT_FALSE(lines.writeObjects(id("number"), {0, wrong}, column(N)));
    EXPECT_FALSE(lines.readObjectsCoordinates({wrong}, &read, nullptr, nullptr));
    EXPECT_FALSE(lines.replaceObjectSamples(wrong, 2));
  }
  EXPECT_FALSE(lines.readObjects(id("number"), {2, 3}, values));  // too small
}

TEST_P(LineConformance, ReplacesTheSamplesOfALine)
{
  for (const int count : {12, 3, 20, 0}) {
    provider = GetParam()->create(content);
    auto &fresh = dynamic_cast<NbpIProviderObjectW &>(*provider);
    selectAs(selections()[2]);
    ASSERT_TRUE(fresh.replaceObjectSamples(2, count));
    const int n = N - 12 + count;
    EXPECT_EQ(fresh.getSampleCount(), n);
    EXPECT_EQ(fresh.getObjectDefinitions().at(2).supportLength, count);
    EXPECT_EQ(fresh.getObjectDefinitions().at(2).selectedSupportLength, count);
    EXPECT_EQ(fresh.getObjectDefinitions().at(3).firstSample, 5 + count);
    EXPECT_EQ(fresh.getObjectDefinitions().at(3).selectedSupportLength, 4);
    EXPECT_FALSE(fresh.replaceObjectSamples(2, -1));

    fresh.setSelectionId(QString());
    NbdVariableDouble values = column(n);
    ASSERT_TRUE(fresh.readVariable(id("number"), NbiIntervalIntLarge(0, n - 1), values, 0));
    for (int rank = 0; rank < n; ++rank) {
      const bool isNew = rank >= 5 && rank < 5 + count;
      const int old = rank < 5 ? rank : rank - count + 12;
      EXPECT_EQ(values.getValue(rank), isNew ? UNDEFINED : content.number[old]) << rank;
    }
  }
}
