#include "vmodel/private/NgmBulkCovas.h"

#include "geos/vmodel/NgmAVStruct.h"
#include "vmodel/private/NgmCovaKernels.h"
#include "vmodel/private/NgmVModelCovaCache.h"

#include <algorithm>

using NgmBulkCovas::Points;
using Separations = NgmAVStruct::Separations;

namespace {

/// Columns of a block, and the multiple that its rows are rounded up to: one cache line of doubles.
constexpr int GROUP = 8;

/// Rows of a block: GROUP columns of them take 8 KB per array.
constexpr int BLOCK_ROWS = 128;

constexpr double NULL_NUGGET = 1e-30;
constexpr double NULL_SQUARED_DISTANCE = 1e-30;

int roundedUp(int n)
{
  return (n + GROUP - 1) / GROUP * GROUP;
}

std::size_t offset(int row, int column, int rowCount)
{
  return std::size_t(row) + std::size_t(column) * std::size_t(rowCount);
}

/// Copies of the coordinates, each column padded with its last value, so that blocks need no
/// remainder.
Points paddedCopy(int n, const Points &samples, NgmVModelCovaCache &cache)
{
  const int padded = roundedUp(n);
  double *copy = NgmVModelCovaCache::atLeast(cache.coordinates, 3 * std::size_t(padded));
  const double *columns[3] = {samples.x, samples.y, samples.z};
  for (int axis = 0; axis < 3; ++axis) {
    double *column = copy + std::size_t(axis) * padded;
    std::copy(columns[axis], columns[axis] + n, column);
    std::fill(column + n, column + padded, n > 0 ? column[n - 1] : 0.);
  }
  return {copy, copy + padded, copy + 2 * std::size_t(padded)};
}

/// The pairs of samples firstRow .. firstRow + rows - 1 and firstColumn .. firstColumn + 7. Pair
/// (r, c) of the block is at c * rows + r.
struct PairBlock
{
  int firstRow;
  int rows;
  int firstColumn;

  int size() const { return GROUP * rows; }

  /// Columns that are samples and not padding.
  int columnCount(int n) const { return std::min(GROUP, n - firstColumn); }

  /// Rows in the upper triangle of column firstColumn + c, diagonal included.
  int upperRowCount(int c) const { return std::min(rows, firstColumn + c + 1 - firstRow); }

  bool holdsDiagonal() const { return firstRow + rows > firstColumn; }
};

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
  separations.nTargets = GROUP;
  separations.targetX = samples.x + block.firstColumn;
  separations.targetY = samples.y + block.firstColumn;
  separations.targetZ = samples.z + block.firstColumn;
  return separations;
}

/// Visits the blocks of the upper triangle, diagonal included, group of columns by group.
template <class Visitor>
void forEachPairBlock(int n, Visitor visitor)
{
  for (int column = 0; column < n; column += GROUP) {
    const int rowsOfGroup = column + GROUP;
    for (int row = 0; row < rowsOfGroup; row += BLOCK_ROWS)
      visitor(PairBlock{row, std::min(BLOCK_ROWS, rowsOfGroup - row), column});
  }
}

/// Copies the upper part of a block of a univariate matrix.
void storeUpper(const PairBlock &block, int n, const double *values, double *covas, int rowCount)
{
  for (int c = 0; c < block.columnCount(n); ++c) {
    const double *column = values + std::size_t(c) * block.rows;
    std::copy(column, column + block.upperRowCount(c),
              covas + offset(block.firstRow, block.firstColumn + c, rowCount));
  }
}

/// Writes the block's mirror image below the diagonal. A row of the block is contiguous there.
void storeMirrored(const PairBlock &block, int n, const double *values, double *covas, int rowCount)
{
  const int columns = block.columnCount(n);
  const int rows = std::min(block.rows, n - block.firstRow);
  for (int r = 0; r < rows; ++r) {
    double *target = covas + offset(block.firstColumn, block.firstRow + r, rowCount);
    // In the block of the diagonal only what lies below it.
    const int first = std::max(0, block.firstRow + r - block.firstColumn + 1);
    if (first == 0 && columns == GROUP) {
      for (int c = 0; c < GROUP; ++c)
        target[c] = values[std::size_t(c) * block.rows + r];
    } else {
      for (int c = first; c < columns; ++c)
        target[c] = values[std::size_t(c) * block.rows + r];
    }
  }
}

void allCovasOfOneVariable(const NgmVModel &model, int n, const Points &samples, double *covas,
                           int rowCount, bool mirrored, NgmVModelCovaCache &cache)
{
  const int blockSize = GROUP * std::min(BLOCK_ROWS, roundedUp(n));
  double *values = NgmVModelCovaCache::atLeast(cache.covariances, blockSize);
  const double nugget = model.getNugget(0, 0);
  forEachPairBlock(n, [&](const PairBlock &block) {
    std::fill(values, values + block.size(), 0.);
    if (block.holdsDiagonal()) {
      for (int c = 0; c < GROUP; ++c)
        values[std::size_t(c) * block.rows + (block.firstColumn + c - block.firstRow)] = nugget;
    }
    Separations separations = separationsOf(block, samples);
    for (int k = 0; k < model.getNStructures(); ++k) {
      setReduction(model, k, separations);
      const double sill = model.getCoregionalisationMatrix(k).getElement(0, 0);
      model.getStructure(k).addCovas(separations, sill, values);
    }
    storeUpper(block, n, values, covas, rowCount);
    if (mirrored)
      storeMirrored(block, n, values, covas, rowCount);
  });
}

/// Adds correlation * sills to the blocks of the sample pairs. On the diagonal only the upper
/// triangle of the sills.
void addToBlockOfVariables(const PairBlock &block, int n, const double *correlations,
                           const NgmMatrix &sills, double *covas, int rowCount)
{
  const int nVariables = sills.getNRows();
  const double *sill = sills.constElements();
  for (int c = 0; c < block.columnCount(n); ++c) {
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
  const int blockSize = GROUP * std::min(BLOCK_ROWS, roundedUp(n));
  double *correlations = NgmVModelCovaCache::atLeast(cache.correlations, blockSize);
  forEachPairBlock(n, [&](const PairBlock &block) {
    Separations separations = separationsOf(block, samples);
    for (int k = 0; k < model.getNStructures(); ++k) {
      setReduction(model, k, separations);
      std::fill(correlations, correlations + block.size(), 0.);
      model.getStructure(k).addCovas(separations, 1., correlations);
      addToBlockOfVariables(block, n, correlations, model.getCoregionalisationMatrix(k), covas,
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
  const Points padded = paddedCopy(n, samples, cache);
  const bool full = part == NgmVModel::MatrixPart::Full;
  const bool mirrored = full && covas.mustBeSymmetrical();
  const int rowCount = covas.getNRows();
  double *elements = covas.elements();
  if (model.getNVariables() == 1) {
    const bool allWritten = mirrored || !full;
    zeroPart(covas, elements, part, allWritten ? n : 0);
    allCovasOfOneVariable(model, n, padded, elements, rowCount, mirrored, cache);
    return;
  }
  zeroPart(covas, elements, part, 0);
  setNuggetOfSamples(model.getNuggetMatrix(), n, elements, rowCount, full);
  allCovasOfVariables(model, n, padded, elements, rowCount, cache);
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

  Separations separations;
  separations.nSamples = n;
  separations.x = samples.x;
  separations.y = samples.y;
  separations.z = samples.z;
  separations.nTargets = 1;
  separations.targetX = target.getData();
  separations.targetY = target.getData() + 1;
  separations.targetZ = target.getData() + 2;
  for (int k = 0; k < model.getNStructures(); ++k) {
    const NgmAVStruct &structure = model.getStructure(k);
    const NgmMatrix &sills = model.getCoregionalisationMatrix(k);
    setReduction(model, k, separations);
    if (nVariables == 1) {
      structure.addCovas(separations, sills.getElement(0, 0), elements);
    } else {
      double *correlations = NgmVModelCovaCache::atLeast(cache.correlations, std::size_t(n));
      std::fill(correlations, correlations + n, 0.);
      structure.addCovas(separations, 1., correlations);
      addToPoints(n, correlations, sills, elements, rowCount);
    }
  }
}

}  // namespace NgmBulkCovas
