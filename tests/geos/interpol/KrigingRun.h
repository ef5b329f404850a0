#pragma once

#include "basic/data/NbdVariableDouble.h"
#include "basic/interval/NbiIntervalIntSmall.h"
#include "basic/provider/NbpMemoryProviderGridW.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/interpol/NgcKriging.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmVModel.h"

#include <cmath>
#include <vector>

namespace krigingtest {

/// A kriging whose buffers have a size of the test's choice.
class SizedKriging : public NgcKriging
{
public:
  /// 0 leaves the size to the calculator.
  explicit SizedKriging(int samplesPerBuffer = 0)
      : NgcKriging(QStringLiteral("KRIGING")), _samplesPerBuffer(samplesPerBuffer)
  {
  }
  ~SizedKriging() override { _finish(); }

  int getNBuffers() const { return _nBuffers; }

protected:
  void _initBufferManager() override
  {
    if (_samplesPerBuffer > 0)
      _getBufferManager()->setNSamplesPerBuffer(_samplesPerBuffer);
    else
      NgcKriging::_initBufferManager();
    _nBuffers = _getBufferManager()->getNBuffers();
  }

private:
  int _samplesPerBuffer;
  int _nBuffers = 0;
};

/// Nugget and one spherical structure of practical ranges `ranges`.
inline NgmVModel sphericalModel(double nugget, double sill, const NbgVector3D &ranges,
                                const NbgRotation &rotation = NbgRotation())
{
  NgmVModel model(1);
  model.setNugget(0, 0, nugget);
  const int structure = model.addStructure(QStringLiteral("Spherical"), sill);
  model.setRanges(structure, ranges);
  model.setRotation(structure, rotation);
  return model;
}

/// Samples in the plane with the variable "z".
inline QSharedPointer<NbpMemoryProviderPointsW> samples(const std::vector<double> &x,
                                                        const std::vector<double> &y,
                                                        const std::vector<double> &z)
{
  auto provider =
      QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_2D, qint64(x.size()));
  provider->addXVariable(x);
  provider->addYVariable(y);
  provider->addVariable(QStringLiteral("z"), z);
  return provider;
}

inline NgdDataSetPoints input(const QSharedPointer<NbpMemoryProviderPointsW> &provider)
{
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  dataSet.assignVariable(Nbd::Role::V, provider->getIdFromName(QStringLiteral("z")));
  return dataSet;
}

/// Adds the outputs "estimate", "variance" and "stdev" to a provider and binds them.
template <class DataSet, class Provider>
DataSet output(const QSharedPointer<Provider> &provider)
{
  DataSet dataSet;
  dataSet.setDataProvider(provider);
  const std::pair<QString, QString> outputs[] = {{Nbd::Role::V, QStringLiteral("estimate")},
                                                 {Nbd::Role::VARIANCE, QStringLiteral("variance")},
                                                 {Nbd::Role::STDEV, QStringLiteral("stdev")}};
  for (const auto &[role, name] : outputs) {
    QString id = provider->getIdFromName(name);
    if (id.isEmpty())
      id = provider->addEmptyVariableSimple(name, Nbd::TYPE_DOUBLE);
    dataSet.assignVariable(role, id);
  }
  return dataSet;
}

/// All values of a grid variable, by rank.
inline std::vector<double> gridValues(const NbpMemoryProviderGridW &provider, const QString &name)
{
  const NbgGeomGrid &geometry = provider.getGridGeometry();
  const NbgIntVector3D n = geometry.getNodesNumber();
  NbdVariableDouble values;
  values.resizeAndFill(int(geometry.getGridSize()));
  provider.readGrid(provider.getIdFromName(name), NbiIntervalIntSmall::fromLength(n.x()),
                    NbiIntervalIntSmall::fromLength(n.y()), NbiIntervalIntSmall::fromLength(n.z()),
                    values);
  const double *array = values.getArrayConst();
  return std::vector<double>(array, array + values.getNValues());
}

}  // namespace krigingtest
