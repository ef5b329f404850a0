#pragma once

class NbdEVarRole;
class NbuEUnitClass;

/// What follows from a structural role.
namespace NbdVarRoleHelper {

/// What the values of such a variable measure: coordinates, elevations, lengths or nothing.
const NbuEUnitClass &toUnitClass(const NbdEVarRole &role);

}  // namespace NbdVarRoleHelper
