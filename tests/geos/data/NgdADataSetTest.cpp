#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <memory>
#include <random>

#include "NgdVariableRulesRun.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdDataGrid.h"
#include "basic/data/NbdDataGridSampled.h"
#include "basic/data/NbdDataLines.h"
#include "basic/data/NbdDataPoints.h"
#include "basic/data/NbdEVarRole.h"
#include "basic/data/NbdEnumCatalog.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableEnum.h"
#include "basic/data/NbdVariableInt32.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/data/NbdVariableMulti.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/geom/NbgGeomCuboid.h"
#include "basic/interval/NbiIntervalIntLargeDisjoint.h"
#include "basic/provider/NbpMemoryProviderGridR.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetHelper.h"
#include "geos/data/NgdDataSetLines.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/data/NgdIBufferIterator.h"
#include "support/Errors.h"
#include "support/TestData.h"

using testsupport::errorOf;
using testsupport::expectAssertion;
using testsupport::PrintedMessages;

namespace {

const QString in = QStringLiteral("IN");
const QString out = QStringLiteral("OUT");

QString text(const char *latin1)
{
  return QString::fromLatin1(latin1);
}

void assign(NgdADataSet &dataSet, const QString &role, const QString &name)
{
  dataSet.assignVariable(role, dataSet.getDataProvider()->getIdFromName(name));
}

/// A macro of doubles with realizations 1 .. n, value 100 * index + rank.
template <class Provider>
QString addMacro(Provider &provider, const QString &name, int nRealizations,
                 Nbd::EVariableType type = Nbd::TYPE_DOUBLE)
{
  const QString id = provider.addMacro(name, type, NbdMacroIndexInfo());
  for (int index = 1; index <= nRealizations; ++index) {
    std::vector<double> values(provider.getSampleCount());
    for (std::size_t rank = 0; rank < values.size(); ++rank)
      values[rank] = 100. * index + rank;
    if (type == Nbd::TYPE_DOUBLE)
      provider.addRealization(id, NbdMacroIndex(index), values);
    else
      provider.addRealization(id, NbdMacroIndex(index),
                              std::vector<float>(values.begin(), values.end()));
  }
  return id;
}

/// Deselects about a third of the samples; returns the ranks of the others.
template <class Provider>
std::vector<qint64> selectSome(Provider &provider, unsigned seed)
{
  std::mt19937 random(seed);
  std::vector<qint64> selected;
  for (qint64 rank = 0; rank < provider.getSampleCount(); ++rank) {
    if (random() % 3 == 0)
      provider.deselect(NbiIntervalIntLarge(rank, rank));
    else
      selected.push_back(rank);
  }
  return selected;
}

/// All values of a variable, selected or not.
std::vector<double> readAll(NbpIProviderR &provider, const QString &id)
{
  NbdVariableDouble values;
  std::vector<double> all;
  NbdVariableSelection selection;
  const NbiIntervalIntLarge ranks = NbiIntervalIntLarge::fromLength(provider.getSampleCount());
  EXPECT_TRUE(provider.readSelection(ranks, selection));
  values.resizeAndFill(int(provider.getSelectedSampleCount(ranks)));
  EXPECT_TRUE(provider.readVariable(id, ranks, values, 0));
  for (int rank = 0, position = 0; rank < selection.getNValues(); ++rank)
    all.push_back(selection.getBoolValue(rank) ? values.getValue(position++) : -1.);
  return all;
}

/// Adds 1000 to what every buffer read under IN and writes it under OUT.
void copyByBuffers(NgdADataSet &dataSet, int nPerBuffer)
{
  const std::unique_ptr<NgdABufferManager> manager(dataSet.createBufferManager());
  if (dataSet.isLine())
    manager->setBufferSize(qint64(nPerBuffer) * dataSet.getSampleSizeBytes() * 5);
  else
    manager->setNSamplesPerBuffer(nPerBuffer);
  const std::unique_ptr<NgdIBufferIterator> buffers(manager->createBufferIterator());
  while (buffers->hasNext()) {
    const std::unique_ptr<NbdAData> buffer(buffers->next());
    const NbdAVariableNumeric &source = *buffer->getVariableNumeric(in, 0);
    NbdAVariableNumeric &target = *buffer->getVariableNumeric(out, 0);
    for (int position = 0; position < buffer->getNSamples(); ++position)
      target.setValue(position, source.getValue(position) + 1000.);
    dataSet.saveFromBufferInParent(*buffer);
  }
}

template <class DataSet, class Provider>
void checkScatterAndGather(QSharedPointer<Provider> provider, int nPerBuffer)
{
  const qint64 n = provider->getSampleCount();
  std::vector<double> ranks(n);
  for (qint64 rank = 0; rank < n; ++rank)
    ranks[rank] = double(rank);
  const QString target = provider->addVariable(text("TARGET"), std::vector<double>(n, -5.));
  provider->addVariable(text("RANK"), ranks);
  const std::vector<qint64> selected = selectSome(*provider, 11);

  DataSet dataSet;
  dataSet.setDataProvider(provider);
  assign(dataSet, in, text("RANK"));
  assign(dataSet, out, text("TARGET"));
  dataSet.setAccessType(out, Nbd::ACCESS_WRITE);
  dataSet.openAllVariables();
  copyByBuffers(dataSet, nPerBuffer);
  dataSet.closeAllVariables();

  std::vector<double> expected(n, -5.);
  for (qint64 rank : selected)
    expected[rank] = 1000. + rank;
  provider->setSelection(std::vector<bool>(n, true));
  EXPECT_EQ(expected, readAll(*provider, target));
}

}  // namespace

TEST(NgdADataSet, SavingScattersToTheSelectedRanks)
{
  for (int nPerBuffer : {7, 40, 1000}) {
    checkScatterAndGather<NgdDataSetPoints>(testsupport::makePoints(143), nPerBuffer);
    checkScatterAndGather<NgdDataSetGrid>(testsupport::makeGrid(5, 4, 7), nPerBuffer);
    checkScatterAndGather<NgdDataSetLines>(
        testsupport::makeLines({3, 0, 5, 1, 4, 4, 4, 4, 2, 5, 5}), nPerBuffer);
  }
}

TEST(NgdADataSet, LoadsSelectedSamplesWithCoordinatesAndNumbers)
{
  const auto provider = testsupport::makePoints(30, NbgEDimension::DIM_3D);
  const QString xId = provider->getStructuralRoleId(NbdEVarRole::X);
  const std::vector<double> x = readAll(*provider, xId);
  const std::vector<qint64> selected = selectSome(*provider, 3);
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  assign(dataSet, in, text("Z1"));
  assign(dataSet, out, text("Z1"));  // two bindings of one variable are both filled
  dataSet.openAllVariables();

  NbdDataPoints all;
  dataSet.loadAllData(all, true, true);
  ASSERT_EQ(int(selected.size()), all.getNSamples());
  EXPECT_EQ(3, all.getNDimensions());
  for (int position = 0; position < all.getNSamples(); ++position) {
    EXPECT_EQ(selected[position] + 1, all.getSampleNumber(position));
    EXPECT_EQ(x[selected[position]], all.getLocation(position).x());
    const NbgVector3D at = all.getLocation(position);
    const double z1 = testsupport::smoothValue(at.x(), at.y(), at.z());
    EXPECT_EQ(z1, all.getVariableNumeric(in, 0)->getValue(position));
    EXPECT_EQ(z1, all.getVariableNumeric(out, 0)->getValue(position));
  }

  // Two disjoint ranges follow each other; coordinates can be left out.
  NbiIntervalIntLargeDisjoint ranks(NbiIntervalIntLarge(2, 5));
  ranks.merge(NbiIntervalIntLarge(20, 29));
  NbdDataPoints parts;
  dataSet.createAllVariables(parts, false, true);
  dataSet.loadInBuffer(ranks, parts);
  EXPECT_EQ(nullptr, parts.getCoordinates(0));
  EXPECT_EQ(dataSet.getSelectedSampleCount(ranks), parts.getNSamples());
  for (int position = 0; position < parts.getNSamples(); ++position)
    EXPECT_TRUE(ranks.isIncluded(parts.getSampleNumber(position) - 1));
}

TEST(NgdADataSet, LoadsTheSamplesInsideACuboid)
{
  const auto provider = testsupport::makePoints(300);
  selectSome(*provider, 4);
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  assign(dataSet, in, text("Z1"));
  dataSet.openAllVariables();
  NbdDataPoints all, inside;
  dataSet.loadAllData(all, true, true);
  dataSet.createAllVariables(inside, true, true);

  const NbgGeomCuboid cuboid(NbgVector3D(500., 400., 0.), NbgVector3D(300., 500., 1.));
  dataSet.loadInBufferFromCuboid(cuboid, inside);
  int found = 0;
  for (int position = 0; position < all.getNSamples(); ++position) {
    if (!cuboid.isIncluded(all.getLocation(position)))
      continue;
    EXPECT_EQ(all.getSampleNumber(position), inside.getSampleNumber(found++));
  }
  EXPECT_GT(found, 0);
  EXPECT_EQ(found, inside.getNSamples());
  dataSet.loadInBufferFromCuboid(NbgGeomCuboid(NbgVector3D(-500., 0., 0.), NbgVector3D(1., 1., 1.)),
                                 inside);
  EXPECT_EQ(0, inside.getNSamples());
}

TEST(NgdADataSet, SamplesAreInsideACuboidWhereTheDataSetLocatesThem)
{
  const auto provider = testsupport::makePoints(50, NbgEDimension::DIM_3D);
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  dataSet.setMaxDimension(NgdADataSet::DIM_2);  // every sample is located at elevation 0
  dataSet.openAllVariables();
  NbdDataPoints inside;
  dataSet.createAllVariables(inside, true, true);
  dataSet.loadInBufferFromCuboid(
      NbgGeomCuboid(NbgVector3D(500., 500., 0.), NbgVector3D(1000., 1000., 1.)), inside);
  EXPECT_EQ(50, inside.getNSamples());
}

TEST(NgdADataSet, PatchesBySampleNumber)
{
  const auto provider = testsupport::makePoints(10);
  const QString target = provider->addVariable(text("T"), std::vector<double>(10, 1.));
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  assign(dataSet, out, text("T"));
  dataSet.setAccessType(out, Nbd::ACCESS_WRITE);
  dataSet.openAllVariables();
  NbdDataPoints buffer;
  dataSet.createAllVariables(buffer, false, true);
  buffer.setResizedTo(3);
  const qint64 numbers[] = {7, NbbGlobal::I64_FFFF, 2};
  for (int position = 0; position < 3; ++position) {
    buffer.getVariableSN()->setValueAsType(position, numbers[position]);
    buffer.getVariableNumeric(out, 0)->setValue(position, 50. + position);
  }
  dataSet.patchFromBuffer(buffer);
  EXPECT_EQ((std::vector<double>{1., 52., 1., 1., 1., 1., 50., 1., 1., 1.}),
            readAll(*provider, target));
}

TEST(NgdADataSet, GridBuffersHoldTheSelection)
{
  const auto provider = testsupport::makeGrid(4, 3, 2);
  const std::vector<qint64> selected = selectSome(*provider, 8);
  NgdDataSetGrid dataSet;
  dataSet.setDataProvider(provider);
  EXPECT_EQ(text("Memory selection for grid dataset"),
            dataSet.getVariableName(Nbd::Role::SELECTION, 0));
  dataSet.openAllVariables();
  NbdDataGrid grid;
  dataSet.createAllVariables(grid, true, true);
  dataSet.loadWholeGrid(grid);
  ASSERT_EQ(24, grid.getNSamples());
  EXPECT_EQ(std::vector<int>(selected.begin(), selected.end()), grid.getSelectedPositions());
  for (int position = 0; position < 24; ++position) {
    EXPECT_EQ(grid.isSelected(position) ? 1. : 0.,
              grid.getVariableNumeric(Nbd::Role::SELECTION, 0)->getValue(position));
    EXPECT_EQ(grid.getLocation(position).y(),
              grid.getVariableNumeric(Nbd::Role::Y, 0)->getValue(position));
  }

  PrintedMessages messages;
  dataSet.closeAllVariables();
  dataSet.setDataProvider(provider);
  EXPECT_EQ(QStringList(text("User selection ignored")), messages.texts);
  EXPECT_EQ(1, dataSet.getRoleCount(Nbd::Role::SELECTION));
}

TEST(NgdDataSetGrid, ExtendedBuffersReachBeyondTheGrid)
{
  const auto provider = testsupport::makeGrid(5, 4, 3);
  const std::vector<double> all = readAll(*provider, provider->getIdFromName(text("Z1")));
  provider->deselect(NbiIntervalIntLarge(7, 7));
  NgdDataSetGrid dataSet;
  dataSet.setDataProvider(provider);
  assign(dataSet, in, text("Z1"));
  dataSet.setAccessType(in, Nbd::ACCESS_READ_WRITE);
  dataSet.openAllVariables();
  NbdDataGridExtended buffer;
  dataSet.createAllVariables(buffer, true, true);
  dataSet.loadExtendedInBuffer({0, 1}, {1, 3}, {0, 2}, NbgIntVector3D(1, 2, 1), buffer);
  ASSERT_EQ(4 * 7 * 5, buffer.getNSamples());
  const NbgGeomGrid extended = buffer.getExtendedGeometry();
  NbdAVariableNumeric &values = *buffer.getVariableNumeric(in, 0);
  int nInBlock = 0;
  for (int position = 0; position < buffer.getNSamples(); ++position) {
    const qint64 number = buffer.getVariableSN()->getValueAsType(position);
    EXPECT_EQ(buffer.isInGrid(position), number > 0);
    EXPECT_EQ(buffer.isInGrid(position) ? all[number - 1] : NbbGlobal::D_FFFF,
              values.getValue(position));
    EXPECT_EQ(buffer.isInGrid(position) && number != 8, buffer.isSelected(position));
    const NbgVector3D difference =
        buffer.getLocation(position) - extended.getCellCenter(qint64(position));
    EXPECT_LT(difference.norm(), 1e-9);  // metres, coordinates below 100: rounding only
    EXPECT_EQ(buffer.getLocation(position).x(),
              buffer.getVariableNumeric(Nbd::Role::X, 0)->getValue(position));
    nInBlock += buffer.isInBlock(position);
  }
  EXPECT_EQ(2 * 3 * 3, nInBlock);

  values.setAllValues(-3.);
  dataSet.saveExtendedFromBuffer(buffer);
  const std::vector<double> after = readAll(*provider, provider->getIdFromName(text("Z1")));
  for (int rank = 0; rank < 60; ++rank) {
    const bool isWritten = rank / 12 <= 1 && rank / 3 % 4 >= 1 && rank != 7;
    EXPECT_EQ(isWritten ? -3. : rank == 7 ? -1. : all[rank], after[rank]);
  }
}

TEST(NgdDataSetGrid, ExtendedBuffersHoldTheSelectionOfTheProvider)
{
  const auto provider = testsupport::makeGrid(3, 2, 2);
  provider->deselect(NbiIntervalIntLarge(1, 6));
  NgdDataSetGrid dataSet;
  dataSet.setDataProvider(provider);
  dataSet.openAllVariables();
  NbdDataGridExtended buffer;
  dataSet.createAllVariables(buffer, false, false);
  dataSet.loadExtendedInBuffer({0, 2}, {0, 1}, {0, 1}, NbgIntVector3D(1, 0, 0), buffer);
  const NbdAVariableNumeric &selection = *buffer.getVariableNumeric(Nbd::Role::SELECTION, 0);
  for (int position = 0; position < buffer.getNSamples(); ++position)
    EXPECT_EQ(buffer.isSelected(position) ? 1. : 0., selection.getValue(position));
  EXPECT_EQ(6, buffer.getNSelected());
}

TEST(NgdDataSetGrid, SampledBuffersFollowTheBorderOption)
{
  const auto provider = QSharedPointer<NbpMemoryProviderGridW>::create(
      testsupport::makeGridGeometry(7, 1, 1, NbgVector3D::Unit));
  provider->addVariable(text("V"), std::vector<double>{10., 11., 12., 13., 14., 15., 16.});
  NgdDataSetGrid dataSet;
  dataSet.setDataProvider(provider);
  assign(dataSet, in, text("V"));
  dataSet.openAllVariables();
  NbdDataGridSampled buffer;
  buffer.setStep(NbgIntVector3D(2, 1, 1));
  buffer.setBlock(dataSet.getGeometry(), {3, 6}, {0, 0}, {0, 0}, NbgIntVector3D(5, 0, 0));
  dataSet.createAllVariables(buffer, false, false);

  const double u = NbbGlobal::D_FFFF;
  const QVector<double> expected[] = {{u, 10., 12., 14., 16., u, u},  // nodes -2, 0 ... 10
                                      {10., 10., 12., 14., 16., 16., 16.},
                                      {12., 10., 12., 14., 16., 14., 12.}};
  for (int option = 0; option < 3; ++option) {
    dataSet.setBorderOption(NgdDataSetGrid::BorderOption(option));
    dataSet.loadSampledInBuffer(buffer);
    QVector<double> loaded;
    for (int position = 0; position < buffer.getNSamples(); ++position)
      loaded << buffer.getVariableNumeric(in, 0)->getValue(position);
    EXPECT_EQ(expected[option], loaded);
  }
  EXPECT_EQ(2., buffer.getSampledGeometry().getCellSize().x());
  EXPECT_EQ(NbgIntVector3D(-2, 0, 0), buffer.getIJK(0));
  EXPECT_EQ(NbbGlobal::I64_FFFF, buffer.getSampleNumber(0));

  const QString path = text("data\\NgdDataSetGrid");
  buffer.getDataTable().clearTable();
  provider->addVariable(text("T"), std::vector<QString>(7));
  dataSet.closeAllVariables();
  assign(dataSet, out, text("T"));
  dataSet.openAllVariables();
  dataSet.createAllVariables(buffer, false, false);
  expectAssertion(path, text("Non numeric variables Not implemented"),
                  [&] { dataSet.loadSampledInBuffer(buffer); });
  dataSet.closeAllVariables();
  dataSet.clearRole(out);
  dataSet.assignMacro(out, addMacro(*provider, text("M"), 2, Nbd::TYPE_FLOAT));
  NgdVariableDescriptor multi = dataSet.getDataDescriptor(out, 0);
  multi.setVariableType(Nbd::TYPE_MULTI_FLOAT);
  dataSet.setDataDescriptor(out, 0, multi);
  dataSet.openAllVariables();
  buffer.getDataTable().clearTable();
  dataSet.createAllVariables(buffer, false, false);
  expectAssertion(path, text("Multi variables Not implemented"),
                  [&] { dataSet.loadSampledInBuffer(buffer); });
}

TEST(NgdDataSetGrid, CompressionLeavesOutUndefinedCells)
{
  struct SparseGrid : NbpMemoryProviderGridR
  {
    using NbpMemoryProviderGridR::NbpMemoryProviderGridR;
    bool isSparse() const override { return true; }
    NbiIntervalIntLargeDisjoint getDefinedRanks(const NbiIntervalIntLarge &ranks) const override
    {
      return NbiIntervalIntLargeDisjoint(ranks.intersect(NbiIntervalIntLarge(5, 9)));
    }
  };
  const auto provider =
      QSharedPointer<SparseGrid>::create(testsupport::makeGridGeometry(3, 2, 2, NbgVector3D::Unit));
  provider->deselect(NbiIntervalIntLarge(6, 6));
  NgdDataSetGrid dataSet;
  dataSet.setDataProvider(provider);
  dataSet.openAllVariables();
  NbdDataPoints points;
  dataSet.loadAllData(points, true, true);
  EXPECT_EQ(11, points.getNSamples());
  dataSet.loadInBuffer(NbiIntervalIntLargeDisjoint(NbiIntervalIntLarge(0, 11)), points);
  EXPECT_EQ(4, points.getNSamples());

  const std::unique_ptr<NgdBufferManagerGrid> manager(dataSet.createBufferManager());
  for (bool compressed : {false, true}) {
    manager->setCompressionEnabled(compressed);
    manager->tuneBufferSize(1 << 20, 1, 100);
    int nSelected = 0;
    const std::unique_ptr<NgdIBufferIterator> buffers(manager->createBufferIterator());
    while (buffers->hasNext())
      nSelected += std::unique_ptr<NbdAData>(buffers->next())->getNSelected();
    EXPECT_EQ(compressed ? 4 : 11, nSelected);
  }
}

TEST(NgdADataSet, MacrosBecomeOneVariablePerRealization)
{
  const auto provider = testsupport::makePoints(6);
  const QString doubles = addMacro(*provider, text("D"), 3);
  const QString floats = addMacro(*provider, text("F"), 2, Nbd::TYPE_FLOAT);
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  dataSet.clearAllRoles();
  dataSet.assignMacro(in, doubles);
  dataSet.assignMacro(out, floats);
  NgdVariableDescriptor multi = dataSet.getDataDescriptor(out, 0);
  multi.setVariableType(Nbd::TYPE_MULTI_FLOAT);
  multi.setAccessType(Nbd::ACCESS_READ_WRITE);
  dataSet.setDataDescriptor(out, 0, multi);
  dataSet.openAllVariables();
  EXPECT_EQ((3 * 64 + 2 * 32) / 8, dataSet.getSampleSizeBytes());

  NbdDataPoints buffer;
  dataSet.loadAllData(buffer, true, true);
  const NbdDataTable &table = buffer.getDataTableConst();
  ASSERT_EQ(3, table.getRoleCount(in));
  for (int index = 1; index <= 3; ++index) {
    EXPECT_EQ(NbdMacroIndex(index), table.getVar(in, index - 1)->getMacroIndex());
    EXPECT_EQ(100. * index + 4., table.getVarNumeric(in, index - 1)->getValue(4));
  }
  NbdVariableMulti &realizations = table.getVarMultiRef(out);
  EXPECT_EQ(105., realizations.getRealizationValue(0, 5));
  EXPECT_EQ(205., realizations.getRealizationValue(1, 5));

  realizations.setRealizationValue(1, 5, 7.);
  dataSet.saveFromBufferInParent(buffer);
  EXPECT_EQ(7., readAll(*provider, provider->getRealizationId(floats, NbdMacroIndex(2)))[5]);
  EXPECT_EQ(105., readAll(*provider, provider->getRealizationId(floats, NbdMacroIndex(1)))[5]);
}

TEST(NgdADataSet, MacrosByPieceHoldTheRealizationOfTheLoop)
{
  const auto provider = testsupport::makePoints(6);
  addMacro(*provider, text("D"), 3);
  addMacro(*provider, text("T"), 3);
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  dataSet.assignMacro(in, provider->getIdFromName(text("D")));
  dataSet.assignMacro(out, provider->getIdFromName(text("T")));
  for (const QString &role : {in, out}) {
    NgdVariableDescriptor macro = dataSet.getDataDescriptor(role, 0);
    macro.setIndices(macro.getMacroIndexInfo(), {NbdMacroIndex(3), NbdMacroIndex(1)});
    macro.setMultiByPiece(true);
    macro.setAccessType(role == in ? Nbd::ACCESS_READ : Nbd::ACCESS_WRITE);
    dataSet.setDataDescriptor(role, 0, macro);
  }
  dataSet.openAllVariables();
  const std::unique_ptr<NgdABufferManager> manager(dataSet.createBufferManager());
  manager->setIndicesLoopPolicy(Nbd::LOOP_ON_INDICES);
  manager->setLoopIndices(NbiIntervalIntSmall::fromLength(2));
  manager->setNSamplesPerBuffer(4);
  const std::unique_ptr<NgdIBufferIterator> buffers(manager->createBufferIterator());
  for (int index : {3, 3, 1, 1}) {
    const std::unique_ptr<NbdAData> buffer(buffers->next());
    EXPECT_EQ(1, buffer->getDataTableConst().getRoleCount(in));
    const double first = double(buffer->getSampleNumber(0) - 1);
    EXPECT_EQ(100. * index + first, buffer->getVariableNumeric(in, 0)->getValue(0));
    buffer->getVariableNumeric(out, 0)->setAllValues(-index);
    dataSet.saveFromBufferInParent(*buffer);
  }
  EXPECT_FALSE(buffers->hasNext());
  const QString target = provider->getIdFromName(text("T"));
  const double expected[] = {-1., 202., -3.};
  for (int index = 1; index <= 3; ++index)
    EXPECT_EQ(expected[index - 1],
              readAll(*provider, provider->getRealizationId(target, NbdMacroIndex(index)))[2]);
}

TEST(NgdADataSet, EnumeratedVariablesKeepTheirCatalogue)
{
  const auto provider = testsupport::makePoints(3);
  NbdEnumCatalog catalog;
  catalog.setCategory(4, text("ore"));
  catalog.setCategory(9, text("waste"));
  const QString id = provider->addVariableEnum(text("ROCK"), {9, 4, 9}, catalog);
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  dataSet.assignVariable(in, id, false);
  dataSet.assignVariable(out, id, true);
  EXPECT_EQ(Nbd::TYPE_INT32, dataSet.getDataDescriptor(out, 0).getVariableType());
  EXPECT_EQ(catalog, dataSet.getCatalog(out, 0));
  dataSet.openAllVariables();
  NbdDataPoints buffer;
  dataSet.loadAllData(buffer, false, false);
  EXPECT_EQ(text("ore"), buffer.getDataTableConst().getVarEnumRef(in).getCategoryName(1));
  EXPECT_EQ(9., buffer.getDataTableConst().getVarInt32Ref(out).getValue(2));
}

TEST(NgdADataSet, BindsStructuralVariablesUpToItsDimension)
{
  const auto provider = testsupport::makePoints(4, NbgEDimension::DIM_3D);
  NgdDataSetPoints dataSet;
  EXPECT_EQ(0, dataSet.getNDimensions());
  dataSet.setDataProvider(*provider);
  EXPECT_EQ(3, dataSet.getNDimensions());
  EXPECT_EQ((QStringList{Nbd::Role::SN, Nbd::Role::X, Nbd::Role::Y, Nbd::Role::Z}),
            dataSet.getAllRoles());
  dataSet.setMaxDimension(NgdADataSet::DIM_1);
  EXPECT_EQ((QStringList{Nbd::Role::SN, Nbd::Role::X}), dataSet.getAllRoles());
  EXPECT_EQ(1, dataSet.getNDimensions());

  const auto lines = testsupport::makeCores({2, 2});
  NgdDataSetLines lineSet;
  lineSet.setDataProvider(lines);
  EXPECT_TRUE(lineSet.isDataSupportCore());
  EXPECT_TRUE(lineSet.mustBeUnique(Nbd::Role::LINE_S_FROM));
  EXPECT_FALSE(dataSet.mustBeUnique(Nbd::Role::LINE_S_FROM));
}

TEST(NgdADataSet, RolesCanBeRenamedAndCleared)
{
  const auto provider = testsupport::makePoints(4);
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  assign(dataSet, in, text("Z1"));
  assign(dataSet, in, text("Z2"));
  assign(dataSet, out, text("Z1"));
  dataSet.replaceVariableRole(in, 0, text("THIRD"));
  EXPECT_EQ(QStringList(text("Z2")), dataSet.getVariableNames(in));
  dataSet.replaceRoles({in, out}, text("ALL"));
  EXPECT_EQ((QStringList{text("Z2"), text("Z1")}), dataSet.getVariableNames(text("ALL")));
  dataSet.replaceRole(text("ALL"), in);
  dataSet.clearOtherRoles({in, text("THIRD")});
  EXPECT_EQ((QStringList{in, text("THIRD")}), dataSet.getAllRoles());
  EXPECT_EQ(3, dataSet.getNVariables());
  EXPECT_TRUE(dataSet.hasVariableName(text("Z2")));
  EXPECT_EQ(provider->getIdFromName(text("Z2")), dataSet.getVariableId(in, text("Z2")));

  NgdDataSetPoints other;
  other.setDataProvider(provider);
  NgdDataSetHelper::forwardRole(dataSet, other, in, out);
  EXPECT_EQ(dataSet.getVariableIds(in), other.getVariableIds(out));
  const NgdDataSetPoints detached(dataSet, true);
  EXPECT_EQ(nullptr, detached.getDataProvider());
  EXPECT_EQ(3, detached.getNVariables());
}

TEST(NgdADataSet, TemporariesLiveForOneRun)
{
  const auto provider = testsupport::makePoints(4);
  const QStringList before = provider->getVariableIds();
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  dataSet.assignTemporaryVariable(out, text("__TMP_A"), Nbd::TYPE_DOUBLE);
  dataSet.assignTemporaryVariable(in, text("__TMP_A"), Nbd::TYPE_DOUBLE);
  dataSet.assignTemporaryMacro(out, text("__TMP_M"), Nbd::TYPE_DOUBLE);
  NgdVariableRules rules;
  rules.registerDataSet(text("D"), &dataSet);
  rules.registerRoleVariableOrMacro(text("D"), out, Nbd::ACCESS_READ_WRITE, Nbd::TYPE_NONE);
  rules.registerRole(text("D"), in, Nbd::ACCESS_READ, Nbd::TYPE_NONE);
  EXPECT_EQ(Nbd::ACCESS_WRITE, dataSet.getDataDescriptor(out, 0).getAccessType());

  for (int run = 0; run < 2; ++run) {
    NgdVariableRulesRun(rules).createTemporaries();
    EXPECT_EQ(before.size() + 1, provider->getVariableIds().size());
    EXPECT_EQ(1, provider->getMacroIds().size());
    EXPECT_EQ(provider->getIdFromName(text("__TMP_A")), dataSet.getVariableId(in, 0));
    NgdVariableRulesRun(rules).createTemporaries();  // those that exist are not created again
    EXPECT_EQ(before.size() + 1, provider->getVariableIds().size());

    std::unique_ptr<NgdDataSetPoints> copy(dataSet.clone());
    NgdVariableRules copyRules;
    copyRules.registerDataSet(text("D"), copy.get());
    copyRules.deleteTmpVariables();  // a copy has nothing to delete
    EXPECT_EQ(1, provider->getMacroIds().size());

    dataSet.openAllVariables();
    rules.deleteTmpVariables();
    dataSet.closeAllVariables();
    EXPECT_EQ(before, provider->getVariableIds());
    EXPECT_TRUE(provider->getMacroIds().isEmpty());
  }

  NgdVariableRulesRun(rules).createTemporaries();
  PrintedMessages messages;
  dataSet = NgdDataSetPoints();
  EXPECT_EQ((QStringList{text("Remaining temporary variables may not be deleted"),
                         text("Remaining temporary macros may not be deleted")}),
            messages.texts);
}

TEST(NgdADataSet, TemporariesAreDeletedFromTheFileThatHasThem)
{
  const auto provider = testsupport::makePoints(4), other = testsupport::makePoints(4);
  const QStringList before = provider->getVariableIds();
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  dataSet.assignTemporaryVariable(out, text("__TMP_A"), Nbd::TYPE_DOUBLE);
  NgdVariableRules rules;
  rules.registerDataSet(text("D"), &dataSet);
  rules.registerRole(text("D"), out, Nbd::ACCESS_WRITE, Nbd::TYPE_NONE);
  NgdVariableRulesRun(rules).createTemporaries();
  const QString kept = other->addVariable(text("Kept"), std::vector<double>(4, 1.));
  EXPECT_EQ(dataSet.getVariableId(out, 0), kept);  // ids are unique within one file only

  dataSet.setDataProvider(other);
  rules.deleteTmpVariables();
  EXPECT_EQ(before, provider->getVariableIds());
  EXPECT_EQ(kept, other->getIdFromName(text("Kept")));
}

TEST(NgdADataSet, ClosesWhatItOpened)
{
  const auto provider = testsupport::makePoints(4);
  const QString id = provider->getIdFromName(text("Z1"));
  std::unique_ptr<NgdDataSetPoints> copy;
  {
    NgdDataSetPoints dataSet;
    dataSet.setDataProvider(provider);
    dataSet.assignVariable(in, id);
    dataSet.openAllVariables();
    copy.reset(dataSet.clone());
    copy->closeAllVariables();
    EXPECT_TRUE(provider->isVariableOpen(id));
    dataSet.closeAllVariables();
    EXPECT_FALSE(provider->isVariableOpen(id));
    dataSet.openAllVariables();
  }
  EXPECT_FALSE(provider->isVariableOpen(id));
}

TEST(NgdADataSet, DescribesItsVariables)
{
  const auto provider = testsupport::makePoints(4);
  const QString macro = addMacro(*provider, text("M"), 2);
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  dataSet.clearAllRoles();
  assign(dataSet, in, text("Z1"));
  dataSet.assignMacro(out, macro);
  EXPECT_EQ(text("DataSetPoints: Nb Dim : 2 / Nb Samp : 4 /Nb Var : 2 [IN/Z1(%1) OUT{2}/M(%2)]")
                .arg(provider->getIdFromName(text("Z1")), macro),
            dataSet.debug(0));
}

TEST(NgdADataSet, DumpsAndExportsSelectedValues)
{
  const auto provider = QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_2D, 3);
  provider->addXVariable({4500000.25, 1., 2.});
  provider->addYVariable({0.1, 3., 4.});
  provider->addVariable(text("V"), std::vector<double>{0.5, 6., NbbGlobal::D_FFFF});
  provider->deselect(NbiIntervalIntLarge(1, 1));
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  assign(dataSet, in, text("V"));

  PrintedMessages messages;
  dataSet.dumpVariable(in, 0, text("Title"), 0, 10);
  EXPECT_EQ((QStringList{text("\n Starting Debug ****************************************"),
                         text("Title"), text("[0] = 0.5"), text("[2] = N/A"),
                         text("\n Ending Debug ******************************************")}),
            messages.texts);

  QTemporaryDir folder;
  const QString path = folder.filePath(text("v.csv"));
  dataSet.exportVariableToCSV(in, path, 0, true);
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(QByteArray("X,Y,V\n4500000.25,0.1,0.5\n2,4,N/A\n"), file.readAll());

  provider->addVariable(text("F"), std::vector<float>{1234567.f, 0.1f, 0.1f});
  assign(dataSet, out, text("F"));
  dataSet.exportVariableToCSV(out, path, 0, false);
  QFile floats(path);
  ASSERT_TRUE(floats.open(QIODevice::ReadOnly));
  EXPECT_EQ(QByteArray("F\n1234567\n0.1\n"), floats.readAll());
}

TEST(NgdADataSet, RefusesMisuse)
{
  const QString path = text("data\\NgdADataSet"), pointsPath = text("data\\NgdDataSetPoints"),
                gridPath = text("data\\NgdDataSetGrid"), linesPath = text("data\\NgdDataSetLines");
  const auto provider = testsupport::makePoints(4);
  const auto gridProvider =
      QSharedPointer<NbpMemoryProviderGridR>::create(testsupport::makeGridGeometry2D(2, 2, 1., 1.));
  NgdDataSetPoints empty, points;
  NgdDataSetGrid grid;
  NgdDataSetLines lines;
  points.setDataProvider(provider);
  grid.setDataProvider(gridProvider);
  NbdDataPoints buffer;
  NbdDataGrid gridBuffer;

  struct Case
  {
    QString path;
    const char *condition;
    std::function<void()> action;
  };
  const QString x = provider->getStructuralRoleId(NbdEVarRole::X);
  const std::vector<Case> cases = {
      {path, "Given provider is null.",
       [&] { empty.setDataProvider(QSharedPointer<NbpIProviderR>()); }},
      {gridPath, "provider is not a grid provider", [&] { grid.setDataProvider(provider); }},
      {linesPath, "provider is not a line provider", [&] { lines.setDataProvider(provider); }},
      {path, "current provider is not valid for writing!", [&] { grid.getDataProviderW(); }},
      {path, "Dataset provider is invalid.", [&] { empty.isWriter(); }},
      {path, "Dataset provider is invalid.", [&] { empty.assignVariable(in, text("v1")); }},
      {path, "Dataset provider is invalid.", [&] { empty.openAllVariables(); }},
      {path, "must be called after openAllVariables", [&] { points.getSampleSizeBytes(); }},
      {path, "No variable with Id: nothing", [&] { points.assignVariable(in, text("nothing")); }},
      {path, "Coordinate or SN can't be temporary.",
       [&] { points.assignTemporaryVariable(Nbd::Role::SN, text("A"), Nbd::TYPE_INT64); }},
      {path, "invalid old role", [&] { points.replaceRole(in, out); }},
      {path, "newRole already exists", [&] { points.replaceRole(Nbd::Role::X, Nbd::Role::Y); }},
      {path, "newRole 'Y' already exists", [&] { points.replaceRoles({in}, Nbd::Role::Y); }},
      {path, "no role IN in dataset", [&] { points.getDataDescriptor(in, 0); }},
      {path, "invalid rank = 1/1 for role X", [&] { points.getDataDescriptor(Nbd::Role::X, 1); }},
      {path, "invalid argument 'rank'.",
       [&] { points.setDataDescriptor(Nbd::Role::X, 1, NgdVariableDescriptor()); }},
      {path, "Method openAllVariables() should be called before.",
       [&] { points.loadAllPointsInBuffer(buffer); }},
      {path, "method openAllVariables should be called before",
       [&] { points.loadInBufferFromCuboid(NbgGeomCuboid(), buffer); }},
      {path, "Available only for points dataset",
       [&] { grid.loadInBufferFromCuboid(NbgGeomCuboid(), buffer); }},
      {pointsPath, "Passed argument is meant to be NbdDataPoints",
       [&] { points.saveFromBufferInParent(gridBuffer); }},
      {gridPath, "Passed argument is meant to be NbdDataGrid",
       [&] { grid.saveFromBufferInParent(buffer); }},
      {linesPath, "Passed argument is meant to be NbdDataLines",
       [&] { lines.saveFromBufferInParent(buffer); }},
      {text("data\\NgdDataSetHelper"), "Providers should be the same between datasets",
       [&] { NgdDataSetHelper::forwardRole(points, grid, in, out); }}};
  for (const Case &c : cases)
    expectAssertion(c.path, text(c.condition), c.action);
  expectAssertion(path,
                  text("Attempting to add variable with Id: %1 with role X to a data set which "
                       "already contains the role X")
                      .arg(x),
                  [&] { points.assignVariable(Nbd::Role::X, x); });

  points.openAllVariables();
  expectAssertion(path, text("called twice."), [&] { points.openAllVariables(); });
  expectAssertion(path, text("cannot replace variable role while variables are opened."),
                  [&] { points.replaceVariableRole(Nbd::Role::X, 0, in); });
  expectAssertion(path, text("Invalid interval given"),
                  [&] { points.loadInBuffer(NbiIntervalIntSmallO64(2, 4), buffer); });
  PrintedMessages messages;
  points.saveFromBufferInParent(NbdDataPoints());
  EXPECT_EQ(QStringList(text("NgdDataSetPoints::saveFromBufferInParent: warning empty or invalid "
                             "interval.")),
            messages.texts);

  NgdDataSetPoints none;
  none.setDataProvider(testsupport::makePoints(0));
  none.openAllVariables();
  expectAssertion(path, text("empty dataset."), [&] { none.loadAllPointsInBuffer(buffer); });
}

TEST(NgdADataSet, SavingNeedsOneColumnPerWrittenVariable)
{
  const QString path = text("data\\NgdADataSet");
  const auto provider = testsupport::makePoints(4);
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  assign(dataSet, in, text("Z1"));
  assign(dataSet, out, text("Z1"));
  dataSet.setAccessType(out, Nbd::ACCESS_WRITE);
  dataSet.openAllVariables();
  NbdDataPoints buffer;
  dataSet.loadAllData(buffer, true, true);
  dataSet.saveFromBufferInParent(buffer);  // the column bound for reading is not in the way

  const int rank = buffer.getDataTable().getAbsoluteRank(out, 0);
  buffer.getDataTable().addVariable(out, *buffer.getDataTable().getVarByRank(rank));
  expectAssertion(path,
                  text("NgdADataSet::saveFromBuffer: found more than one variable with name 'Z1'."),
                  [&] { dataSet.saveFromBufferInParent(buffer); });
  buffer.deleteVariables({out});
  expectAssertion(path, text("variable with name 'Z1' was not found."),
                  [&] { dataSet.saveFromBufferInParent(buffer); });
}

TEST(NgdADataSet, ProviderFailuresAreReportedWithTheirReason)
{
  const auto provider = testsupport::makePoints(4);
  const QString id = provider->getIdFromName(text("Z1"));
  const QString macro = provider->addMacro(text("M"), Nbd::TYPE_DOUBLE, NbdMacroIndexInfo());
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  dataSet.clearAllRoles();
  dataSet.assignVariable(in, id);
  dataSet.assignMacro(out, macro);
  EXPECT_TRUE(provider->deleteVariable(id));
  PrintedMessages messages;
  const QString variableError = errorOf([&] { dataSet.openAllVariables(); });
  EXPECT_TRUE(variableError.contains(
      text("Error when accessing variable name 'Z1' and id '%1'.\nReason: ").arg(id)));
  EXPECT_FALSE(dataSet.isOpened());
  dataSet.clearRole(in);
  EXPECT_TRUE(provider->deleteMacro(macro));
  EXPECT_TRUE(
      errorOf([&] { dataSet.openAllVariables(); })
          .contains(text("Error when accessing macro variable name 'M' and id '%1'.\nReason: ")
                        .arg(macro)));
  ASSERT_EQ(4, messages.texts.size());
  EXPECT_EQ(text("NgdADataSet::openAllVariables error: dataset is:"), messages.texts[0]);
  EXPECT_TRUE(messages.texts[1].startsWith(text("DataSetPoints: ")));
}

TEST(NgdADataSet, SelectionThatCannotBeReadIsReported)
{
  class Provider : public NbpMemoryProviderPointsW
  {
  public:
    Provider() : NbpMemoryProviderPointsW(NbgEDimension::DIM_1D, 2) {}
    bool openVariable(const QString &id, Nbd::EAccessType access) override
    {
      return id != getSelectionId() && NbpMemoryProviderPointsW::openVariable(id, access);
    }
  };
  const auto provider = QSharedPointer<Provider>::create();
  const QString id = provider->addVariable(text("Sel"), std::vector<bool>{true, false});
  ASSERT_TRUE(provider->setSelectionId(id));
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  PrintedMessages messages;
  EXPECT_TRUE(
      errorOf([&] {
        dataSet.openAllVariables();
      }).contains(text("Error when accessing variable name 'Sel' and id '%1'.\nReason: ").arg(id)));
  EXPECT_FALSE(dataSet.isOpened());
}
