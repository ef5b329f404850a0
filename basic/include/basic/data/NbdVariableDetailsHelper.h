#pragma once

#include "basic/data/Nbd.h"
#include "basic/unit/NbuEUnitClass.h"

class NbdVariableDetails;
class QString;

/// Details given to variables that the libraries create. Display units and formats of a class of
/// units are the user's.
namespace NbdVariableDetailsHelper {

NbdVariableDetails createDetails(const QString &name,
                                 const NbuEUnitClass &unitClass = NbuEUnitClass::NONE);

/// The details of `model` under another name.
NbdVariableDetails createDetails(const QString &name, const NbdVariableDetails &model);

/// Without unit, formatted for values of that type.
NbdVariableDetails createDetails(const QString &name, Nbd::EVariableType type);

/// Logarithms of values described by `model`: no unit.
NbdVariableDetails createDetailsForLog(const QString &name, const NbdVariableDetails &model);

/// Products of values described by `first` and `second`, a covariance for example: the product of
/// the units, the squared unit when they are the same.
NbdVariableDetails createDetailsForProduct(const QString &name, const NbdVariableDetails &first,
                                           const NbdVariableDetails &second);

/// Gaussian values: no unit.
NbdVariableDetails createGaussianDetails(const QString &name);

/// A macro variable whose realizations are values described by `model`.
NbdVariableDetails createMacroDetails(const QString &name, const NbdVariableDetails &model);

/// Fractions of 1 shown in percent.
NbdVariableDetails createPercentDetails(const QString &name);

/// Selections: no unit, 0 or 1.
NbdVariableDetails createSelectionDetails(const QString &name);

}  // namespace NbdVariableDetailsHelper
