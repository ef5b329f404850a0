#pragma once

#include "geos/NgmEnumGlobal.h"

#include <QList>
#include <QString>

#include <optional>

class NgmVariogramExp;

namespace orvenal {

struct Samples;

/// Which experimental variograms a job asks for. Angles in degrees; azimuths clockwise from north.
struct VariogramRequest
{
  struct Direction
  {
    QString name;  ///< empty: named after its angles
    double azimuth = 0.;
    double dip = 0.;
    double tolerance = 22.5;  ///< largest angle between a pair and the direction
  };

  NgmEVarioExp curve = NgmEVarioExp::VARIOGRAM;
  std::optional<double> lag;  ///< without one, from the extent of the samples
  std::optional<int> lags;
  double lagTolerance = 0.5;  ///< fraction of the lag
  int nRegular = 0;           ///< directions of the horizontal plane; none with 0
  double firstAzimuth = 0.;
  std::optional<double> regularTolerance;  ///< without one, half the angle between them
  QList<Direction> directions;             ///< in place of the regular ones
  std::optional<double> width;             ///< largest distance of a pair from the direction's axis
};

/// The request in the terms of the library: with the lags of the request, or with those that suit
/// the extent of the samples.
NgmVariogramExp makeVariogramExp(const VariogramRequest &request, const Samples &samples);

}  // namespace orvenal
