#pragma once

#include <vector>

class NbdAVariableNumeric;

/// Columns of tables as the calculators of pairs want them.
namespace NgcColumns {

/// All values of a variable; undefined ones are not a number, and so is what is made of them.
std::vector<double> read(const NbdAVariableNumeric &variable);

}  // namespace NgcColumns
