#include "vmodel/private/NgmBulkCovas.h"

#include "geos/vmodel/NgmAVStruct.h"
#include "vmodel/private/NgmCovaKernels.h"
#include "vmodel/private/NgmVModelCovaCache.h"

#include <algorithm>
#include <numeric>

using NgmBulkCovas::Points;
using Separations = NgmAVStruct::Separations;

namespace {

/// Columns of a block: a cache line of doubles, so that its mirror image is written line by line.
constexpr int GROUP = 8;

/// Rows of a block: GROUP columns of them take 8 KB.
constexpr int BLOCK_ROWS = 128;

constexpr double NULL_NUGGET = 1e-30;
constexpr double NULL_SQUARED_DISTANCE = 1e-30;

std::size_t offset(int row, int column, int rowCount)
{
  return std::size_t(row) + std::size_t(column) * std::size_t(rowCount);
}

/// The pairs of samples firstRow .. and firstColumn ...
struct PairBlock
{
  int firstRow;
  int rows;
  int firstColumn;
  int columns;

  /// Rows in the upper triangle of column firstColumn + c, diagonal included.
  int upperRowCount(int c) const { return std::min(rows, firstColumn + c + 1 - firstRow); }
};

/// Visits the blocks that hold the upper triangle, group of columns by group. Those on the diagonal
/// reach into the lower triangle.
template <class Visitor>
void forEachPairBlock(int n, Visitor visitor)
{
  for (int column = 0; column < n; column += GROUP) {
    const int columns = std::min(GROUP, n - column);
    const int rowsOfGroup = column + columns;
    for (int row = 0; row < rowsOfGroup; row += BLOCK_ROWS)
      visitor(PairBlock{row, std::min(BLOCK_ROWS, rowsOfGroup - row), column, columns});
  }
}

/// How structure `index` of the model reduces a separation vector: the rotation and anisotropy of
/// `separations`, pointing into the model.
void setReduction(const NgmVModel &model, int index, Separations &separations)
{
  const NgmAVStruct &structure = model.getStructure(index);
  separations.rotation = nullptr;
  separations.anisotropy = nullptr;
  if (model.hasRotation() && model.hasGlobalRotation())
    separations.rotation = model.getGlobalRotation().getMatrix().getData();
  if (structure.isIsotropic())
    return;
  if (model.hasRotation() && !model.hasGlobalRotation())
    separations.rotation = structure.getRotation().getMatrix().getData();
  separations.anisotropy = structure.getAnisotropy().getData();
}

Separations separationsOf(const PairBlock &block, const Points &samples)
{
  Separations separations;
  separations.nSamples = block.rows;
  separations.x = samples.x + block.firstRow;
  separations.y = samples.y + block.firstRow;
  separations.z = samples.z + block.firstRow;
  separations.nTargets = block.columns;
  separations.targetX = samples.x + block.firstColumn;
  separations.targetY = samples.y + block.firstColumn;
  separations.targetZ = samples.z + block.firstColumn;
  separations.nUseful = block.upperRowCount(0);
  return separations;
}

/// From all samples to one target.
Separations separationsOf(const NbgVector3D &target, int n, const Points &samples)
{
  Separations separations;
  separations.nSamples = n;
  separations.x = samples.x;
  separations.y = samples.y;
  separations.z = samples.z;
  separations.nTargets = 1;
  separations.targetX = target.getData();
  separations.targetY = target.getData() + 1;
  separations.targetZ = target.getData() + 2;
  return separations;
}

/// Copies the upper triangle of a univariate matrix to the lower one. Above the diagonal blocks a
/// row of a block is contiguous at the other side.
void storeMirrored(const PairBlock &block, double *covas, int rowCount)
{
  const double *columns = covas + offset(0, block.firstColumn, rowCount);
  const int end = std::min(block.firstRow + block.rows, block.firstColumn);
  for (int row = block.firstRow; row < end; ++row) {
    double *mirrored = covas + offset(block.firstColumn, row, rowCount);
    for (int c = 0; c < block.columns; ++c)
      mirrored[c] = columns[offset(row, c, rowCount)];
  }
  if (block.firstRow + block.rows <= block.firstColumn)
    return;
  double *diagonal = covas + offset(block.firstColumn, block.firstColumn, rowCount);
  for (int c = 1; c < block.columns; ++c)
    for (int r = 0; r < c; ++r)
      diagonal[offset(c, r, rowCount)] = diagonal[offset(r, c, rowCount)];
}

/// Fills the upper triangle (and the lower one inside the blocks of the diagonal, or everywhere).
void allCovasOfOneVariable(const NgmVModel &model, int n, const Points &samples, double *covas,
                           int rowCount, bool mirrored)
{
  forEachPairBlock(n, [&](const PairBlock &block) {
    Separations separations = separationsOf(block, samples);
    double *out = covas + offset(block.firstRow, block.firstColumn, rowCount);
    for (int k = 0; k < model.getNStructures(); ++k) {
      setReduction(model, k, separations);
      const double sill = model.getCoregionalisationMatrix(k).getElement(0, 0);
      model.getStructure(k).calcCovas(separations, sill, k > 0, out, rowCount);
    }
    if (mirrored)
      storeMirrored(block, covas, rowCount);
  });
  const double c00 = model.getC0IJ(0, 0);
  for (int s = 0; s < n; ++s)
    covas[offset(s, s, rowCount)] = c00;
}

void zeroLower(int n, double *covas, int rowCount)
{
  for (int j = 0; j < n; ++j)
    std::fill(covas + offset(j + 1, j, rowCount), covas + offset(n, j, rowCount), 0.);
}

/// Adds correlation * sills to the blocks of the sample pairs. On the diagonal only the upper
/// triangle of the sills.
void addToBlockOfVariables(const PairBlock &block, const double *correlations,
                           const NgmMatrix &sills, double *covas, int rowCount)
{
  const int nVariables = sills.getNRows();
  const double *sill = sills.constElements();
  for (int c = 0; c < block.columns; ++c) {
    const int column = block.firstColumn + c;
    for (int r = 0; r < block.upperRowCount(c); ++r) {
      const int row = block.firstRow + r;
      const double rho = correlations[std::size_t(c) * block.rows + r];
      for (int b = 0; b < nVariables; ++b) {
        double *target = covas + offset(row * nVariables, column * nVariables + b, rowCount);
        const int last = row == column ? b : nVariables - 1;
        for (int a = 0; a <= last; ++a)
          target[a] += rho * sill[offset(a, b, nVariables)];
      }
    }
  }
}

void mirrorUpper(int size, double *covas, int rowCount)
{
  for (int j = 0; j < size; ++j)
    for (int i = 0; i < j; ++i)
      covas[offset(j, i, rowCount)] = covas[offset(i, j, rowCount)];
}

void setNuggetOfSamples(const NgmMatrix &nugget, int n, double *covas, int rowCount, bool mirrored)
{
  const int nVariables = nugget.getNRows();
  for (int s = 0; s < n; ++s)
    for (int b = 0; b < nVariables; ++b)
      for (int a = 0; a <= b; ++a) {
        covas[offset(s * nVariables + a, s * nVariables + b, rowCount)] = nugget.getElement(a, b);
        if (mirrored)
          covas[offset(s * nVariables + b, s * nVariables + a, rowCount)] = nugget.getElement(a, b);
      }
}

void allCovasOfVariables(const NgmVModel &model, int n, const Points &samples, double *covas,
                         int rowCount, NgmVModelCovaCache &cache)
{
  double *correlations =
      NgmVModelCovaCache::atLeast(cache.correlations, std::size_t(GROUP) * BLOCK_ROWS);
  forEachPairBlock(n, [&](const PairBlock &block) {
    Separations separations = separationsOf(block, samples);
    for (int k = 0; k < model.getNStructures(); ++k) {
      setReduction(model, k, separations);
      model.getStructure(k).calcCovas(separations, 1., false, correlations, block.rows);
      addToBlockOfVariables(block, correlations, model.getCoregionalisationMatrix(k), covas,
                            rowCount);
    }
  });
}

/// Zeroes what calcAllCovas() promises to zero: the whole matrix, or its upper triangle. With
/// `skipped` the first columns are left alone down to that row, being written anyway.
void zeroPart(NgmMatrix &covas, double *elements, NgmVModel::MatrixPart part, int skipped)
{
  const int rows = covas.getNRows();
  for (int j = 0; j < covas.getNColumns(); ++j) {
    const int first = j < skipped ? skipped : 0;
    const int end = part == NgmVModel::MatrixPart::Upper ? std::min(j + 1, rows) : rows;
    if (first < end)
      std::fill(elements + offset(first, j, rows), elements + offset(end, j, rows), 0.);
  }
}

/// Whether a sample lies at the target. Counted, because a loop with a way out would not be
/// vectorised; x alone answers first, for most targets.
bool hasSampleAtTarget(const NbgVector3D &target, int n, const Points &samples)
{
  qint64 count = 0;  // as wide as the doubles that are compared
  for (int s = 0; s < n; ++s) {
    const double dx = target.x() - samples.x[s];
    count += dx * dx < NULL_SQUARED_DISTANCE;
  }
  if (count == 0)
    return false;
  count = 0;
  for (int s = 0; s < n; ++s) {
    const double dx = target.x() - samples.x[s];
    const double dy = target.y() - samples.y[s];
    const double dz = target.z() - samples.z[s];
    count += dx * dx + dy * dy + dz * dz < NULL_SQUARED_DISTANCE;
  }
  return count > 0;
}

/// The nugget of the samples that lie at the target; the others keep their 0.
void setNuggetAtTarget(const NgmMatrix &nugget, const NbgVector3D &target, int n,
                       const Points &samples, double *covas, int rowCount)
{
  if (nugget.isNull(NULL_NUGGET) || !hasSampleAtTarget(target, n, samples))
    return;
  const int nVariables = nugget.getNRows();
  for (int s = 0; s < n; ++s) {
    const NbgVector3D sample(samples.x[s], samples.y[s], samples.z[s]);
    if ((target - sample).squaredNorm() >= NULL_SQUARED_DISTANCE)
      continue;
    for (int b = 0; b < nVariables; ++b)
      for (int a = 0; a < nVariables; ++a)
        covas[offset(s * nVariables + a, b, rowCount)] = nugget.getElement(a, b);
  }
}

void addToPoints(int n, const double *correlations, const NgmMatrix &sills, double *covas,
                 int rowCount)
{
  const int nVariables = sills.getNRows();
  const double *sill = sills.constElements();
  for (int s = 0; s < n; ++s)
    for (int b = 0; b < nVariables; ++b) {
      double *target = covas + offset(s * nVariables, b, rowCount);
      for (int a = 0; a < nVariables; ++a)
        target[a] += correlations[s] * sill[offset(a, b, nVariables)];
    }
}

/// Points in three columns, for the loops over them.
class Columns
{
public:
  Columns(int n, const NbgVector3D *points, NgmVModelCovaCache::Array &memory)
      : _n(n), _values(NgmVModelCovaCache::atLeast(memory, 3 * std::size_t(n)))
  {
    for (int i = 0; i < n; ++i)
      for (int axis = 0; axis < 3; ++axis)
        _values[std::size_t(axis) * n + i] = points[i][axis];
  }

  int size() const { return _n; }
  const double *x() const { return _values; }
  const double *y() const { return _values + _n; }
  const double *z() const { return _values + 2 * std::size_t(_n); }

private:
  int _n;
  double *_values;
};

Separations separationsOf(const Columns &targets, int n, const Points &samples)
{
  Separations separations;
  separations.nSamples = n;
  separations.x = samples.x;
  separations.y = samples.y;
  separations.z = samples.z;
  separations.nTargets = targets.size();
  separations.targetX = targets.x();
  separations.targetY = targets.y();
  separations.targetZ = targets.z();
  return separations;
}

/// How NgmVModel::calcCova() reduces the vector of structure `index`: like the last anisotropic
/// structure up to it, or not at all.
void setReductionOfCalcCova(const NgmVModel &model, int index, Separations &separations)
{
  while (index >= 0 && model.getStructure(index).isIsotropic())
    --index;
  separations.rotation = nullptr;
  separations.anisotropy = nullptr;
  if (index >= 0)
    setReduction(model, index, separations);
}

/// Pairs of the same place.
qint64 countCoincidentPairs(const Columns &a, const Columns &b)
{
  qint64 count = 0;
  for (int i = 0; i < a.size(); ++i) {
    const double x = a.x()[i], y = a.y()[i], z = a.z()[i];
    for (int j = 0; j < b.size(); ++j)
      count += (x == b.x()[j]) & (y == b.y()[j]) & (z == b.z()[j]);
  }
  return count;
}

void addScaled(double factor, const NgmMatrix &matrix, NgmMatrix &sum)
{
  NgmMatrix::blasDaxpy(int(matrix.getNElements()), factor, matrix.constElements(), 1,
                       sum.elements(), 1);
}

}  // namespace

namespace NgmBulkCovas {

NbgVector3D reducedVector(const NgmVModel &model, int index, const NbgVector3D &h)
{
  Separations separations;
  setReduction(model, index, separations);
  const NgmCovaKernels::Vector v =
      NgmCovaKernels::reduce({h.x(), h.y(), h.z()}, separations.rotation, separations.anisotropy);
  return {v.x, v.y, v.z};
}

void allCovas(const NgmVModel &model, int n, const Points &samples, NgmMatrix &covas,
              NgmVModelCovaCache &cache, NgmVModel::MatrixPart part)
{
  const bool full = part == NgmVModel::MatrixPart::Full;
  const bool mirrored = full && covas.mustBeSymmetrical();
  const int rowCount = covas.getNRows();
  double *elements = covas.elements();
  if (model.getNVariables() == 1) {
    zeroPart(covas, elements, part, model.getNStructures() > 0 ? n : 0);
    allCovasOfOneVariable(model, n, samples, elements, rowCount, mirrored);
    if (full && !mirrored)
      zeroLower(n, elements, rowCount);
    return;
  }
  zeroPart(covas, elements, part, 0);
  setNuggetOfSamples(model.getNuggetMatrix(), n, elements, rowCount, full);
  allCovasOfVariables(model, n, samples, elements, rowCount, cache);
  if (mirrored)
    mirrorUpper(n * model.getNVariables(), elements, rowCount);
}

void pointSet(const NgmVModel &model, const NbgVector3D &target, int n, const Points &samples,
              NgmMatrix &covas, NgmVModelCovaCache &cache)
{
  const int nVariables = model.getNVariables();
  const int rowCount = covas.getNRows();
  double *elements = covas.elements();
  std::fill(elements, elements + covas.getNElements(), 0.);
  setNuggetAtTarget(model.getNuggetMatrix(), target, n, samples, elements, rowCount);

  Separations separations = separationsOf(target, n, samples);
  for (int k = 0; k < model.getNStructures(); ++k) {
    const NgmAVStruct &structure = model.getStructure(k);
    const NgmMatrix &sills = model.getCoregionalisationMatrix(k);
    setReduction(model, k, separations);
    if (nVariables == 1) {
      structure.calcCovas(separations, sills.getElement(0, 0), true, elements, rowCount);
    } else {
      double *correlations = NgmVModelCovaCache::atLeast(cache.correlations, std::size_t(n));
      structure.calcCovas(separations, 1., false, correlations, n);
      addToPoints(n, correlations, sills, elements, rowCount);
    }
  }
}

void blockSet(const NgmVModel &model, int nPoints, const NbgVector3D *points, int n,
              const Points &samples, NgmMatrix &covas, NgmVModelCovaCache &cache)
{
  double *elements = covas.elements();
  std::fill(elements, elements + covas.getNElements(), 0.);
  const Columns targets(nPoints, points, cache.points);
  Separations separations = separationsOf(targets, n, samples);
  for (int k = 0; k < model.getNStructures(); ++k) {
    const NgmAVStruct &structure = model.getStructure(k);
    const NgmMatrix &sills = model.getCoregionalisationMatrix(k);
    setReduction(model, k, separations);
    // The points add up in one column.
    if (model.getNVariables() == 1) {
      structure.calcCovas(separations, sills.getElement(0, 0) / nPoints, true, elements, 0);
    } else {
      double *correlations = NgmVModelCovaCache::atLeast(cache.correlations, std::size_t(n));
      std::fill(correlations, correlations + n, 0.);
      structure.calcCovas(separations, 1. / nPoints, true, correlations, 0);
      addToPoints(n, correlations, sills, elements, covas.getNRows());
    }
  }
}

void sumOfPairs(const NgmVModel &model, const QVector<NbgVector3D> &a,
                const QVector<NbgVector3D> &b, NgmMatrix &sum)
{
  NgmVModelCovaCache::Array memoryA, memoryB, column(std::size_t(b.size()));
  const Columns targets(a.size(), a.constData(), memoryA);
  const Columns samples(b.size(), b.constData(), memoryB);
  Separations separations =
      separationsOf(targets, samples.size(), {samples.x(), samples.y(), samples.z()});
  sum.fill(0.);
  for (int k = 0; k < model.getNStructures(); ++k) {
    setReductionOfCalcCova(model, k, separations);
    std::fill(column.begin(), column.end(), 0.);
    model.getStructure(k).calcCovas(separations, 1., true, column.data(), 0);
    const double total = std::accumulate(column.begin(), column.end(), 0.);
    addScaled(total, model.getCoregionalisationMatrix(k), sum);
  }
  if (!model.getNuggetMatrix().isNull(0.))
    addScaled(double(countCoincidentPairs(targets, samples)), model.getNuggetMatrix(), sum);
}

}  // namespace NgmBulkCovas
