#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/base/NbbIDebuggable.h"
#include "basic/calc/NbcStatMono.h"
#include "geos/matrix/NgmMatrix.h"

#include <QList>
#include <QStringList>

#include <vector>

/// Statistics of n named variables: one record per variable, one per ordered pair of variables
/// (variable i over the samples where i and j are both defined), and the correlation matrix.
///
/// A value: copies are independent.
class NgmMultivariateStatistics : public NbbASerializable, public NbbIDebuggable
{
public:
  NgmMultivariateStatistics();

  /// Empty records and the identity as correlation matrix. Names are distinct.
  explicit NgmMultivariateStatistics(const QStringList &names);

  NgmMultivariateStatistics(const NgmMultivariateStatistics &other);
  NgmMultivariateStatistics &operator=(const NgmMultivariateStatistics &other);
  ~NgmMultivariateStatistics() override;

  int getNVariables() const { return _names.size(); }

  /// Replaces the names; their number must stay.
  void updateNames(const QStringList &names);
  const QString &getVariableName(int index) const;
  const QStringList &getVariableNames() const { return _names; }

  NbcStatMono &getUnivariateStats(int i) { return _record(i, i); }
  const NbcStatMono &getConstUnivariateStats(int i) const { return _record(i, i); }
  NbcStatMono &getUnivariateStats(const QString &name);
  const NbcStatMono &getConstUnivariateStats(const QString &name) const;

  /// Variable i over the samples where i and j are both defined.
  NbcStatMono &getBivariateStats(int i, int j) { return _record(i, j); }
  const NbcStatMono &getConstBivariateStats(int i, int j) const { return _record(i, j); }
  NbcStatMono &getBivariateStats(const QString &name1, const QString &name2);
  const NbcStatMono &getConstBivariateStats(const QString &name1, const QString &name2) const;

  /// Correlation coefficients; setting (i, j) sets (j, i) too.
  void setRho(int i, int j, double rho) { _rho.setElement(i, j, rho); }
  double getRho(int i, int j) const { return _rho(i, j); }
  double getCorrelationCoefficient(const QString &name1, const QString &name2) const;

  /// Element (i, j) = sigma_i sigma_j rho(i, j), 0 where one of them is undefined. The standard
  /// deviations are those of each variable alone, or (heterotopic) those of the pair's records.
  NgmMatrix getVarianceCovarianceMatrix() const;
  NgmMatrix getVarianceCovarianceMatrixHeterotopic() const;

  /// Column vectors of the univariate values.
  NgmMatrix getAllMinima() const;
  NgmMatrix getAllMaxima() const;
  NgmMatrix getAllMeans() const;
  NgmMatrix getAllVariances() const;

  /// The statistics of some variables, in the given order; an empty object for an empty list, an
  /// unknown name or an impossible index.
  NgmMultivariateStatistics extractMultiVariableStats(const QStringList &names) const;
  NgmMultivariateStatistics extractMultiVariableStats(const QList<int> &indices) const;

  QString debug(int level) const override;

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override;
  QString _displayName() const override;

private:
  NbcStatMono &_record(int i, int j) { return _stats[std::size_t(i) * _names.size() + j]; }
  const NbcStatMono &_record(int i, int j) const
  {
    return _stats[std::size_t(i) * _names.size() + j];
  }
  void _checkMagic(QDataStream &stream, int line) const;
  int _indexOf(const QString &name) const;
  void _indicesOf(const QString &name1, const QString &name2, int &i, int &j) const;
  NgmMatrix _columnOf(double (NbcStatBasic::*getter)() const) const;

  QStringList _names;
  std::vector<NbcStatMono> _stats;
  NgmMatrix _rho;
};
