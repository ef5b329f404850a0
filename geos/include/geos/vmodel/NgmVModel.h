#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgRotation.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmModelContext.h"
#include "geos/vmodel/NgmTapering.h"

#include <QList>
#include <QStringList>
#include <QVector>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

class NbdDataTable;
class NbdVariableDetails;
class NbdVariableDouble;
class NbgIntVector3D;
class NgmABlock;
class NgmAVStruct;
class NgmTarget;
class NgmVModelCovaCache;

struct NgmVModelCovaCacheDeleter
{
  void operator()(NgmVModelCovaCache *cache) const;
};

/// Scratch memory of the bulk evaluators. It grows when it has to and never shrinks; one per
/// thread.
using NgmVModelCovaCachePtr = std::unique_ptr<NgmVModelCovaCache, NgmVModelCovaCacheDeleter>;

/// Variogram model of N variables: a linear model of coregionalization.
///
/// Formula:  C_ij(h) = sum_k S_k(i,j) rho_k(h)                    for h != 0
///           C_ij(0) = Nugget(i,j) + sum_k S_k(i,j) rho_k(0)
///           with rho_k the normalized covariance of structure k (NgmAVStruct)
/// Units:    covariances in products of the units of two variables; ranges are practical ranges
/// Shape:    nugget and sill matrices are N x N, symmetric; matrices of the bulk evaluators are
///           ordered by sample, then by variable: sample s and variable a stand at s * N + a
/// Requires: sill matrices without negative eigenvalue
/// Threads:  evaluation is const; several threads may read one model, each with its own cache.
///           Changing a model must not overlap with reading it.
/// Source:   Journel and Huijbregts (1978), Mining Geostatistics, ch. III.B; Wackernagel (2003),
///           Multivariate Geostatistics, ch. 26
class NgmVModel : public NbbASerializable, public NbbIDebuggable
{
public:
  /// What a bulk evaluator fills of a symmetric matrix.
  enum class MatrixPart {
    Full,  ///< both triangles when the matrix must be symmetrical, else the upper one
    Upper  ///< diagonal and upper triangle; what the strict lower triangle holds is of no use
  };

  /// A model of `nVariables` (1 to 999) without structure and nugget, in the context (-1, 3, 0).
  explicit NgmVModel(int nVariables);
  NgmVModel(const NgmVModel &other);
  NgmVModel &operator=(const NgmVModel &other);
  ~NgmVModel() override;

  /// Nothing when the number is the current one; otherwise the model is emptied.
  virtual void setNVariables(int nVariables);

  /// It has a structure, or a nugget.
  virtual bool isValid() const;

  int getNVariables() const { return _nVariables; }
  int getNStructures() const { return int(_structures.size()); }

  /// Highest drift degree that a structure requires; -1 when all are stationary.
  int getEffectiveIrfDegree() const { return _effectiveIrfDegree; }
  bool isStrictStationary() const { return _effectiveIrfDegree == -1; }

  const NgmModelContext &getContext() const { return _context; }

  /// The context of the model and of every structure. When a structure needs a higher drift degree
  /// the call fails and those before it keep the new context.
  void setContext(const NgmModelContext &context);
  void setContextNDim(int nDimensions);
  void setContextIrfDegree(int maxIrfDegree);
  void setContextFieldSize(double fieldSize);

  /// Appends a structure of the type with that label, with the same positive sill for every
  /// variable and no correlation between them. Returns its index.
  int addStructure(const QString &label, double sill);
  int addStructure(const QString &label, const NgmMatrix &sills);

  /// Appends a copy of the structure in the context of the model.
  int addStructure(const NgmAVStruct &structure, const NgmMatrix &sills);

  /// A structure of the type with that label takes the place of structure `index`: its context,
  /// practical ranges, rotation and sills.
  void replaceStructureType(int index, const QString &label);

  virtual void removeStructure(int index);
  virtual void removeNugget();

  /// Removes the structures whose sills are all null.
  void removeNullStructures();

  const NgmAVStruct &getStructure(int index) const;
  QString getStructureLabel(int index) const;

  const NgmMatrix &getNuggetMatrix() const { return _nugget; }
  double getNugget(int i, int j) const { return _nugget.getElement(i, j); }

  /// Some element is larger than the precision of the nugget matrix in absolute value.
  bool hasNugget() const;
  void setNugget(int i, int j, double value);
  void setNuggetMatrix(const NgmMatrix &nugget);

  /// Variable `variable` has a nugget and no structure.
  bool isPureNugget(int variable) const;
  bool hasPureNuggetVariable() const;

  const NgmMatrix &getCoregionalisationMatrix(int index) const;
  void setCoregionalisationMatrix(int index, const NgmMatrix &sills);
  void setCoregionalisationMatElem(int index, int i, int j, double value);

  /// Sill of a variable in structure `index`. For a structure whose scale is not a range the value
  /// is its variogram at distance `h` when `h` is defined.
  double getSill(int index, int variable, double h) const;

  /// Variogram of each variable at h (N x 1): the sum of (1 - rho_k(h)) S_k(v,v) over the
  /// structures and, on request, the whole nugget, at h = 0 too.
  NgmMatrix getCumulativeSill(bool withNugget, const NbgVector3D &h) const;

  /// Covariance at the origin, nugget included.
  const NgmMatrix &getC00Matrix() const;
  double getC0IJ(int i, int j) const;

  void setRotation(int index, const NbgRotation &rotation);
  void setGlobalRotation(const NbgRotation &rotation);

  /// Coefficients by axis, none negative, not all 0.
  void setAnisotropy(int index, const NbgVector3D &anisotropy);
  void setRanges(int index, const NbgVector3D &practicalRanges);

  /// One practical range, those of the other axes being kept.
  void setRange(int index, int axis, double practicalRange);
  void setRangeIsotropic(int index, double practicalRange);
  void updateToIsotropic(int index);

  /// Practical range along the axis of coefficient 1; the anisotropy stays.
  void updateScaleFactor(int index, double practicalRange);
  void setAuxiliaryParameter(int index, int parameter, double value);

  /// Rotation of the first structure; of the whole model when hasGlobalRotation().
  const NbgRotation &getGlobalRotation() const { return _globalRotation; }

  /// Some structure is rotated.
  bool hasRotation() const { return _hasRotation; }

  /// All structures share one rotation (within 1e-9).
  bool hasGlobalRotation() const { return _hasGlobalRotation; }

  /// Rotation of the structure with the largest sill of variable 0, the first of equal ones; the
  /// global rotation when no sill is positive.
  const NbgRotation &getMajorRotation() const;

  /// Largest practical range of the structures by axis of the global rotation. Fails when the
  /// rotations differ.
  NbgVector3D getGlobalRange() const;

  bool isIsotropic() const;
  bool isIsotropic2D() const;

  /// All structures are of the Matern family; without `acceptNugget` there is no nugget either.
  bool isPureMatern(bool acceptNugget) const;

  /// covas(i,j) = C_ij(h). An isotropic structure is evaluated at the reduced vector of the last
  /// anisotropic one before it (at h when there is none); calcCovaIJ() is not. Only h exactly 0 is
  /// the origin.
  void calcCova(const NbgVector3D &h, NgmMatrix &covas) const;

  /// C_ij(h), each structure at its own reduced vector. A vector with all components below 1e-10 in
  /// absolute value is the origin.
  double calcCovaIJ(int i, int j, const NbgVector3D &h) const;

  /// gamma_ij(h) = C_ij(0) - C_ij(h).
  double calcVarioIJ(int i, int j, const NbgVector3D &h) const;

  /// rho_k(h), without sill.
  double calcElementaryStructure(const NbgVector3D &h, int index) const;

  /// Covariances of a gradient with the variables, for models of potential fields whose structures
  /// are all differentiable (else a programming error). The nugget has no part in them.
  ///
  /// Formula:  gp(3 a + m, b) = Cov(dZ_a/dx_m (x), Z_b(x + h)) = -dC_ab(h)/dh_m
  ///           gg(3 a + m, 3 b + n) = Cov(dZ_a/dx_m (x), dZ_b/dx_n (x + h)) = -d2C_ab(h)/dh_m dh_n
  /// Shape:    3N x N and 3N x 3N; `gp` and `gg` are resized
  /// Source:   [Lajaunie, Courrioux and Manuel, 1997]
  void calcCovaGP(const NbgVector3D &h, NgmMatrix &gp) const;
  void calcCovaGG(const NbgVector3D &h, NgmMatrix &gg) const;

  /// Covariances between all samples. The matrix needs N * n rows and as many columns at least; all
  /// the rest of it (of its upper triangle, see MatrixPart) becomes 0. The nugget stands between a
  /// sample and itself only. Without a cache a temporary one is made.
  void calcAllCovas(const NbdVariableDouble &x, const NbdVariableDouble &y,
                    const NbdVariableDouble &z, NgmMatrix &covas,
                    NgmVModelCovaCache *cache = nullptr, MatrixPart part = MatrixPart::Full) const;
  void calcAllCovas(int n, const double *x, const double *y, const double *z, NgmMatrix &covas,
                    NgmVModelCovaCache *cache = nullptr, MatrixPart part = MatrixPart::Full) const;

  /// Covariances between all samples (rows) and the target point (columns: its variables). The
  /// matrix has N columns and N * n rows at least; the rest becomes 0. A sample nearer than 1e-15
  /// gets the nugget.
  void calcCovasPointSet(const NgmTarget &target, const NbdVariableDouble &x,
                         const NbdVariableDouble &y, const NbdVariableDouble &z, NgmMatrix &covas,
                         NgmVModelCovaCache *cache = nullptr) const;
  void calcCovasPointSet(const NbgVector3D &target, int n, const double *x, const double *y,
                         const double *z, NgmMatrix &covas,
                         NgmVModelCovaCache *cache = nullptr) const;

  /// Mean covariances between all samples (rows) and a block (columns: its variables): the mean
  /// over the block's discretization points. Shapes as in calcCovasPointSet(); the nugget has no
  /// part in them.
  void calcCovasBlockSet(const NgmTarget &target, const NbdVariableDouble &x,
                         const NbdVariableDouble &y, const NbdVariableDouble &z, NgmMatrix &covas,
                         NgmVModelCovaCache *cache = nullptr) const;
  /// The same for points in world coordinates.
  void calcCovasBlockSet(int nPoints, const NbgVector3D *points, int n, const double *x,
                         const double *y, const double *z, NgmMatrix &covas,
                         NgmVModelCovaCache *cache = nullptr) const;

  /// Mean covariances inside a block (N x N, `cvv` is resized), by calcCova() between its
  /// discretization points and one random point per cell, so that no point meets itself. The same
  /// seed gives the same values.
  ///
  /// Cost:     one covariance per pair of points and structure
  /// Source:   [Journel and Huijbregts, 1978, ch. II.D.3]
  void calcCvv(const NgmABlock &block, qint64 seed, NgmMatrix &cvv) const;

  /// Mean covariances between a block and its copy at `shift` (N x N, `covas` is resized), by
  /// calcCova() between their discretization points. Points that meet count with the covariance at
  /// the origin, nugget included.
  void calcCovBlockBlock(const NgmABlock &block, const NbgVector3D &shift, NgmMatrix &covas) const;

  /// Mean of calcCvv() over the default number of random discretizations of NgmCvvBuilder.
  NgmMatrix computeMeanCvv(const NgmABlock &block) const;

  /// Numbers of points for a discretization (n, n, nW). nW is the largest number, at most 10, of
  /// multiples of `verticalStep` that fit into a 3D block. n is the first of 3 .. 12 whose mean
  /// covariance between the centre of the block and its points, of the first variable and without
  /// nugget, is within `tolerance` of that of 14 x 14 points, as a part of it; 12 when none is.
  /// `history` gets the value of 14 x 14 and then those of n = 3, 4, ...
  NbgIntVector3D findBestDiscretization(const NgmABlock &block, double verticalStep,
                                        double tolerance, QVector<double> *history) const;

  static NgmVModelCovaCachePtr getCovaCache();

  /// Whether a taper was set.
  bool useTapering() const { return _tapering != nullptr; }

  /// Ranges along the axes of the global rotation, or of the world when rotations differ; those
  /// beyond the dimension of the context are ignored.
  void setTapering(const NbgVector3D &ranges, NgmTapering::TaperingType type);

  /// Taper of a separation vector; 1 without a taper.
  double calcTapering(const NbgVector3D &h) const;

  /// C_ij(0) where all components of h are below 1e-10 in absolute value, else the sum of the
  /// structures times the taper, without nugget.
  double calcTaperedCovaIJ(int i, int j, const NbgVector3D &h) const;

  /// Hull of perfect correlation, the largest values that the cross-variogram (or, with
  /// `covariance`, the cross-covariance) of variables i and j could take with the structures of the
  /// model, at distances along the U axis of a rotation. Its negative bounds from below.
  ///
  /// Formula:  sum_k sqrt(S_k(i,i) S_k(j,j)) (rho_k(0) - rho_k(h)), or rho_k(h); the nugget is a
  ///           structure too
  /// Source:   [Wackernagel, 2003, ch. 26]
  void calcEnvelopeIJ(int i, int j, const NbgRotation &rotation, int n, const double *distances,
                      bool covariance, double *out) const;

  /// Curves for display, by distance along `direction`. A table with the variable "Distance" and
  /// one under the key of the curve with these details.
  ///
  /// The variogram at the 500 distances maxDist / 500, 2 maxDist / 500, ... maxDist.
  NbdDataTable getVarioCurve(double maxDist, const NbdVariableDetails &details,
                             const NbgVector3D &direction, int i, int j) const;

  /// The covariance in 1001 rows, distance 0 in the middle and the same positive distances to both
  /// sides of it.
  NbdDataTable getCovarianceCurve(double maxDist, const NbdVariableDetails &details,
                                  const NbgVector3D &direction, int i, int j) const;

  /// Grips, by which structures are dragged on a display: a row per structure with a range, at the
  /// practical range along `direction`, with the variables "Structure" (its index), "Distance" and
  /// one under the key of the variogram. The latter is, from the first to the last operation,
  /// the sills cumulated from the nugget on, the variogram of the model, and the variogram of the
  /// structure alone.
  NbdDataTable getDirectionGrips(const NbgVector3D &direction, int i, int j) const;
  NbdDataTable getDirectionCurveGrips(const NbgVector3D &direction, int i, int j) const;
  NbdDataTable getDirectionCurvesGrips(const NbgVector3D &direction, int i, int j) const;

  /// Model of the variables divided by their standard deviations, with lengths in units of
  /// `maxDist`: field size and scales are divided by it, elements (i, j) of nugget and sills by
  /// sqrt(V(i,i) V(j,j)). A variance below 1e-30 counts as about 1e-15.
  virtual void normalizeSillsAndRanges(double maxDist, const NgmMatrix &variances);

  /// The way back.
  virtual void denormalizeSillsAndRanges(double maxDist, const NgmMatrix &variances);

  /// Rescales nugget and sills so that the covariance at the origin has this diagonal and the
  /// correlations stay.
  void fitSillsToVariances(const QVector<double> &variances);

  /// The model without the structures of these indices and, on request, without nugget.
  NgmVModel buildFilteredModel(bool removeNugget, const QList<int> &structures) const;

  /// The model of variable `variable` alone.
  static NgmVModel createMonoFromMulti(const NgmVModel &model, int variable);

  /// Intrinsic correlation: variables of these variances and correlations that share the structures
  /// of the model of one variable, which is taken as that of variable `reference`.
  static NgmVModel createMultiFromMono(const NgmVModel &model, int reference,
                                       const NgmMatrix &correlations,
                                       const QVector<double> &variances);

  /// Uncorrelated variables, each with its own structures from a model of one variable; in the
  /// context of the first.
  static NgmVModel createMultiFromList(const QList<NgmVModel> &models);

  /// The model of these variables, in their order.
  static NgmVModel extractFromVariables(const NgmVModel &model, const QList<int> &variables);

  /// Factor of a coregionalization matrix: its eigenvectors as columns, each times the square root
  /// of its eigenvalue (0 for a negative one), so that factor * factor' is the matrix. Eigenvalues
  /// ascend.
  static NgmMatrix coregMatrixToEigen(const NgmMatrix &sills);

  /// The same of structure `index`, for the simulation of correlated variables.
  void getNormalizedEigenVectors(int index, NgmMatrix &out) const;

  /// Makes nugget and sill matrices positive semi-definite and tests that the covariance at the
  /// origin is positive definite and that the ranges cover every direction of space; fails when
  /// they cannot be.
  bool makeAuthorized();

  /// Nugget and structures with their practical range along `axis` (0 to 2) of their frame, in one
  /// line; numbers have `digits` significant digits.
  virtual QString briefSummary(int axis, int digits) const;

  /// Lines on the model: its dimensions, then nugget (numbered -1) and structures with ranges,
  /// rotations and sills.
  virtual QStringList summary(bool withDimensions, bool withSills, int digits) const;

  QString debug(int level) const override;

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override;

  int _addStructure(const NgmAVStruct &structure, const NgmMatrix &sills);
  void _setScaleFactor(int index, double practicalRange);

  /// Mean covariance of the first variable between the centre of a block and its points, without
  /// nugget.
  double _calcCovaCenterBlock(const NgmABlock &block) const;

  /// Recomputes what follows from the structures: rotation flags, C00, effective drift degree.
  void _validateModel();

private:
  static constexpr int MAXIMUM_VARIABLES = 999;

  bool _isStructure(int index) const { return index >= 0 && index < getNStructures(); }
  bool _isVariable(int index) const { return index >= 0 && index < _nVariables; }

  /// The number of variables; fails with `message` when a model cannot have as many.
  static int _checkedNumber(int nVariables, const char *message);
  void _checkVariables(int i, int j) const;

  /// The structure to be changed, C00 being invalidated; fails with `message` when there is none.
  NgmAVStruct &_changeStructure(int index, const char *message);
  int _addStructureOfType(const QString &label, const NgmMatrix &sills);
  void _appendStructure(const NgmAVStruct &structure, const NgmMatrix &sills);

  /// Changes scales and field size, and multiplies element (i, j) of nugget and sills by
  /// sqrt(w_i w_j).
  void _rescale(const std::function<double(double)> &rescaled, const QVector<double> &weights);

  /// The model of other variables with matrices made from those of this one.
  template <class Change>
  NgmVModel _withMatrices(int nVariables, Change change) const;
  NbdDataTable _gripTable(const NbgVector3D &direction, const QVector<double> &values) const;
  void _updateEffectiveIrfDegree();
  void _invalidateC00();
  void _updateC00() const;
  NgmMatrix _sumOfSills() const;
  bool _isDirectionCovered(const NgmAVStruct &structure, int axis) const;
  void _readStructure(QDataStream &stream);
  NgmMatrix _readMatrix(QDataStream &stream) const;
  std::vector<double> _readVector(QDataStream &stream, qint64 expected) const;
  void _take(NgmVModel &other);

  NgmModelContext _context = NgmModelContext(-1, 3, 0.);
  int _nVariables;
  int _effectiveIrfDegree = -1;
  bool _hasRotation = false;
  bool _hasGlobalRotation = true;
  NbgRotation _globalRotation;
  NgmMatrix _nugget;
  std::vector<std::unique_ptr<NgmAVStruct>> _structures;
  std::vector<NgmMatrix> _sills;
  mutable std::mutex _c00Mutex;
  mutable NgmMatrix _c00;
  mutable std::atomic<bool> _c00Valid{false};
  std::unique_ptr<NgmTapering> _tapering;
};
