#pragma once

#include "geos/vmodel/NgmAVStruct.h"

/// Base of the Matern structures: 2 (u / 2)^nu K_nu(u) / Gamma(nu), K being the modified Bessel
/// function of the second kind.
///
/// Half-integer nu up to 5/2 take their closed form. The practical factor 3.6527 nu^0.4874
/// approximates the distance of 95% of the sill.
///
/// Source:  Matern (1960), Spatial Variation; Stein (1999), Interpolation of Spatial Data
class NgmAVStructMatern : public NgmAVStruct
{
public:
  bool isSimulatableTB() const override { return true; }

  /// nu, for any index.
  double getAuxiliaryValue(int index) const override;
  QString getAuxiliaryName(int index) const override;

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;
  void calcCovas(const Separations &separations, double sill, bool add, double *covas,
                 qint64 stride) const override;

protected:
  NgmAVStructMatern(const NgmEVStruct &type, double nu);
  NgmAVStructMatern(const NgmAVStructMatern &) = default;

  /// Takes nu and the practical factor that follows from it.
  void _setNu(double nu);

private:
  double _nu;
  double _factor;  ///< 2 / Gamma(nu)
};
