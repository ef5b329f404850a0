#include "basic/data/NbdDataPoints.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableSelection.h"

#include <algorithm>

namespace {

const QString &coordinateRole(int axis)
{
  return axis == 0 ? Nbd::Role::X : axis == 1 ? Nbd::Role::Y : Nbd::Role::Z;
}

}  // namespace

NbdDataPoints::NbdDataPoints() = default;
NbdDataPoints::~NbdDataPoints() = default;

int NbdDataPoints::getNSamples() const
{
  return getDataTableConst().getNSamples();
}

NbgVector3D NbdDataPoints::getLocation(int position) const
{
  return {getCoord(position, 0), getCoord(position, 1), getCoord(position, 2)};
}

void NbdDataPoints::getLocations(int first, int n, double *x, double *y, double *z) const
{
  double *const out[3] = {x, y, z};
  for (int axis = 0; axis < 3; ++axis) {
    const NbdVariableDouble *column = axis < getNDimensions() ? getCoordinates(axis) : nullptr;
    if (column)
      std::copy_n(column->getArrayConst() + first, n, out[axis]);
    else
      std::fill_n(out[axis], n, 0.);
  }
}

NbdDataPoints *NbdDataPoints::makeCopy() const
{
  return new NbdDataPoints(*this);
}

void NbdDataPoints::ensureCoordinates()
{
  for (int axis = 0; axis < 3; ++axis) {
    if (getCoordinates(axis))
      continue;
    const QString &role = coordinateRole(axis);
    getDataTable().createVariableNumeric(role, NbdVariableDetails(role))->setAllValues(0.);
  }
}

double NbdDataPoints::getCoord(int position, int axis) const
{
  const NbdVariableDouble *column = axis < getNDimensions() ? getCoordinates(axis) : nullptr;
  return column ? column->getValueAsType(position) : 0.;
}

NbdVariableDouble *NbdDataPoints::getCoordinates(int axis) const
{
  return getDataTableConst().getVarDouble(coordinateRole(axis), 0);
}

void NbdDataPoints::setCoordValue(int position, int axis, double value)
{
  getDataTable().getVarDoubleRef(coordinateRole(axis), 0).setValue(position, value);
}

void NbdDataPoints::setCoordValues(int position, const NbgVector3D &location)
{
  for (int axis = 0; axis < 3; ++axis)
    if (NbdVariableDouble *column = getCoordinates(axis))
      column->setValue(position, location[axis]);
}

int NbdDataPoints::appendSample(const NbgVector3D &location)
{
  const int position = getNSamples();
  appendSamples(1);
  setCoordValues(position, location);
  return position;
}

void NbdDataPoints::appendSamples(int count)
{
  getDataTable().appendSamples(count);
  _samplesChanged();
}

void NbdDataPoints::appendSamples(const NbdDataPoints &other)
{
  const int nOwn = getNSamples();
  const int nOther = other.getNSamples();
  const bool someUnselected = getSelection() || other.getSelection();
  NbdVariableSelection selection;
  if (someUnselected) {
    selection.resizeAndFill(nOwn + nOther);
    for (int position = 0; position < nOwn; ++position)
      selection.setBoolValue(position, isSelected(position));
    for (int position = 0; position < nOther; ++position)
      selection.setBoolValue(nOwn + position, other.isSelected(position));
  }
  getDataTable().appendSamples(other.getDataTableConst());
  _samplesChanged();
  if (someUnselected)
    setSelection(selection);
}

void NbdDataPoints::clearSamples()
{
  getDataTable().clearSamples();
  clearSelection();
}

void NbdDataPoints::deleteVariables(const QStringList &roles)
{
  for (const QString &role : roles)
    while (getDataTable().hasRole(role))
      getDataTable().deleteVariable(role, 0);
}

double NbdDataPoints::getMeanDistanceFromTarget(const NbgVector3D &target) const
{
  if (getNSamples() == 0)
    return NbbGlobal::D_FFFF;
  double sum = 0.;
  for (int position = 0; position < getNSamples(); ++position)
    sum += (getLocation(position) - target).norm();
  return sum / getNSamples();
}
