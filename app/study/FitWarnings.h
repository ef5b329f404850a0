#pragma once

#include <QStringList>

namespace orvenal {

struct Job;
struct ModelFit;
struct Variography;

/// What speaks against a fitted model, in plain words: fewer lags than parameters, a fit that did
/// not converge, no structure at all, structures that hardly have a sill, ranges beyond the lags or
/// below them.
QStringList fitWarnings(const Job &job, const Variography &variography, const ModelFit &fit);

}  // namespace orvenal
