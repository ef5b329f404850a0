#include "geos/interpol/NgmBlock.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/error/NbeAssertion.h"
#include "geos/simu/NgmDistributionUniformD.h"

#include <memory>

NbgIntVector3D NgmBlock::getDiscretizationPointsNumber() const
{
  return _calcPointsNumber();
}

NbgVector3D NgmBlock::getDiscretizationStepsSize() const
{
  return _calcStepsSize();
}

NbgVector3D NgmBlock::getSize() const
{
  QString why;
  if (!isSizeDefined(why))
    NBE_FAIL(why);
  return _size;
}

bool NgmBlock::isSizeDefined(QString &why) const
{
  return _isSizeDefined(why);
}

int NgmBlock::getDiscretizationPoints(QVector<NbgVector3D> &points) const
{
  const Cells cells = _calcCells();
  points.resize(int(cells.numbers.product()));
  NbgVector3D *point = points.data();
  for (int i = 0; i < cells.numbers.x(); ++i)
    for (int j = 0; j < cells.numbers.y(); ++j)
      for (int k = 0; k < cells.numbers.z(); ++k)
        *point++ = cells.origin + double(i) * cells.u + double(j) * cells.v + double(k) * cells.w;
  return points.size();
}

void NgmBlock::getRandomPoints(qint64 seed, QVector<NbgVector3D> &points, bool randomW) const
{
  const Cells cells = _calcCells();
  NgmDistributionUniformD uniform{quint64(seed)};
  points.resize(int(cells.numbers.product()));
  NbgVector3D *point = points.data();
  for (int i = 0; i < cells.numbers.x(); ++i)
    for (int j = 0; j < cells.numbers.y(); ++j)
      for (int k = 0; k < cells.numbers.z(); ++k) {
        const double u = uniform.nextR() - 0.5;
        const double v = uniform.nextR() - 0.5;
        const double w = randomW && is3D() ? uniform.nextR() - 0.5 : 0.;
        *point++ = cells.origin + (i + u) * cells.u + (j + v) * cells.v + (k + w) * cells.w;
      }
}

NgmBlock *NgmBlock::getResizedBlock(int index,
                                    const QList<NbdAVariableNumeric *> &sizeVariables) const
{
  auto block = std::make_unique<NgmBlock>(*this);
  if (index >= 0 && !sizeVariables.isEmpty()) {
    const int n = sizeVariables.size();
    if (n != 2 && n != 3)
      NBE_FAIL(QStringLiteral("2 or 3 block sizes are expected."));
    NbgVector3D size;
    for (int axis = 0; axis < n; ++axis)
      size[axis] = sizeVariables[axis]->getValue(index);
    block->setSize(size);
  }
  return block.release();
}

bool NgmBlock::isValid() const
{
  return _check(false);
}

NgmBlock::Cells NgmBlock::_calcCells() const
{
  _check(true);
  const NbgVector3D steps = _calcStepsSize();
  NbgVector3D first = 0.5 * steps - 0.5 * _size;
  if (!is3D())
    first.setZ(0.);
  Cells cells;
  cells.numbers = _calcPointsNumber();
  cells.origin = _rotation.localToWorld(first);
  cells.u = _rotation.localToWorld({steps.x(), 0., 0.});
  cells.v = _rotation.localToWorld({0., steps.y(), 0.});
  cells.w = _rotation.localToWorld({0., 0., steps.z()});
  return cells;
}
