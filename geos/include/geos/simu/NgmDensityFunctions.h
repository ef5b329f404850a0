#pragma once

/// Density (df), distribution (cdf) and quantile (invCdf) functions. Standard deviations, means of
/// exponentials, scales and widths of intervals are positive. Operations without parameters are
/// those of the standard law. Errors are NbeProgrammingError.
namespace NgmDensityFunctions {

/// Uniform on [min, max].
double dfUniformR(double x, double min = 0., double max = 1.);
double cdfUniformR(double x, double min = 0., double max = 1.);
/// min for p <= 0, max for p >= 1.
double invCdfUniformR(double p, double min = 0., double max = 1.);

/// Normal.
double dfGaussian(double x);
double dfGaussian(double x, double mean, double stdev);

/// Within 7.5e-8; 0 (1) for x <= -10 (x >= 10).
/// Source: [Abramowitz and Stegun, 1964, 26.2.17]
double cdfGaussian(double x);
double cdfGaussian(double x, double mean, double stdev);

/// The inverse of cdfGaussian() within 1e-7 for p from 1e-9 to 1 - 1e-9; further out within 6e-4 of
/// the quantile, until the rounding of 1 - p prevails. D_BIG_GAUSSIAN_NEGATIVE (POSITIVE) for
/// p <= 0 (p >= 1), and also where p is so small that 1 - p is 1.
/// Source: [Abramowitz and Stegun, 1964, 26.2.23] for the start of the bisection
double invCdfGaussian(double p);
double invCdfGaussian(double p, double mean, double stdev);

/// Law of exp(g) - shift, g being normal.
double dfLognormal(double x);
double dfLognormal(double x, double mean, double stdev, double shift = 0.);
double cdfLognormal(double x);
double cdfLognormal(double x, double mean, double stdev, double shift = 0.);

/// Law of g^(1 / scale), g being normal. A Gaussian value that is not positive has no power: it
/// counts as below every x.
double dfPower(double x);
double dfPower(double x, double mean, double stdev, double scale);
double cdfPower(double x);
double cdfPower(double x, double mean, double stdev, double scale);

/// Beta of parameters s and r, which have to be positive.
double dfBeta(double s, double r, double x);

/// Regularized incomplete beta function I_x(s, r), by its continued fraction with at most itMax
/// iterations; an error when they are too few.
/// Source: [Abramowitz and Stegun, 1964, 26.5.8]
double cdfBeta(double s, double r, double x, int itMax);

/// Gamma of shape alpha > 0 and scale 1; cdfGamma() is the regularized lower incomplete function.
/// Source: [Abramowitz and Stegun, 1964, 6.5.29 and 6.5.31]
double dfGamma(double alpha, double x);
double cdfGamma(double alpha, double x);

/// Within 1e-5 of the quantile and 1e-5 of the probability; where the quantile is below 1e-5, only
/// of that order. 0 when alpha or p is not positive.
double invCdfGamma(double alpha, double p);

/// ln Gamma(x) for x > 0, to rounding: a rational approximation on [0.5, 1.5] and the recurrence,
/// whose cost grows with x. D_FFFF for an undefined x.
double dfLogGamma(double x);

/// Student of n degrees of freedom.
double dfStudent(double n, double t);
double cdfStudent(double n, double t);

double dfExponential(double x, double mean = 1.);
double cdfExponential(double x, double mean = 1.);
/// 0 for p <= 0, D_BIG_POSITIVE for p >= 1.
double invCdfExponential(double p, double mean = 1.);

double dfCauchy(double x);
double cdfCauchy(double x);
/// D_BIG_NEGATIVE for p <= 0, D_BIG_POSITIVE for p >= 1.
double invCdfCauchy(double p);

/// Triangular on [min, max] with its peak at the mode.
double dfTriangular(double x, double min, double mode, double max);
double cdfTriangular(double x, double min, double mode, double max);
/// min for p <= 0, max for p >= 1.
double invCdfTriangular(double p, double min, double mode, double max);

/// Standard normal given that the value lies in [min, max]; an undefined min (max) is -20 (20). Of
/// full relative precision in both tails.
double dfTruncatedGaussian(double x, double min, double max);
double cdfTruncatedGaussian(double x, double min, double max);

}  // namespace NgmDensityFunctions
