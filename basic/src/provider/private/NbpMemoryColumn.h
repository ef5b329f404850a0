#pragma once

#include "basic/data/NbdEnumCatalog.h"
#include "provider/private/NbpAMemoryColumn.h"

#include <memory>

/// A column that takes over its values. T is double, float, int, qint64, unsigned char (0 or 1),
/// QString, NbgVector3D or NbdColor.
template <class T>
std::unique_ptr<NbpAMemoryColumn> makeColumn(std::vector<T> values);

/// A column of booleans.
std::unique_ptr<NbpAMemoryColumn> makeColumn(const std::vector<bool> &values);

/// A column of categories.
std::unique_ptr<NbpAMemoryColumn> makeEnumColumn(std::vector<qint16> codes,
                                                 const NbdEnumCatalog &catalog);

/// A column of n undefined values (true for booleans). NbeError for a type that has no column.
std::unique_ptr<NbpAMemoryColumn> makeColumn(Nbd::EVariableType type, qint64 n);
