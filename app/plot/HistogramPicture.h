#pragma once

#include "app/plot/Picture.h"

#include <QString>

#include <vector>

class NbcStatMono;

namespace orvenal {

/// Draws how the defined values are distributed: their histogram (see makeHistogram()), beside it
/// the values against the Gaussian quantiles of their plottingPosition(), with the straight line
/// through the quartiles, on which Gaussian values lie; below both their number, mean, standard
/// deviation, minimum, quartiles, maximum and skewness. Counts, moments and extremes are those of
/// the statistics, quartiles lie between order statistics (Hyndman and Fan 1996, type 7).
Picture drawHistogram(const std::vector<double> &values, const NbcStatMono &statistics,
                      const QString &title, const QString &valueLabel);

}  // namespace orvenal
