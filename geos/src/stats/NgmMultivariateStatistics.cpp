#include "geos/stats/NgmMultivariateStatistics.h"

#include "basic/error/NbeAssertion.h"

#include <QDataStream>

namespace {

constexpr unsigned int CURRENT_VERSION = 170222;
constexpr qint64 MAX_VARIABLES = 999;
constexpr qint64 RECORD_BYTES = 15 * 8;
constexpr double SYMMETRY_TOLERANCE = 1e-10;

void writeRecord(QDataStream &stream, const NbcStatMono &record)
{
  stream << record.getNTotal() << record.getNDefinedNoW() << record.getNDefined()
         << record.getWeight() << record.getMinimumNoW() << record.getMinimum()
         << record.getMaximumNoW() << record.getMaximum() << record.getMean()
         << record.getVariance() << record.getStandardDeviation() << record.getSkewness()
         << record.getKurtosis() << record.getGeometricMean() << record.getHarmonicMean();
}

NbcStatMono readRecord(QDataStream &stream)
{
  qint64 counts[3] = {0, 0, 0};
  double values[12] = {};
  for (qint64 &count : counts)
    stream >> count;
  for (double &value : values)
    stream >> value;

  NbcStatMono record;
  record.setNTotal(counts[0]);
  record.setNDefined(counts[1], counts[2]);
  record.setWeight(values[0]);
  record.setMinimum(values[1], values[2]);
  record.setMaximum(values[3], values[4]);
  record.setMean(values[5]);
  record.setVariance(values[6]);
  record.setStandardDeviation(values[7]);
  record.setSkewness(values[8]);
  record.setKurtosis(values[9]);
  record.setGeometricMean(values[10]);
  record.setHarmonicMean(values[11]);
  return record;
}

NgmMatrix identity(int n)
{
  NgmMatrix matrix(n, n, true);
  matrix.setIdentity();
  return matrix;
}

double covariance(double sigma1, double sigma2, double rho)
{
  const bool defined =
      NbbGlobal::isDefined(sigma1) && NbbGlobal::isDefined(sigma2) && NbbGlobal::isDefined(rho);
  return defined ? sigma1 * sigma2 * rho : 0.;
}

}  // namespace

NgmMultivariateStatistics::NgmMultivariateStatistics() : _rho(0, 0, true) {}

NgmMultivariateStatistics::NgmMultivariateStatistics(const QStringList &names)
    : _names(names), _stats(std::size_t(names.size()) * names.size()), _rho(identity(names.size()))
{
}

NgmMultivariateStatistics::NgmMultivariateStatistics(const NgmMultivariateStatistics &) = default;

NgmMultivariateStatistics &NgmMultivariateStatistics::operator=(const NgmMultivariateStatistics &) =
    default;

NgmMultivariateStatistics::~NgmMultivariateStatistics() = default;

void NgmMultivariateStatistics::updateNames(const QStringList &names)
{
  if (names.size() != _names.size())
    NBE_FAIL(QStringLiteral("invalid names"));
  _names = names;
}

const QString &NgmMultivariateStatistics::getVariableName(int index) const
{
  return _names.at(index);
}

NbcStatMono &NgmMultivariateStatistics::getUnivariateStats(const QString &name)
{
  const int i = _indexOf(name);
  return _record(i, i);
}

const NbcStatMono &NgmMultivariateStatistics::getConstUnivariateStats(const QString &name) const
{
  const int i = _indexOf(name);
  return _record(i, i);
}

NbcStatMono &NgmMultivariateStatistics::getBivariateStats(const QString &name1,
                                                          const QString &name2)
{
  int i, j;
  _indicesOf(name1, name2, i, j);
  return _record(i, j);
}

const NbcStatMono &NgmMultivariateStatistics::getConstBivariateStats(const QString &name1,
                                                                     const QString &name2) const
{
  int i, j;
  _indicesOf(name1, name2, i, j);
  return _record(i, j);
}

double NgmMultivariateStatistics::getCorrelationCoefficient(const QString &name1,
                                                            const QString &name2) const
{
  int i, j;
  _indicesOf(name1, name2, i, j);
  return getRho(i, j);
}

NgmMatrix NgmMultivariateStatistics::getVarianceCovarianceMatrix() const
{
  const int n = getNVariables();
  NgmMatrix matrix(n, n, true);
  for (int i = 0; i < n; ++i) {
    for (int j = i; j < n; ++j)
      matrix.setElement(i, j,
                        covariance(_record(i, i).getStandardDeviation(),
                                   _record(j, j).getStandardDeviation(), getRho(i, j)));
  }
  return matrix;
}

NgmMatrix NgmMultivariateStatistics::getVarianceCovarianceMatrixHeterotopic() const
{
  const int n = getNVariables();
  NgmMatrix matrix(n, n, true);
  for (int i = 0; i < n; ++i) {
    for (int j = i; j < n; ++j)
      matrix.setElement(i, j,
                        covariance(_record(i, j).getStandardDeviation(),
                                   _record(j, i).getStandardDeviation(), getRho(i, j)));
  }
  return matrix;
}

NgmMatrix NgmMultivariateStatistics::getAllMinima() const
{
  return _columnOf(&NbcStatBasic::getMinimum);
}

NgmMatrix NgmMultivariateStatistics::getAllMaxima() const
{
  return _columnOf(&NbcStatBasic::getMaximum);
}

NgmMatrix NgmMultivariateStatistics::getAllMeans() const
{
  return _columnOf(&NbcStatBasic::getMean);
}

NgmMatrix NgmMultivariateStatistics::getAllVariances() const
{
  return _columnOf(&NbcStatBasic::getVariance);
}

NgmMultivariateStatistics NgmMultivariateStatistics::extractMultiVariableStats(
    const QStringList &names) const
{
  QList<int> indices;
  for (const QString &name : names)
    indices.append(_names.indexOf(name));
  return extractMultiVariableStats(indices);
}

NgmMultivariateStatistics NgmMultivariateStatistics::extractMultiVariableStats(
    const QList<int> &indices) const
{
  QStringList names;
  for (int index : indices) {
    if (index < 0 || index >= getNVariables())
      return NgmMultivariateStatistics();
    names.append(_names.at(index));
  }

  NgmMultivariateStatistics part(names);
  for (int i = 0; i < indices.size(); ++i) {
    for (int j = 0; j < indices.size(); ++j) {
      part._record(i, j) = _record(indices[i], indices[j]);
      part.setRho(i, j, getRho(indices[i], indices[j]));
    }
  }
  return part;
}

QString NgmMultivariateStatistics::debug(int level) const
{
  const QString rule = QStringLiteral("---------------------------------------\n");
  QString text = QStringLiteral("Multivariate statistics for ") + QString::number(getNVariables()) +
                 QStringLiteral(" variable(s):\n");
  text += QStringLiteral("Variables {") + _names.join(QStringLiteral(", ")) + QStringLiteral("}\n");
  for (int i = 0; i < getNVariables(); ++i) {
    text += QStringLiteral("Variable ") + QString::number(i) + QStringLiteral("\n") +
            QStringLiteral("Univariate statistics for ") + _names[i] + QStringLiteral("\n") +
            _record(i, i).debug(level) + rule;
  }
  return text + QStringLiteral("\nCorrelation matrix:\n") + _rho.debug(-1);
}

QList<unsigned int> NgmMultivariateStatistics::_serializedVersions() const
{
  return {CURRENT_VERSION};
}

unsigned int NgmMultivariateStatistics::_currentSerializedVersion() const
{
  return CURRENT_VERSION;
}

bool NgmMultivariateStatistics::_hasValidFirstVersion() const
{
  return true;
}

QString NgmMultivariateStatistics::_displayName() const
{
  return QStringLiteral("Multivariate Statistics");
}

void NgmMultivariateStatistics::_serialize(QDataStream &stream) const
{
  _serializeMagic(stream);
  stream << _names;
  for (const NbcStatMono &record : _stats)
    writeRecord(stream, record);
  stream << quint32(_rho.getNElements());
  const double *rho = _rho.constElements();
  for (qint64 k = 0; k < _rho.getNElements(); ++k)
    stream << rho[k];
  _serializeMagic(stream);
}

void NgmMultivariateStatistics::_unserialize(QDataStream &stream, unsigned int)
{
  _checkMagic(stream, __LINE__);

  quint32 nNames = 0;
  stream >> nNames;
  _checkCount(stream, nNames, sizeof(quint32), MAX_VARIABLES);
  QStringList names;
  for (quint32 i = 0; i < nNames; ++i) {
    QString name;
    stream >> name;
    names.append(name);
  }

  const qint64 n2 = qint64(nNames) * nNames;
  _checkCount(stream, n2, RECORD_BYTES, MAX_VARIABLES * MAX_VARIABLES);
  NgmMultivariateStatistics read(names);
  for (NbcStatMono &record : read._stats)
    record = readRecord(stream);

  quint32 nElements = 0;
  stream >> nElements;
  _checkStream(stream);
  if (nElements != n2)
    NBE_FAIL(QStringLiteral("bad array size"));
  NgmMatrix rho(names.size(), names.size(), false);
  double *elements = rho.elements();
  for (qint64 k = 0; k < n2; ++k)
    stream >> elements[k];
  _checkStream(stream);
  if (!rho.isSymmetrical(SYMMETRY_TOLERANCE))
    _refuse(QStringLiteral("the correlation matrix is not symmetric"));
  rho.setMustBeSymmetrical(true);
  _checkMagic(stream, __LINE__);

  read._rho = rho;
  *this = read;
}

void NgmMultivariateStatistics::_checkMagic(QDataStream &stream, int line) const
{
  const bool good = _unserializeMagic(stream);
  _checkStream(stream);
  if (!good)
    NBE_FAIL(QStringLiteral("(line %1): bad magic number.").arg(line));
}

int NgmMultivariateStatistics::_indexOf(const QString &name) const
{
  const int index = _names.indexOf(name);
  if (index < 0)
    NBE_FAIL(QStringLiteral("Invalid name '%1'.").arg(name));
  return index;
}

void NgmMultivariateStatistics::_indicesOf(const QString &name1, const QString &name2, int &i,
                                           int &j) const
{
  i = _names.indexOf(name1);
  j = _names.indexOf(name2);
  if (i < 0 || j < 0)
    NBE_FAIL(QStringLiteral("Invalid names ('%1', '%2').").arg(name1, name2));
}

NgmMatrix NgmMultivariateStatistics::_columnOf(double (NbcStatBasic::*getter)() const) const
{
  const int n = getNVariables();
  NgmMatrix column(n, 1, false);
  for (int i = 0; i < n; ++i)
    column.setElement(i, 0, (_record(i, i).*getter)());
  return column;
}
