#include "geos/stats/NgcVariogramOnSimu.h"

#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "basic/provider/NbpIProviderR.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/stats/NgcVariogramOnGrid.h"
#include "geos/vmodel/NgmVModel.h"

#include <QObject>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

const QLatin1String ID_PREFIX("SIMULATION_");
constexpr int MAXIMUM_LAGS = 1000;

/// Length of the part of a line along `direction`, of length 1, between the sides of a box whose
/// edges are `sizes` long.
double crossingLength(const NbgVector3D &direction, const NbgVector3D &sizes, int nAxes)
{
  double length = NbbGlobal::D_BIG_POSITIVE;
  for (int axis = 0; axis < nAxes; ++axis) {
    const double component = std::fabs(direction[axis]);
    if (component > 1e-9)
      length = std::min(length, sizes[axis] / component);
  }
  return length;
}

}  // namespace

/// The mean of the variograms of several realizations.
class NgcVariogramOnSimu::Mean
{
public:
  void add(const NgmVariogramExpData &results)
  {
    if (_nAdded++ == 0)
      _start(results);
    std::size_t row = 0;
    _forEachTable([&](int dir, int i, int j) {
      const QVector<qint64> nPairs = results.getNumberOfPairs(dir, false, i, j);
      const QVector<double> distances = results.getDistances(dir, false, i, j);
      const QVector<double> values = results.getVarioColumn(dir, CURVE, i, j);
      for (int lag = 0; lag < values.size(); ++lag, ++row) {
        if (nPairs[lag] == 0)
          continue;
        _rows[row].nPairs += nPairs[lag];
        _rows[row].distance = distances[lag];
        _rows[row].sum += values[lag];
      }
    });
  }

  NgmVariogramExpData get() const
  {
    NgmVariogramExpData mean = _mean;
    std::size_t row = 0;
    _forEachTable([&](int dir, int i, int j) {
      const int n = mean.getNLags(dir);
      std::vector<double> distances, values;
      std::vector<long long> nPairs;
      for (int lag = 0; lag < n; ++lag, ++row) {
        distances.push_back(_rows[row].distance);
        // A lag with pairs somewhere must not look like one without.
        nPairs.push_back((_rows[row].nPairs + _nAdded - 1) / _nAdded);
        values.push_back(_rows[row].sum / _nAdded);
      }
      mean.setDistances(dir, false, i, j, n, distances.data());
      mean.setNumberOfPairs(dir, false, i, j, n, nPairs.data());
      mean.setVarioValues(dir, CURVE, i, j, n, values.data());
    });
    return mean;
  }

private:
  static constexpr NgmEVarioExp::EValue CURVE = NgmEVarioExp::EValue::VARIOGRAM;

  struct Row
  {
    long long nPairs = 0;
    double distance = 0.;
    double sum = 0.;
  };

  template <class Action>
  void _forEachTable(Action action) const
  {
    for (int dir = 0; dir < _mean.getNDirections(); ++dir) {
      for (int i = 0; i < _mean.getNVariables(); ++i) {
        for (int j = i; j < _mean.getNVariables(); ++j)
          action(dir, i, j);
      }
    }
  }

  void _start(const NgmVariogramExpData &results)
  {
    _mean = results;
    std::size_t nRows = 0;
    _forEachTable([&](int dir, int, int) { nRows += results.getNLags(dir); });
    _rows.assign(nRows, Row());
  }

  NgmVariogramExpData _mean;  // directions and groups of the first, later values
  std::vector<Row> _rows;
  int _nAdded = 0;
};

NgcVariogramOnSimu::NgcVariogramOnSimu() = default;

NgcVariogramOnSimu::~NgcVariogramOnSimu()
{
  _finish();
}

void NgcVariogramOnSimu::setInputDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::INPUT, dataSet);
}

void NgcVariogramOnSimu::setVModel(const NgmVModel &model)
{
  _model = std::make_unique<NgmVModel>(model);
}

void NgcVariogramOnSimu::setRotation(const NbgRotation &rotation)
{
  _rotation = std::make_unique<NbgRotation>(rotation);
}

const QList<NgmVariogramExpData> &NgcVariogramOnSimu::getResults() const
{
  if (!isCompleted() || _results.isEmpty())
    throw NbeProgrammingError(
        QStringLiteral("NgcVariogramOnSimu::getResults: no available variograms"));
  return _results;
}

void NgcVariogramOnSimu::_checkDatasets()
{
  _getGrid();
}

void NgcVariogramOnSimu::_addRuntimeConstraints()
{
  _addMacroRule(Nbd::Dataset::INPUT, Nbd::Role::V, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 1, -1);
}

void NgcVariogramOnSimu::_preProcessing()
{
  _setProgressMessageDetail(QObject::tr("Initializing..."));
  if (!_model)
    throw NbeProgrammingError(QStringLiteral("NgcVariogramOnSimu: no model defined."));
  _results.clear();
  _mean = std::make_unique<Mean>();
  _reset();
  _realizations = _readRealizations();
  for (int rank = 0; rank < _realizations.size(); ++rank) {
    auto *calculator = new NgcVariogramOnGrid;
    _registerProgressable(
        ID_PREFIX + QString::number(rank), calculator,
        QObject::tr("Variogram on Simulation #%1").arg(_realizations[rank].toString()), 1);
    _addDirections(*calculator);
  }
  _setProgressMessageDetail(QObject::tr("Calculating Variograms..."));
}

bool NgcVariogramOnSimu::_prepareProgressable(const QString &id)
{
  const NbdMacroIndex &realization = _realizations[id.mid(ID_PREFIX.size()).toInt()];
  const QStringList macros = _getGrid().getVariableIds(Nbd::Role::V);
  NgdDataSetGrid grid = _getGrid();
  grid.clearRole(Nbd::Role::V);
  for (const QString &macro : macros)
    grid.assignVariable(Nbd::Role::V, grid.getDataProvider()->getRealizationId(macro, realization));
  _getCalculator(id).setInputDataSet(grid);
  return true;
}

void NgcVariogramOnSimu::_progressableFinished(const QString &id)
{
  _results << _getCalculator(id).getResults(0);
  _mean->add(_results.last());
}

void NgcVariogramOnSimu::_postProcessing()
{
  _setProgressMessageDetail(QObject::tr("Create Mean Variograms..."));
  _results << _mean->get();
}

const NgdDataSetGrid &NgcVariogramOnSimu::_getGrid() const
{
  const auto *grid = dynamic_cast<const NgdDataSetGrid *>(_getDataset(Nbd::Dataset::INPUT));
  if (!grid)
    throw NbeProgrammingError(
        QStringLiteral("NgcVariogramOnSimu::_checkDatasets: Input Dataset must be a grid"));
  return *grid;
}

NgcVariogramOnGrid &NgcVariogramOnSimu::_getCalculator(const QString &id) const
{
  return static_cast<NgcVariogramOnGrid &>(*_getProgressable(id));
}

QList<NbdMacroIndex> NgcVariogramOnSimu::_readRealizations() const
{
  const NgdDataSetGrid &grid = _getGrid();
  const QStringList macros = grid.getVariableIds(Nbd::Role::V);
  QList<NbdMacroIndex> realizations;
  if (!grid.getDataProvider()->getMacroIndices(macros.first(), realizations) ||
      realizations.isEmpty())
    throw NbeUserError(QObject::tr("There is no realization in the input grid."));
  for (const QString &macro : macros) {
    QList<NbdMacroIndex> others;
    if (!grid.getDataProvider()->getMacroIndices(macro, others) || others != realizations)
      throw NbeUserError(QObject::tr("The variables do not have the same realizations."));
  }
  return realizations;
}

// Directions.

NbgRotation NgcVariogramOnSimu::_getOrientation() const
{
  return _rotation ? *_rotation : _model->getMajorRotation();
}

void NgcVariogramOnSimu::_addDirections(NgcVariogramOnGrid &calculator) const
{
  const NbgRotation orientation = _getOrientation();
  const NgmEDirectionGroupName &plane = orientation.isAroundZOnly()
                                            ? NgmEDirectionGroupName::HORIZONTAL
                                            : NgmEDirectionGroupName::REF_PLANE;
  calculator.setReferencePlane(orientation);
  _addDirection(calculator, orientation.getAxisX(), plane, 0);
  _addDirection(calculator, orientation.getAxisY(), plane, 0);
  if (!_getGrid().getGeometry().is2D())
    _addDirection(calculator, orientation.getAxisZ(), NgmEDirectionGroupName::NORMAL, 1);
}

void NgcVariogramOnSimu::_addDirection(NgcVariogramOnGrid &calculator, const NbgVector3D &direction,
                                       const NgmEDirectionGroupName &group, int rank) const
{
  const NbgGeomGrid &geometry = _getGrid().getGeometry();
  const int nAxes = geometry.is2D() ? 2 : 3;
  NbgBox box = _box;
  if (!box.isValid())
    geometry.updateBoundingBox(box);
  const double lag =
      crossingLength(geometry.getRotation().worldToLocal(direction), geometry.getCellSize(), nAxes);
  const double maximum = 0.5 * crossingLength(direction, box.getSize(), nAxes);
  const double nLags = std::floor(maximum / lag + 1e-9);
  calculator.addDirection(direction, lag, int(std::clamp(nLags, 1., double(MAXIMUM_LAGS))),
                          QMap<int, QString>{{rank, group.getLabel()}});
}
