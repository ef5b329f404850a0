#pragma once

#include "KrigingRun.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "geos/interpol/NgmNeighborhoodMoving.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace krigingtest {

using Values = std::vector<double>;

/// Places in the plane.
struct Places
{
  Values x;
  Values y;

  std::size_t size() const { return x.size(); }
};

/// Uniform in a square.
inline Places randomPlaces(std::uint64_t stream, int n, double side)
{
  Places places;
  for (int i = 0; i < n; ++i) {
    places.x.push_back(testsupport::uniform(stream, std::uint64_t(2 * i), 0., side));
    places.y.push_back(testsupport::uniform(stream, std::uint64_t(2 * i + 1), 0., side));
  }
  return places;
}

inline Values randomValues(std::uint64_t stream, int n, double mean = 0.)
{
  Values values;
  for (int i = 0; i < n; ++i)
    values.push_back(mean + testsupport::normal(stream, std::uint64_t(i)));
  return values;
}

/// Samples and targets at places of the plane, with the variables that a test gives them.
class Study
{
public:
  Study(const Places &data, const Places &targets)
      : _data(_provider(data)), _targets(_provider(targets))
  {
    _in.setDataProvider(_data);
    _out.setDataProvider(_targets);
  }

  /// Variables of the samples and of the targets; a name serves several roles.
  void addData(const QString &role, const QString &name, const Values &values)
  {
    _bind(*_data, _in, role, name, values);
  }
  void addTargetData(const QString &role, const QString &name, const Values &values)
  {
    _bind(*_targets, _out, role, name, values);
  }

  /// A variable of the targets that is written, by default named as its role.
  void addOutput(const QString &role, QString name = QString())
  {
    if (name.isEmpty())
      name = role;
    _out.assignVariable(role, _targets->addEmptyVariableSimple(name, Nbd::TYPE_DOUBLE));
  }
  void addOutputs(const QStringList &roles)
  {
    for (const QString &role : roles)
      addOutput(role);
  }

  /// Data sets of the calculator, and one thread.
  void configure(NgcAKriging &kriging) const
  {
    kriging.setInputDataSet(_in);
    kriging.setOutputDataSet(_out);
    kriging.setNThread(1);
  }

  /// Runs to the end.
  void krige(NgcAKriging &kriging) const
  {
    configure(kriging);
    ASSERT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());
  }

  /// The values of a variable of the targets.
  Values get(const QString &name) const
  {
    NbdVariableDouble values;
    values.resizeAndFill(int(_out.getNSamples()));
    _targets->readVariable(_targets->getIdFromName(name),
                           NbiIntervalIntLarge::fromLength(_out.getNSamples()), values, 0);
    const double *array = values.getArrayConst();
    return Values(array, array + values.getNValues());
  }

  NgdDataSetPoints &input() { return _in; }
  NgdDataSetPoints &output() { return _out; }
  QSharedPointer<NbpMemoryProviderPointsW> data() const { return _data; }
  QSharedPointer<NbpMemoryProviderPointsW> targets() const { return _targets; }

private:
  using Provider = NbpMemoryProviderPointsW;

  static QSharedPointer<Provider> _provider(const Places &places)
  {
    auto provider = QSharedPointer<Provider>::create(NbgEDimension::DIM_2D, qint64(places.size()));
    provider->addXVariable(places.x);
    provider->addYVariable(places.y);
    return provider;
  }

  static void _bind(Provider &provider, NgdDataSetPoints &dataSet, const QString &role,
                    const QString &name, const Values &values)
  {
    QString id = provider.getIdFromName(name);
    if (id.isEmpty())
      id = provider.addVariable(name, values);
    dataSet.assignVariable(role, id);
  }

  QSharedPointer<Provider> _data;
  QSharedPointer<Provider> _targets;
  NgdDataSetPoints _in;
  NgdDataSetPoints _out;
};

/// Neighborhood of the `maximum` nearest samples, whatever their distance.
inline NgmNeighborhoodMoving nearestSamples(int maximum)
{
  NgmNeighborhoodMoving neighborhood;
  neighborhood.setEllipseSize(NbgVector3D(1e5, 1e5, 1e5));
  neighborhood.setSectors(1, maximum, false);
  return neighborhood;
}

/// Two variables: nugget and one spherical structure of one range, each with its matrix (11, 12,
/// 22).
inline NgmVModel bivariateModel(const std::array<double, 3> &nugget,
                                const std::array<double, 3> &sills, double range)
{
  const auto matrix = [](const std::array<double, 3> &elements) {
    NgmMatrix symmetric(2, 2, true);
    symmetric.setElement(0, 0, elements[0]);
    symmetric.setElement(0, 1, elements[1]);
    symmetric.setElement(1, 1, elements[2]);
    return symmetric;
  };
  NgmVModel model(2);
  model.setNuggetMatrix(matrix(nugget));
  model.setRangeIsotropic(model.addStructure(QStringLiteral("Spherical"), matrix(sills)), range);
  return model;
}

inline void expectEqual(const Values &values, const Values &expected, double tolerance,
                        const std::string &what = std::string())
{
  ASSERT_EQ(values.size(), expected.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    const bool isDefined = NbbGlobal::isDefined(expected[i]);
    ASSERT_EQ(NbbGlobal::isDefined(values[i]), isDefined) << what << " at " << i;
    if (isDefined) {
      ASSERT_NEAR(values[i], expected[i], tolerance) << what << " at " << i;
    }
  }
}

}  // namespace krigingtest
