#pragma once

#include "app/io/GridTable.h"

namespace orvenal {

struct GridResult;
struct Job;

/// The results of kriging as files have them: estimate, deviation, variance and the extra results.
/// It refers to the values of `result`.
GridTable gridTableOf(const Job &job, const GridResult &result);

}  // namespace orvenal
