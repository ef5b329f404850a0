#include "vmodel/private/NgmBulkCovas.h"

#include "geos/vmodel/NgmAVStruct.h"
#include "vmodel/private/NgmVModelCovaCache.h"

#include <algorithm>

using NgmCovaKernels::Points;
using NgmCovaKernels::Reduction;

namespace {

/// Columns of a block, and the multiple that its rows are rounded up to: one cache line of doubles.
constexpr int GROUP = 8;

/// Rows of a block: GROUP columns of them take 8 KB per array.
constexpr int BLOCK_ROWS = 128;

/// Samples of a block of the point set.
constexpr int BLOCK_POINTS = 1024;

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

void squaredDistancesOfBlock(const PairBlock &block, const Points &samples,
                             const Reduction &reduction, double *out)
{
  for (int c = 0; c < GROUP; ++c) {
    const int column = block.firstColumn + c;
    const double target[3] = {samples.x[column], samples.y[column], samples.z[column]};
    NgmCovaKernels::squaredDistances(target, block.rows, samples.from(block.firstRow), reduction,
                                     out + std::size_t(c) * block.rows);
  }
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

/// Calls visitor(k, squared distances) for every structure; distances are computed once for
/// structures in a row that reduce alike.
template <class Distances, class Visitor>
void forEachStructure(const NgmVModel &model, Distances computeDistances, Visitor visitor)
{
  Reduction last;
  for (int k = 0; k < model.getNStructures(); ++k) {
    const Reduction reduction = NgmBulkCovas::reductionOf(model, k);
    if (k == 0 || !(reduction == last))
      computeDistances(reduction);
    last = reduction;
    visitor(k);
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
  double *distances = NgmVModelCovaCache::atLeast(cache.squaredDistances, blockSize);
  double *values = NgmVModelCovaCache::atLeast(cache.covariances, blockSize);
  const double nugget = model.getNugget(0, 0);
  forEachPairBlock(n, [&](const PairBlock &block) {
    std::fill(values, values + block.size(), 0.);
    if (block.holdsDiagonal()) {
      for (int c = 0; c < GROUP; ++c)
        values[std::size_t(c) * block.rows + (block.firstColumn + c - block.firstRow)] = nugget;
    }
    forEachStructure(
        model,
        [&](const Reduction &reduction) {
          squaredDistancesOfBlock(block, samples, reduction, distances);
        },
        [&](int k) {
          const double sill = model.getCoregionalisationMatrix(k).getElement(0, 0);
          model.getStructure(k).addCovaFromSquaredDist(block.size(), sill, distances, values);
        });
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
  double *distances = NgmVModelCovaCache::atLeast(cache.squaredDistances, blockSize);
  double *correlations = NgmVModelCovaCache::atLeast(cache.correlations, blockSize);
  forEachPairBlock(n, [&](const PairBlock &block) {
    forEachStructure(
        model,
        [&](const Reduction &reduction) {
          squaredDistancesOfBlock(block, samples, reduction, distances);
        },
        [&](int k) {
          std::fill(correlations, correlations + block.size(), 0.);
          model.getStructure(k).addCovaFromSquaredDist(block.size(), 1., distances, correlations);
          addToBlockOfVariables(block, n, correlations, model.getCoregionalisationMatrix(k), covas,
                                rowCount);
        });
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

/// The nugget of the samples that lie at the target, 0 for the others.
void setNuggetAtTarget(const NgmMatrix &nugget, int n, const double *squaredDistances,
                       double *covas, int rowCount)
{
  const int nVariables = nugget.getNRows();
  for (int s = 0; s < n; ++s) {
    if (squaredDistances[s] >= NULL_SQUARED_DISTANCE)
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

Reduction reductionOf(const NgmVModel &model, int index)
{
  const NgmAVStruct &structure = model.getStructure(index);
  Reduction reduction;
  if (model.hasRotation() && model.hasGlobalRotation())
    reduction.rotation = model.getGlobalRotation().getMatrix().getData();
  if (structure.isIsotropic())
    return reduction;
  if (model.hasRotation() && !model.hasGlobalRotation())
    reduction.rotation = structure.getRotation().getMatrix().getData();
  reduction.anisotropy = structure.getAnisotropy().getData();
  return reduction;
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
  const NgmMatrix &nugget = model.getNuggetMatrix();
  const bool withNugget = !nugget.isNull(NULL_NUGGET);
  double *elements = covas.elements();
  std::fill(elements, elements + covas.getNElements(), 0.);
  double *distances = NgmVModelCovaCache::atLeast(cache.squaredDistances, BLOCK_POINTS);
  double *correlations = NgmVModelCovaCache::atLeast(cache.correlations, BLOCK_POINTS);
  for (int first = 0; first < n; first += BLOCK_POINTS) {
    const int count = std::min(BLOCK_POINTS, n - first);
    double *covasOfBlock = elements + std::size_t(first) * nVariables;
    const auto computeDistances = [&](const Reduction &reduction) {
      NgmCovaKernels::squaredDistances(target.getData(), count, samples.from(first), reduction,
                                       distances);
    };
    if (withNugget) {
      computeDistances(Reduction());
      setNuggetAtTarget(nugget, count, distances, covasOfBlock, rowCount);
    }
    forEachStructure(model, computeDistances, [&](int k) {
      const NgmAVStruct &structure = model.getStructure(k);
      const NgmMatrix &sills = model.getCoregionalisationMatrix(k);
      if (nVariables == 1) {
        structure.addCovaFromSquaredDist(count, sills.getElement(0, 0), distances, covasOfBlock);
        return;
      }
      std::fill(correlations, correlations + count, 0.);
      structure.addCovaFromSquaredDist(count, 1., distances, correlations);
      addToPoints(count, correlations, sills, covasOfBlock, rowCount);
    });
  }
}

}  // namespace NgmBulkCovas
