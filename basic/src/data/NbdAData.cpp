#include "basic/data/NbdAData.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgBox.h"

#include <algorithm>
#include <atomic>
#include <numeric>

/// The positions, and the number of samples for which they hold.
struct NbdAData::SelectedPositions
{
  int nSamples;
  std::vector<int> positions;
};

NbdAData::NbdAData() = default;

NbdAData::NbdAData(const NbdAData &other)
    : NbbIDebuggable(other),
      _table(other._table),
      _nDimensions(other._nDimensions),
      _selection(other._selection ? std::make_unique<NbdVariableSelection>(*other._selection)
                                  : nullptr),
      _macroRanks(other._macroRanks),
      _selectedPositions(std::atomic_load(&other._selectedPositions))
{
}

NbdAData &NbdAData::operator=(const NbdAData &other)
{
  if (this == &other)
    return *this;
  NbdDataTable table(other._table);
  auto selection =
      other._selection ? std::make_unique<NbdVariableSelection>(*other._selection) : nullptr;
  _table = std::move(table);
  _nDimensions = other._nDimensions;
  _selection = std::move(selection);
  _macroRanks = other._macroRanks;
  _selectedPositions = std::atomic_load(&other._selectedPositions);
  return *this;
}

NbdAData::~NbdAData() = default;

qint64 NbdAData::getSampleNumber(int position) const
{
  const NbdVariableInt64 *numbers = getVariableSN();
  return numbers ? numbers->getValueAsType(position) : NbbGlobal::I64_FFFF;
}

void NbdAData::setSelection(const NbdVariableSelection &selection)
{
  if (selection.getNValues() != getNSamples())
    NBE_FAIL(QStringLiteral("selection.getNValues() == getNSamples()"));
  _selection = std::make_unique<NbdVariableSelection>(selection);
  _selectedPositions.reset();
}

void NbdAData::clearSelection()
{
  _selection.reset();
  _selectedPositions.reset();
}

bool NbdAData::isSelected(int position) const
{
  // Samples added through the table, unknown to the selection, take part.
  return !_selection || position >= _selection->getNValues() || _selection->getBoolValue(position);
}

int NbdAData::getNSelected() const
{
  return _selection ? int(getSelectedPositions().size()) : getNSamples();
}

const std::vector<int> &NbdAData::getSelectedPositions() const
{
  const int nSamples = getNSamples();
  std::shared_ptr<const SelectedPositions> current = std::atomic_load(&_selectedPositions);
  if (current && current->nSamples == nSamples)
    return current->positions;

  auto made = std::make_shared<SelectedPositions>();
  made->nSamples = nSamples;
  if (_selection) {
    for (int position = 0; position < nSamples; ++position)
      if (isSelected(position))
        made->positions.push_back(position);
  } else {
    made->positions.resize(nSamples);
    std::iota(made->positions.begin(), made->positions.end(), 0);
  }
  // Of several threads that come first together, one puts in what all of them then use.
  std::shared_ptr<const SelectedPositions> stored = made;
  if (std::atomic_compare_exchange_strong(&_selectedPositions, &current, stored))
    return made->positions;
  return current->positions;
}

NbdAVariable *NbdAData::getVariable(const QString &role, int index) const
{
  return _table.getVar(role, index);
}

NbdAVariableNumeric *NbdAData::getVariableNumeric(const QString &role, int index) const
{
  return _table.getVarNumeric(role, index);
}

NbdVariableInt64 *NbdAData::getVariableSN() const
{
  return _table.getVarInt64(Nbd::Role::SN, 0);
}

void NbdAData::setResizedTo(int nSamples)
{
  _table.setNSamples(nSamples);
  _samplesChanged();
}

NbdDataSimpleIterator NbdAData::createSimpleIterator() const
{
  return NbdDataSimpleIterator(*this);
}

void NbdAData::updateBoundingBox(NbgBox &box) const
{
  constexpr int BLOCK = 512;
  double x[BLOCK], y[BLOCK], z[BLOCK];
  const int n = getNSamples();
  for (int first = 0; first < n; first += std::min(BLOCK, n - first)) {
    const int count = std::min(BLOCK, n - first);
    getLocations(first, count, x, y, z);
    for (int k = 0; k < count; ++k) {
      if (isSelected(first + k))
        box.extendWith(NbgVector3D(x[k], y[k], z[k]));
    }
  }
}

QString NbdAData::debug(int level) const
{
  return toString() + QStringLiteral("\n") + _table.debug(level);
}

QString NbdAData::toString() const
{
  return QStringLiteral("%1 samples, %2 selected, %3 variables")
      .arg(getNSamples())
      .arg(getNSelected())
      .arg(_table.getNVariables());
}

void NbdAData::_samplesChanged()
{
  _selectedPositions.reset();
  if (!_selection)
    return;
  _selection->resizeAndFill(getNSamples());
}

void NbdAData::_insertIntoSelection(int position, int count)
{
  if (!_selection)
    return;
  _selection->insertUndefinedValues(position, count);
  for (int inserted = position; inserted < position + count; ++inserted)
    _selection->setBoolValue(inserted, true);
}

void NbdAData::_removeFromSelection(int position)
{
  if (_selection)
    _selection->removeValue(position);
}

NbdDataSimpleIterator::NbdDataSimpleIterator(const NbdAData &data)
    : _positions(&data.getSelectedPositions())
{
}
