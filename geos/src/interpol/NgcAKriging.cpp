#include "geos/interpol/NgcAKriging.h"

#include "basic/base/NbbHtml.h"
#include "basic/base/NbbMessage.h"
#include "basic/base/NbbUserStringFormats.h"
#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgBox.h"
#include "basic/unit/NbuEUnitClass.h"
#include "geos/data/NgdADataSet.h"
#include "geos/matrix/NgmKrigingSystemDual.h"

#include <QObject>
#include <QStringList>

#include <algorithm>

namespace {

QString locationText(const NbgVector3D &location, int nDimensions)
{
  const NbbStringFormat format = NbbUserStringFormats::getStringFormat(NbuEUnitClass::LENGTH);
  const double coordinates[] = {location.x(), location.y(), location.z()};
  QStringList texts;
  for (int axis = 0; axis < nDimensions; ++axis)
    texts << format.valueToString(coordinates[axis]);
  return texts.join(QStringLiteral(", "));
}

/// `box` holds the targets that are to be estimated from the missing data.
void warnOfMissingData(const NbgBox &box, int nDimensions)
{
  const QString text =
      QObject::tr(
          "No data available when building kriging system for unique neighborhood.\nIf you "
          "use the parcelling, please increase the extension in order to get some input "
          "samples in each parcelling box.<br>") +
      QObject::tr("Parcelling Lower Left Corner: %1<br>")
          .arg(locationText(box.getLowerLeftCorner(), nDimensions)) +
      QObject::tr("Parcelling Upper Right Corner: %1<br>")
          .arg(locationText(box.getUpperRightCorner(), nDimensions));
  NbbMessage::print(text, NbbHtml::WarningColor);
}

}  // namespace

NgcAKriging::NgcAKriging(const QString &key) : NgcAInterpol(key), _model(1)
{
  _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::V, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 1, 1);
  for (const QString &role : {Nbd::Role::V, Nbd::Role::VARIANCE, Nbd::Role::STDEV})
    _addVariableRule(Nbd::Dataset::OUTPUT, role, Nbd::ACCESS_WRITE, Nbd::TYPE_DOUBLE, 0, 1);
}

NgcAKriging::~NgcAKriging() = default;

void NgcAKriging::setVarioModel(const NgmVModel &model)
{
  _model = model;
}

void NgcAKriging::_addRuntimeConstraints()
{
  NgcAInterpol::_addRuntimeConstraints();
  const NgdADataSet &output = *getOutputDataset();
  if (!output.hasVariablesWithRole(Nbd::Role::V) &&
      !output.hasVariablesWithRole(Nbd::Role::VARIANCE) &&
      !output.hasVariablesWithRole(Nbd::Role::STDEV))
    NBE_FAIL(QObject::tr("No output variable to be estimated!"));
}

void NgcAKriging::_preProcessing()
{
  _setModelContext();
}

void NgcAKriging::_preLaunchThreads()
{
  _systemDual.reset();
  if (!isUsingMoving())
    _buildUniqueKrigingSystem();
}

void NgcAKriging::_setModelContext()
{
  _model.setContextNDim(getOutputDataset()->getNDimensions());
  if (_model.getEffectiveIrfDegree() >= 0)
    _model.setContextFieldSize(_calcFieldSize());
}

double NgcAKriging::_calcFieldSize() const
{
  if (!isUsingMoving())
    return getBoundingBox().getDiagonalLength();
  const auto &moving = static_cast<const NgdNeighborhoodMoving &>(getConstNeighborhood());
  const NbgVector3D radii = moving.getMaximumSize();
  const double components[] = {radii.x(), radii.y(), radii.z()};
  double largest = 0.;
  for (int axis = 0; axis < getOutputDataset()->getNDimensions(); ++axis)
    largest = std::max(largest, 2. * components[axis]);
  return largest;
}

void NgcAKriging::_buildUniqueKrigingSystem()
{
  _setProgressMessageDetail(QObject::tr("Building Kriging System..."));
  const NbdDataPoints &data = getAllInputData();
  if (data.getNSamples() == 0) {
    NbgBox targets;
    getOutputDataset()->updateBoundingBox(targets);
    warnOfMissingData(targets, getOutputDataset()->getNDimensions());
    return;
  }
  auto system = std::make_unique<NgmKrigingSystemDual>(data.getNSamples(), 1, false, false, 0);
  // One thread: another factorization, and other bits, come with the parallel path.
  system->buildSystem(_model, *data.getCoordinates(0), *data.getCoordinates(1),
                      *data.getCoordinates(2),
                      data.getDataTableConst().getVarsNumeric(Nbd::Role::V), 1, {});
  _systemDual = std::move(system);
}
