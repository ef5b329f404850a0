#pragma once

#include "basic/data/Nbd.h"

#include <memory>

class NbdAVariable;
class NbdAVariableNumeric;
class NbdVariableDetails;

/// Makes variables by value type.
namespace NbdVariableFactory {

/// An empty variable. NbeProgrammingError for a type without storage.
std::unique_ptr<NbdAVariable> createVariable(Nbd::EVariableType type,
                                             const NbdVariableDetails &details);

/// The same; NbeProgrammingError for a type that is not numeric.
std::unique_ptr<NbdAVariableNumeric> createVariableNumeric(Nbd::EVariableType type,
                                                           const NbdVariableDetails &details);

}  // namespace NbdVariableFactory
