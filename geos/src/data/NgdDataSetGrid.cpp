#include "geos/data/NgdDataSetGrid.h"

#include "basic/base/NbbDebug.h"
#include "basic/data/NbdAVariable.h"
#include "basic/data/NbdDataGrid.h"
#include "basic/data/NbdDataGridSampled.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgBox.h"
#include "basic/interval/NbiIntervalIntLargeDisjoint.h"
#include "basic/provider/NbpIProviderGridW.h"
#include "data/private/NgdGridBorder.h"

NgdDataSetGrid::NgdDataSetGrid() = default;

void NgdDataSetGrid::setDataProvider(QSharedPointer<NbpIProviderR> provider)
{
  const auto grid = provider.dynamicCast<NbpIProviderGridR>();
  if (provider && !grid)
    NBE_FAIL(QStringLiteral("provider is not a grid provider"));
  _setDataProvider(provider);
  _geometry = grid->getGridGeometry();

  if (grid->hasSelection() && grid->getSelectionId().isEmpty()) {
    NgdVariableDescriptor selection(QStringLiteral("Memory selection for grid dataset"));
    selection.setContext(MEMORY_SELECTION_CONTEXT);
    selection.setVariableType(Nbd::TYPE_BOOLEAN);
    _append(Nbd::Role::SELECTION, selection);
  }
}

const NbpIProviderGridR &NgdDataSetGrid::_getGridProvider() const
{
  return dynamic_cast<const NbpIProviderGridR &>(_requireProvider());
}

qint64 NgdDataSetGrid::getNSamples() const
{
  return getDataProvider() ? getDataProvider()->getSampleCount() : 0;
}

void NgdDataSetGrid::updateBoundingBox(NbgBox &box) const
{
  _requireProvider().updateBoundingBox(box);
}

NgdBufferManagerGrid *NgdDataSetGrid::createBufferManager() const
{
  return new NgdBufferManagerGrid(*this);
}

void NgdDataSetGrid::loadInBuffer(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                                  const NbiIntervalIntSmall &k, NbdDataGrid &buffer) const
{
  _requireOpened();
  if (getNSamples() == 0)
    NBE_FAIL(QStringLiteral("empty dataset."));
  if (i.isEmpty() || j.isEmpty() || k.isEmpty() ||
      !_geometry.isIjkValid(i.getLower(), j.getLower(), k.getLower()) ||
      !_geometry.isIjkValid(i.getUpper(), j.getUpper(), k.getUpper()))
    NBE_FAIL(QStringLiteral("Invalid interval given"));

  const NbpIProviderGridR &provider = _getGridProvider();
  buffer.setBlock(_geometry, i, j, k);
  buffer.setNDimensions(getNDimensions());
  _loadColumns(buffer, [&](const QString &id, NbdAVariable &variable) {
    return provider.readGrid(id, i, j, k, variable);
  });
  _loadSelection(i, j, k, buffer);
}

void NgdDataSetGrid::_loadSelection(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                                    const NbiIntervalIntSmall &k, NbdDataGrid &buffer) const
{
  const NbpIProviderGridR &provider = _getGridProvider();
  buffer.clearSelection();
  if (!provider.hasSelection())
    return;
  NbdVariableSelection selection;
  if (!provider.readGridSelection(i, j, k, selection))
    NBE_FAIL(QStringLiteral("Error when reading the selection.\nReason: %1.")
                 .arg(provider.getLastError()));
  buffer.setSelection(selection);
  _fillMemorySelection(selection, buffer);
}

void NgdDataSetGrid::_fillMemorySelection(const NbdVariableSelection &selection,
                                          NbdAData &buffer) const
{
  for (const NgdVariableDescriptor &descriptor : getVariableDescriptors(Nbd::Role::SELECTION)) {
    NbdAVariable *column =
        buffer.getDataTable().getVarByRoleAndName(Nbd::Role::SELECTION, descriptor.getName());
    if (descriptor.getContext() == MEMORY_SELECTION_CONTEXT && column)
      column->copyValuesFrom(selection, 0, 0, selection.getNValues());
  }
}

void NgdDataSetGrid::loadWholeGrid(NbdDataGrid &buffer) const
{
  const NbgIntVector3D nodes = _geometry.getNodesNumber();
  loadInBuffer(NbiIntervalIntSmall::fromLength(nodes.x()),
               NbiIntervalIntSmall::fromLength(nodes.y()),
               NbiIntervalIntSmall::fromLength(nodes.z()), buffer);
}

void NgdDataSetGrid::loadExtendedInBuffer(const NbiIntervalIntSmall &i,
                                          const NbiIntervalIntSmall &j,
                                          const NbiIntervalIntSmall &k,
                                          const NbgIntVector3D &border,
                                          NbdDataGridExtended &buffer) const
{
  buffer.setBlock(_geometry, i, j, k, border);
  _loadWithBorder(buffer, BORDER_UNDEFINED);
}

void NgdDataSetGrid::loadSampledInBuffer(NbdDataGridSampled &buffer, BorderOption option) const
{
  _loadWithBorder(buffer, option);
}

void NgdDataSetGrid::loadSampledInBuffer(NbdDataGridSampled &buffer) const
{
  _loadWithBorder(buffer, _borderOption);
}

void NgdDataSetGrid::_loadWithBorder(NbdDataGridExtended &buffer, BorderOption option) const
{
  _requireOpened();
  buffer.setNDimensions(getNDimensions());
  buffer.setResizedTo(buffer.getNSamples());
  const NgdGridBorder source(buffer, option);
  const NbpIProviderGridR &provider = _getGridProvider();
  NbdVariableDouble values;
  _loadColumns(buffer, [&](const QString &id, NbdAVariable &variable) {
    if (variable.isMultiRealizations())
      NBE_FAIL(QStringLiteral("Multi variables Not implemented"));
    if (!variable.isNumeric())
      NBE_FAIL(QStringLiteral("Non numeric variables Not implemented"));
    values.resizeAndFill(source.getBlockLength());
    if (!source.isEmpty() &&
        !provider.readGrid(id, source.getI(), source.getJ(), source.getK(), values))
      return false;
    source.scatter(values.getArrayConst(), static_cast<NbdAVariableNumeric &>(variable));
    return true;
  });
  NgdGridBorder::setLocations(buffer);
  _loadSelectionWithBorder(buffer, option);
}

void NgdDataSetGrid::_loadSelectionWithBorder(NbdDataGridExtended &buffer,
                                              BorderOption option) const
{
  const NgdGridBorder source(buffer, option);
  const NbpIProviderGridR &provider = _getGridProvider();
  NbdVariableSelection block, selection;
  block.resizeAndFill(source.getBlockLength());
  if (!source.isEmpty() &&
      !provider.readGridSelection(source.getI(), source.getJ(), source.getK(), block))
    NBE_FAIL(QStringLiteral("Error when reading the selection.\nReason: %1.")
                 .arg(provider.getLastError()));
  NbdVariableDouble flags;
  flags.resizeAndFill(block.getNValues());
  flags.copyValuesFrom(block, 0, 0, block.getNValues());
  selection.resizeAndFill(buffer.getNSamples());
  source.scatter(flags.getArrayConst(), selection);
  buffer.setSelection(selection);
  _fillMemorySelection(selection, buffer);
}

void NgdDataSetGrid::saveFromBuffer(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                                    const NbiIntervalIntSmall &k, const NbdDataGrid &buffer) const
{
  _requireOpened();
  const auto writer = getDataProvider().dynamicCast<NbpIProviderGridW>();
  if (!writer)
    NBE_FAIL(QStringLiteral("current provider is not valid for writing!"));
  _saveColumns(buffer, [&](const QString &id, NbdAVariable &variable) {
    return writer->writeGrid(id, i, j, k, variable);
  });
}

void NgdDataSetGrid::saveExtendedFromBuffer(const NbdDataGridExtended &buffer) const
{
  _requireOpened();
  const auto writer = getDataProvider().dynamicCast<NbpIProviderGridW>();
  if (!writer)
    NBE_FAIL(QStringLiteral("current provider is not valid for writing!"));
  QVector<int> positions;
  for (int position = 0; position < buffer.getNSamples(); ++position) {
    if (buffer.isInBlock(position))
      positions << position;
  }
  _saveColumns(buffer, [&](const QString &id, NbdAVariable &variable) {
    const std::unique_ptr<NbdAVariable> block = variable.clone();
    block->extract(positions.constData(), positions.size());
    return writer->writeGrid(id, buffer.getParentIntervalI(), buffer.getParentIntervalJ(),
                             buffer.getParentIntervalK(), *block);
  });
}

NbiIntervalIntLargeDisjoint NgdDataSetGrid::_tuneLoadInBufferInterval(
    const NbiIntervalIntLargeDisjoint &ranks) const
{
  const NbpIProviderGridR &provider = _getGridProvider();
  if (!provider.isSparse())
    return ranks;
  NbiIntervalIntLargeDisjoint defined;
  for (int rank = 0; rank < ranks.count(); ++rank)
    defined.merge(provider.getDefinedRanks(ranks.at(rank)));
  return defined;
}

void NgdDataSetGrid::deselectUndefinedCells(NbdDataGrid &buffer) const
{
  const int n = buffer.getNSamples();
  if (!_getGridProvider().isSparse() || n == 0)
    return;
  const NbiIntervalIntLarge ranks(_geometry.getRankFromIJK(buffer.getIJK(0)),
                                  _geometry.getRankFromIJK(buffer.getIJK(n - 1)));
  const NbiIntervalIntLargeDisjoint defined = _getGridProvider().getDefinedRanks(ranks);
  NbdVariableSelection selection;
  selection.resizeAndFill(n);
  for (int position = 0; position < n; ++position) {
    const qint64 rank = _geometry.getRankFromIJK(buffer.getIJK(position));
    selection.setBoolValue(position, buffer.isSelected(position) && defined.isIncluded(rank));
  }
  buffer.setSelection(selection);
}

void NgdDataSetGrid::saveFromBufferInParent(const NbdAData &buffer) const
{
  const auto *grid = dynamic_cast<const NbdDataGrid *>(&buffer);
  if (!grid)
    NBE_FAIL(QStringLiteral("Passed argument is meant to be NbdDataGrid"));
  if (grid->getParentIntervalI().isValid() && grid->getParentIntervalJ().isValid())
    saveFromBuffer(grid->getParentIntervalI(), grid->getParentIntervalJ(),
                   grid->getParentIntervalK(), *grid);
  else
    NbbDebug::printWarning(
        QStringLiteral("NgdDataSetGrid::saveFromBufferInParent: warning empty or invalid interval "
                       "in X or Y."));
}

QString NgdDataSetGrid::debug(int level) const
{
  return QStringLiteral("DataSetGrid: Nb Dim : %1 / Nb Samples : %2 /")
             .arg(getNDimensions())
             .arg(getNSamples()) +
         NgdADataSet::debug(level);
}
