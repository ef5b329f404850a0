#pragma once

#include "basic/unit/NbuUnit.h"

#include <QList>

/// The units that the libraries know, and the conversions between them.
///
/// Coordinates, elevations and lengths share the units of length, whose reference is the metre; the
/// references of the other classes are the degree, the tonne, the fraction of 1 and the cubic
/// metre.
namespace NbuUnitService {

/// The unit of this symbol; an invalid one when there is none.
NbuUnit getUnit(const QString &symbol);

/// The units that measure `unitClass`, the reference unit first.
QList<NbuUnit> getUnits(const NbuEUnitClass &unitClass);

/// Conversion of values in `from` into values in `to`. Units that measure different things are an
/// NbeUserError.
NbuUnitTransfo getConversion(const NbuUnit &from, const NbuUnit &to);

/// Conversion of stored values into values in `to`. Without a storage unit (empty symbol) values
/// are taken to be in `to` already; an unknown symbol is an NbeUserError.
NbuUnitTransfo getConversionFromStorageUnit(const QString &storageUnit, const NbuUnit &to);

}  // namespace NbuUnitService
