#include "geos/matrix/NgmMatrix.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/geom/NbgRotationMatrix.h"

#include <QDataStream>
#include <QStringList>

#include <locale.h>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

constexpr double DEFAULT_PRECISION = 1e-10;
constexpr unsigned int VERSION = 221012;

std::size_t elementCount(int rows, int columns)
{
  return std::size_t(rows) * std::size_t(columns);
}

void copyElements(const double *from, std::size_t n, double *to)
{
  if (n > 0)
    std::memcpy(to, from, n * sizeof(double));
}

/// False for NaN too.
bool isWithin(double difference, double eps)
{
  return std::abs(difference) <= eps;
}

/// The C library's conversion, whatever the locale of the process.
double toDouble(const QByteArray &text)
{
  static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(text.constData(), nullptr, cLocale);
}

}  // namespace

// Construction and sharing.

NgmMatrix::NgmMatrix(bool mustBeSymmetrical) : NgmMatrix(1, 1, mustBeSymmetrical) {}

NgmMatrix::NgmMatrix(int rows, int columns, bool mustBeSymmetrical)
    : _rowCount(std::max(rows, 0)),
      _columnCount(std::max(columns, 0)),
      _elements(std::make_shared<Store>(elementCount(_rowCount, _columnCount), 0.)),
      _mustBeSymmetrical(mustBeSymmetrical),
      _precision(DEFAULT_PRECISION)
{
}

NgmMatrix::NgmMatrix(int n, const double *values) : NgmMatrix(n, 1, false)
{
  copyElements(values, _elements->size(), _elements->data());
}

NgmMatrix::NgmMatrix(const NbgRotationMatrix &rotation) : NgmMatrix(3, 3, false)
{
  copyElements(rotation.getData(), _elements->size(), _elements->data());
}

NgmMatrix::NgmMatrix(const NgmMatrix &other) = default;

NgmMatrix::~NgmMatrix() = default;

NgmMatrix &NgmMatrix::operator=(const NgmMatrix &other)
{
  _rowCount = other._rowCount;
  _columnCount = other._columnCount;
  _elements = other._elements;
  _mustBeSymmetrical = other._mustBeSymmetrical;
  return *this;
}

void NgmMatrix::copy(const NgmMatrix &other)
{
  _elements = other._elements;
}

void NgmMatrix::copyDeep(const NgmMatrix &other)
{
  if (&other == this)
    return;
  if (_elements == other._elements || _elements.use_count() != 1)
    _elements = std::make_shared<Store>(*other._elements);
  else
    _elements->assign(other._elements->begin(), other._elements->end());
  _rowCount = other._rowCount;
  _columnCount = other._columnCount;
  _mustBeSymmetrical = other._mustBeSymmetrical;
}

void NgmMatrix::_detach()
{
  if (_elements.use_count() != 1) {
    _elements = std::make_shared<Store>(*_elements);
    return;
  }
  // The count is read without ordering: what other owners did before they let go has to be seen.
  std::atomic_thread_fence(std::memory_order_acquire);
}

void NgmMatrix::_newStore(std::size_t n)
{
  if (_elements.use_count() != 1) {
    _elements = std::make_shared<Store>(n, 0.);
    return;
  }
  std::atomic_thread_fence(std::memory_order_acquire);
  _elements->assign(n, 0.);
}

// Elements.

bool NgmMatrix::_mirrors(int i, int j) const
{
  return _mustBeSymmetrical && i != j && i < _columnCount && j < _rowCount;
}

void NgmMatrix::setElement(int i, int j, double value)
{
  _detach();
  (*_elements)[_index(i, j)] = value;
  if (_mirrors(i, j))
    (*_elements)[_index(j, i)] = value;
}

void NgmMatrix::addToElement(int i, int j, double value)
{
  const double old = getElement(i, j);
  const bool isUndefined = old == NbbGlobal::D_FFFF || value == NbbGlobal::D_FFFF;
  setElement(i, j, isUndefined ? NbbGlobal::D_FFFF : old + value);
}

double NgmMatrix::getUpperTriangularElement(int i, int j) const
{
  return getElement(std::min(i, j), std::max(i, j));
}

void NgmMatrix::setUpperTriangularElement(int i, int j, double value)
{
  setElement(std::min(i, j), std::max(i, j), value);
}

double *NgmMatrix::elements()
{
  _detach();
  return _elements->data();
}

void NgmMatrix::getAllElementsColumnWise(qint64 n, double *out) const
{
  if (n < getNElements())
    throw NbeProgrammingError(QStringLiteral("NgmMatrix::getAllElementsColumnWise: invalid size"));
  copyElements(constElements(), std::size_t(getNElements()), out);
}

void NgmMatrix::setAllElementsColumnWise(qint64 n, const double *in)
{
  if (n < getNElements())
    throw NbeProgrammingError(QStringLiteral("NgmMatrix::setAllElementsColumnWise: invalid size"));
  copyElements(in, std::size_t(getNElements()), elements());
}

void NgmMatrix::fill(double value)
{
  _newStore(std::size_t(getNElements()));
  std::fill(_elements->begin(), _elements->end(), value);
}

void NgmMatrix::setIdentity()
{
  fill(0.);
  double *a = elements();
  for (int i = 0; i < std::min(_rowCount, _columnCount); ++i)
    a[_index(i, i)] = 1.;
}

void NgmMatrix::extractRow(int i, double *out) const
{
  const double *a = constElements() + i;
  for (int j = 0; j < _columnCount; ++j)
    out[j] = a[std::size_t(j) * _rowCount];
}

void NgmMatrix::extractRow(int i, NgmMatrix &out) const
{
  if (out.getNElements() < _columnCount)
    NBE_FAIL(QStringLiteral("out.getNElements() >= getNColumns()"));
  extractRow(i, out.elements());
}

void NgmMatrix::extractColumn(int j, double *out) const
{
  copyElements(constElements() + _index(0, j), _rowCount, out);
}

void NgmMatrix::extractColumn(int j, NgmMatrix &out) const
{
  if (out.getNElements() < _rowCount)
    NBE_FAIL(QStringLiteral("out.getNElements() >= getNRows()"));
  extractColumn(j, out.elements());
}

void NgmMatrix::setRow(int i, const double *values)
{
  double *a = elements();
  for (int j = 0; j < _columnCount; ++j) {
    a[_index(i, j)] = values[j];
    if (_mirrors(i, j))
      a[_index(j, i)] = values[j];
  }
}

void NgmMatrix::setRow(int i, const NgmMatrix &values)
{
  const NgmMatrix shared(values);
  setRow(i, shared.constElements());
}

void NgmMatrix::setColumn(int j, const double *values)
{
  double *a = elements();
  for (int i = 0; i < _rowCount; ++i) {
    a[_index(i, j)] = values[i];
    if (_mirrors(i, j))
      a[_index(j, i)] = values[i];
  }
}

void NgmMatrix::setColumn(int j, const NgmMatrix &values)
{
  const NgmMatrix shared(values);
  setColumn(j, shared.constElements());
}

void NgmMatrix::getSubMatrix(NgmMatrix &out, int row0, int column0) const
{
  const NgmMatrix source(*this);
  double *to = out.elements();
  for (int c = 0; c < out._columnCount; ++c)
    copyElements(source.constElements() + _index(row0, column0 + c), out._rowCount,
                 to + out._index(0, c));
}

void NgmMatrix::setSubMatrix(const NgmMatrix &source, int row0, int column0)
{
  const NgmMatrix shared(source);
  double *to = elements();
  for (int c = 0; c < shared._columnCount; ++c)
    copyElements(shared.constElements() + shared._index(0, c), shared._rowCount,
                 to + _index(row0, column0 + c));
}

void NgmMatrix::extractSubMatrix(NgmMatrix &out, const QList<int> &indices) const
{
  if (indices.size() < std::max(out._rowCount, out._columnCount))
    NBE_FAIL(QStringLiteral("indices.size() >= max(out.getNRows(), out.getNColumns())"));
  const NgmMatrix source(*this);
  double *to = out.elements();
  for (int c = 0; c < out._columnCount; ++c)
    for (int r = 0; r < out._rowCount; ++r)
      to[out._index(r, c)] = source.getElement(indices.at(r), indices.at(c));
}

// Shape.

void NgmMatrix::resize(int rows, int columns, bool keep)
{
  rows = std::max(rows, 0);
  columns = std::max(columns, 0);
  if (!keep) {
    _newStore(elementCount(rows, columns));
  } else if (rows != _rowCount || columns != _columnCount) {
    auto kept = std::make_shared<Store>(elementCount(rows, columns), 0.);
    const std::size_t n = std::size_t(std::min(rows, _rowCount));
    for (int j = 0; j < std::min(columns, _columnCount); ++j)
      copyElements(constElements() + _index(0, j), n, kept->data() + elementCount(rows, j));
    _elements = kept;
  }
  _rowCount = rows;
  _columnCount = columns;
}

void NgmMatrix::resize(int n, bool keep)
{
  resize(n, n, keep);
}

void NgmMatrix::addColumn()
{
  resize(_rowCount, _columnCount + 1, true);
}

void NgmMatrix::_requireSquared() const
{
  if (!isSquared())
    NBE_FAIL(QStringLiteral("isSquared()"));
}

void NgmMatrix::setMustBeSymmetrical(bool mustBeSymmetrical)
{
  if (mustBeSymmetrical && !isSymmetrical())
    NBE_FAIL(QStringLiteral("Matrix is not currently symmetrical"));
  _mustBeSymmetrical = mustBeSymmetrical;
}

void NgmMatrix::_mirrorUpperToLower()
{
  double *a = elements();
  for (int j = 0; j < _columnCount; ++j)
    for (int i = j + 1; i < _rowCount; ++i)
      a[_index(i, j)] = a[_index(j, i)];
}

void NgmMatrix::makeSymmetrical()
{
  if (!isSquared())
    return;
  _mirrorUpperToLower();
  _mustBeSymmetrical = true;
}

void NgmMatrix::swapColumns(int a, int b)
{
  double *e = elements();
  if (a != b)
    blasDswap(_rowCount, e + _index(0, a), 1, e + _index(0, b), 1);
}

void NgmMatrix::swapRows(int a, int b)
{
  double *e = elements();
  if (a != b)
    blasDswap(_columnCount, e + a, _rowCount, e + b, _rowCount);
}

void NgmMatrix::_moveColumnOnly(int from, int to)
{
  double *a = elements();
  const auto column = [&](int j) { return a + _index(0, j); };
  if (from < to)
    std::rotate(column(from), column(from + 1), column(to + 1));
  else
    std::rotate(column(to), column(from), column(from + 1));
}

void NgmMatrix::_moveRowOnly(int from, int to)
{
  double *a = elements();
  for (int j = 0; j < _columnCount; ++j) {
    double *column = a + _index(0, j);
    if (from < to)
      std::rotate(column + from, column + from + 1, column + to + 1);
    else
      std::rotate(column + to, column + from, column + from + 1);
  }
}

void NgmMatrix::moveColumn(int from, int to)
{
  if (from == to)
    return;
  _moveColumnOnly(from, to);
  if (_mustBeSymmetrical)
    _moveRowOnly(from, to);
}

void NgmMatrix::moveRow(int from, int to)
{
  if (from == to)
    return;
  _moveRowOnly(from, to);
  if (_mustBeSymmetrical)
    _moveColumnOnly(from, to);
}

// Arithmetic. Plain loops: the compiler vectorises them and their bits do not depend on alignment.

void NgmMatrix::add(const NgmMatrix &other)
{
  const NgmMatrix shared(other);
  const double *b = shared.constElements();
  double *a = elements();
  for (qint64 i = 0, n = getNElements(); i < n; ++i)
    a[i] += b[i];
}

void NgmMatrix::sub(const NgmMatrix &other)
{
  const NgmMatrix shared(other);
  const double *b = shared.constElements();
  double *a = elements();
  for (qint64 i = 0, n = getNElements(); i < n; ++i)
    a[i] -= b[i];
}

NgmMatrix &NgmMatrix::operator+=(const NgmMatrix &other)
{
  add(other);
  return *this;
}

NgmMatrix &NgmMatrix::operator-=(const NgmMatrix &other)
{
  sub(other);
  return *this;
}

void NgmMatrix::scalarMultiply(double factor)
{
  double *a = elements();
  for (qint64 i = 0, n = getNElements(); i < n; ++i)
    a[i] *= factor;
}

void NgmMatrix::makeProduct(const NgmMatrix &a, const NgmMatrix &b, NgmMatrix &c)
{
  if (a._columnCount != b._rowCount)
    NBE_FAIL(QStringLiteral("a.getNColumns() == b.getNRows()"));
  if (&c == &a || &c == &b) {
    const NgmMatrix left(a);
    const NgmMatrix right(b);
    makeProduct(left, right, c);
    return;
  }
  c.resize(a._rowCount, b._columnCount, false);
  blasDgemm('N', 'N', a._rowCount, b._columnCount, a._columnCount, 1., a.constElements(),
            std::max(1, a._rowCount), b.constElements(), std::max(1, b._rowCount), 0., c.elements(),
            std::max(1, c._rowCount));
}

NgmMatrix operator+(const NgmMatrix &a, const NgmMatrix &b)
{
  NgmMatrix sum(a);
  sum.add(b);
  return sum;
}

NgmMatrix operator-(const NgmMatrix &a, const NgmMatrix &b)
{
  NgmMatrix difference(a);
  difference.sub(b);
  return difference;
}

NgmMatrix operator*(const NgmMatrix &a, const NgmMatrix &b)
{
  NgmMatrix product(false);
  NgmMatrix::makeProduct(a, b, product);
  return product;
}

NgmMatrix operator*(const NgmMatrix &a, double factor)
{
  NgmMatrix scaled(a);
  scaled.scalarMultiply(factor);
  return scaled;
}

NgmMatrix operator/(const NgmMatrix &a, double divisor)
{
  return a * (1. / divisor);
}

void NgmMatrix::transpose(NgmMatrix &out) const
{
  if (_mustBeSymmetrical)
    return;
  const NgmMatrix source(*this);
  if (_rowCount == 1 || _columnCount == 1) {
    out = source;
    std::swap(out._rowCount, out._columnCount);
    return;
  }
  out.resize(source._columnCount, source._rowCount, false);
  const double *from = source.constElements();
  double *to = out.elements();
  for (int j = 0; j < source._columnCount; ++j)
    for (int i = 0; i < source._rowCount; ++i)
      to[out._index(j, i)] = from[source._index(i, j)];
}

NgmMatrix NgmMatrix::transpose() const
{
  NgmMatrix transposed(false);
  transpose(transposed);
  return transposed;
}

// Tests.

bool NgmMatrix::isNull(double eps) const
{
  const double *a = constElements();
  return std::all_of(a, a + getNElements(), [eps](double value) { return isWithin(value, eps); });
}

bool NgmMatrix::isIdentity(double eps) const
{
  if (_columnCount > 0 && !isSquared())
    return false;
  for (int j = 0; j < _columnCount; ++j) {
    if (!isWithin(getElement(j, j) - 1., eps))
      return false;
    for (int k = j + 1; k < _rowCount; ++k)
      if (!isWithin(getElement(k, j), eps) || !isWithin(getElement(j, k), eps))
        return false;
  }
  return true;
}

bool NgmMatrix::isSymmetrical(double eps) const
{
  if (_columnCount > 1 && _rowCount < _columnCount)
    return false;
  for (int j = 0; j < _columnCount; ++j)
    for (int i = 0; i < j; ++i)
      if (!isWithin(getElement(i, j) - getElement(j, i), eps))
        return false;
  return true;
}

bool NgmMatrix::isUpperTriangular() const
{
  for (int j = 0; j <= _columnCount - 2; ++j)
    for (int i = 0; i <= _rowCount - 1 - j; ++i)
      if (!isWithin(getElement(i, j), _precision))
        return false;
  return true;
}

bool NgmMatrix::areEqual(const NgmMatrix &other) const
{
  if (_rowCount != other._rowCount || _columnCount != other._columnCount)
    return false;
  const double eps = std::min(_precision, other._precision);
  const double *a = constElements();
  return std::equal(a, a + getNElements(), other.constElements(),
                    [eps](double x, double y) { return isWithin(x - y, eps); });
}

// Text.

QString NgmMatrix::toString(int maxCount, int precision, const QString &separator) const
{
  const int digits = precision < 0 ? 6 : precision;
  const int width = digits + 8;
  const int rows = maxCount < 0 ? _rowCount : std::min(maxCount, _rowCount);
  const int columns = maxCount < 0 ? _columnCount : std::min(maxCount, _columnCount);

  QString text;
  for (int i = 0; i < rows; ++i) {
    QStringList cells;
    for (int j = 0; j < columns; ++j)
      cells << QString::number(getElement(i, j), 'g', digits).rightJustified(width);
    if (columns < _columnCount)
      cells << QStringLiteral(" .....");
    text += cells.join(separator) + '\n';
  }
  if (rows < _rowCount)
    text += QStringLiteral("......\n");
  return text;
}

QString NgmMatrix::toString1(int precision) const
{
  QStringList cells;
  for (double value : *_elements)
    cells << QString::number(value, 'g', precision);
  return cells.join(QStringLiteral(", "));
}

bool NgmMatrix::fromString(const QString &text, bool symmetric, int rows, int columns)
{
  if (columns < 0)
    columns = rows;
  if (symmetric && rows != columns)
    NBE_FAIL(QStringLiteral("rows == columns"));
  const QStringList parts = text.split(',', Qt::SkipEmptyParts);
  if (rows < 0 || parts.size() != qint64(rows) * columns)
    return false;

  resize(rows, columns, false);
  double *a = elements();
  for (int i = 0; i < parts.size(); ++i)
    a[i] = toDouble(parts.at(i).toLatin1());
  _mustBeSymmetrical = symmetric;
  return true;
}

QString NgmMatrix::debug(int level) const
{
  QString text;
  if (level >= 0)
    text = QStringLiteral("Columns  : %1\nRows     : %2\nElements : %3\n")
               .arg(_columnCount)
               .arg(_rowCount)
               .arg(getNElements());
  return text + toString(level == 1 ? 10 : -1, -1, QString());
}

// Stream.

QList<unsigned int> NgmMatrix::_serializedVersions() const
{
  return {VERSION};
}

unsigned int NgmMatrix::_currentSerializedVersion() const
{
  return VERSION;
}

bool NgmMatrix::_hasValidFirstVersion() const
{
  return true;
}

void NgmMatrix::_serialize(QDataStream &stream) const
{
  stream << qint32(_rowCount) << qint32(_columnCount) << quint32(getNElements());
  for (double value : *_elements)
    stream << value;
  stream << _mustBeSymmetrical << _precision;
}

void NgmMatrix::_unserialize(QDataStream &stream, unsigned int)
{
  qint32 rows = 0;
  qint32 columns = 0;
  quint32 count = 0;
  stream >> rows >> columns >> count;
  _checkStream(stream);
  if (rows < 0 || columns < 0 || qint64(rows) * columns != qint64(count))
    _refuse(
        QStringLiteral("%1 elements for %2 rows and %3 columns").arg(count).arg(rows).arg(columns));
  _checkCount(stream, count, sizeof(double), qint64(rows) * columns);

  NgmMatrix read(rows, columns, false);
  for (double &value : *read._elements)
    stream >> value;
  stream >> read._mustBeSymmetrical >> read._precision;
  _checkStream(stream);
  *this = read;
  _precision = read._precision;
}
