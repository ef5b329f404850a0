#pragma once

#include "geos/interpol/NgmNeighborhoodMoving.h"
#include "geos/interpol/NgmNeighborhoodNestedParam.h"

#include <QList>
#include <QString>

namespace orvenal {

/// A moving neighborhood as a job wants it.
struct NeighborhoodRequest
{
  NgmNeighborhoodMoving moving;
  QList<NgmNeighborhoodNestedParam>
      passes;    ///< further searches, each where the ones before failed
  QString line;  ///< column with the line of each sample, for the rules on lines; or empty

  /// Whether a rule besides the least number of samples leaves nodes undefined.
  bool refusesNodes() const
  {
    return moving.isRuleMaximumDistanceWithoutAnySample() || moving.isRuleMaximumEmptySectors() ||
           moving.isRuleMinimumCodeNb();
  }
};

}  // namespace orvenal
