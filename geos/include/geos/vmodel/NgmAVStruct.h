#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgRotation.h"
#include "basic/geom/NbgVector3D.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/vmodel/NgmModelContext.h"

#include <QStringList>

class NbiIntervalData;

/// Basic structure of a variogram model: a normalized covariance C(u) of the reduced distance u,
/// with its scale, anisotropy and rotation. The sill belongs to the model, not to the structure.
///
/// The model reduces a separation vector (rotation into the frame of the structure, product with
/// the anisotropy coefficients); the structure takes u = |reduced vector| / scale.
///
/// Ranges given to a structure are practical ranges (for a structure that reaches its sill only at
/// infinity: the distance of 95% of the sill). scale = practical range / practical factor, and the
/// factor is a constant of the type or a function of its auxiliary parameter.
///
/// Anisotropy: coefficient of an axis = smallest range / range of the axis, so 1 along the shortest
/// range; 0 means no variation along the axis.
///
/// Evaluation is const and may run in several threads.
class NgmAVStruct : public NbbIDebuggable
{
public:
  /// Separation vectors from samples to targets, and how they become reduced vectors: rotation
  /// (nine elements column by column, columns being the local axes), then product with the
  /// anisotropy coefficients. Either is left out when null.
  struct Separations
  {
    int nSamples = 0;
    const double *x = nullptr;
    const double *y = nullptr;
    const double *z = nullptr;
    int nTargets = 0;
    const double *targetX = nullptr;
    const double *targetY = nullptr;
    const double *targetZ = nullptr;
    const double *rotation = nullptr;
    const double *anisotropy = nullptr;
    /// When it is not negative, of target t only the first nUseful + t samples are of use; what
    /// stands for the others may be left out.
    int nUseful = -1;

    int nSamplesOf(int target) const
    {
      return nUseful < 0 || nSamples - nUseful < target ? nSamples : nUseful + target;
    }
  };

  explicit NgmAVStruct(const NgmEVStruct &type);
  NgmAVStruct(const NgmEVStruct &type, const NgmModelContext &context);
  ~NgmAVStruct() override;

  QString debug(int level) const override;

  /// Parameter of shape of the structure; `index` is ignored. Outside its bounds it is a
  /// programming error. Structures without one do nothing.
  virtual void setAuxiliaryParameter(int index, double value);

  /// Degree of the drift that the structure requires; -1 for a stationary covariance.
  virtual int getIRFDegree() const;

  /// Whether the covariance is a product of covariances by axis (no structure is).
  virtual bool isFactorized() const;

  virtual bool isDifferentiable() const;

  /// Whether turning bands can simulate the structure.
  virtual bool isSimulatableTB() const = 0;

  /// False where the scale is a mere unit and not a range.
  virtual bool isScaleFactorSignificant() const;

  virtual int getNAuxiliaryParameters() const;
  virtual double getAuxiliaryValue(int index) const;
  virtual QString getAuxiliaryName(int index) const;
  virtual NbiIntervalData getAuxiliaryBounds(int index) const;
  virtual bool isAuxiliaryCoordinate(int index) const;

  /// C(|reducedH| / scale).
  virtual double calcCova(const NbgVector3D &reducedH) const = 0;

  /// C'(u) / u, for differentiable structures.
  virtual double calcFirstDerivative(const NbgVector3D &reducedH) const;

  /// C''(u), for differentiable structures.
  virtual double calcSecondDerivative(const NbgVector3D &reducedH) const;

  /// out[k] = C(dist[k] / scale) for n reduced distances. A value's bits depend neither on its
  /// place in the array nor on n.
  virtual void calcCovaFromDist(int n, const double *dist, double *out) const;

  /// What the bulk evaluators of the model call, once per block of pairs: with c = sill *
  /// C(|reduced vector from sample s to target t| / scale), element t * stride + s of `covas`
  /// becomes c, or grows by it when `add` is set; with a stride of 0 the targets add up. `covas`
  /// must not overlap the coordinates. The base goes through calcCovaFromDist(); the closed forms
  /// do all of it in one loop.
  virtual void calcCovas(const Separations &separations, double sill, bool add, double *covas,
                         qint64 stride) const;

  /// For factorized structures only.
  virtual void calcCovaFromVectors(int n, const double *vectors, double *out) const;

  const NgmEVStruct &getType() const { return _type; }
  const NgmModelContext &getContext() const { return _context; }

  /// Fails when the structure needs a higher drift degree than the context admits.
  void setContext(const NgmModelContext &context);

  const NbgRotation &getRotation() const { return _rotation; }
  void setRotation(const NbgRotation &rotation) { _rotation = rotation; }

  /// Coefficient of each axis of the structure's frame.
  const NbgVector3D &getAnisotropy() const { return _anisotropy; }

  /// One practical range per axis of the structure's frame; those beyond the dimension of the
  /// context are ignored.
  void setRanges(const NbgVector3D &practicalRanges);

  /// The same practical range along every axis.
  void setRangeIsotropic(double practicalRange);

  /// Every coefficient becomes 1; the scale stays.
  void updateToIsotropic();

  double getPracticalScaleFactor() const { return _scale * _practicalFactor; }
  double getTheoScaleFactor() const { return _scale; }

  /// Practical range of each axis; 0 for an axis whose coefficient is not above 0.
  NbgVector3D getPracticalRanges() const;

  /// The same with the theoretical scale.
  NbgVector3D getTheoRanges() const;

  /// Every coefficient of the dimensions in use is 1 within 1e-10.
  bool isIsotropic() const { return _isotropic; }

  /// The first two coefficients are equal within 1e-10 (false in one dimension).
  bool isIsotropic2D() const { return _isotropic2D; }

  /// Divides the scale by `d`, and nothing else: what depends on the ratio of field size and scale
  /// stays, because lengths in another unit change both.
  void normalizeStructure(double d);

  /// Lines on ranges and rotation, each beginning with `prefix`.
  QStringList summary(const QString &prefix) const;

protected:
  friend class NgmVModel;

  NgmAVStruct(const NgmAVStruct &) = default;
  NgmAVStruct &operator=(const NgmAVStruct &) = delete;

  /// scale = practicalRange / practical factor.
  virtual void _setScaleFactor(double practicalRange);

  /// Moves the scale by a unit in the last place where it takes that to give exactly this practical
  /// scale, so that what is read is written again with the same bytes.
  void _matchPracticalScale(double practicalScale);

  /// Recomputes what depends on the auxiliary parameter or the context.
  virtual void _setupParameters();

  void _setAnisotropy(const NbgVector3D &anisotropy);

  double _getReducedDistance(const NbgVector3D &reducedH) const;

  NgmEVStruct _type;
  double _scale = 1.;
  double _practicalFactor = 1.;
  bool _isotropic = true;
  bool _isotropic2D = true;
  NbgRotation _rotation;
  NbgVector3D _anisotropy = NbgVector3D(1., 1., 1.);
  NgmModelContext _context;
};
