// Adaptive Gauss-Kronrod quadrature (7-point Gauss, 15-point Kronrod) for smooth integrands.
#pragma once

#include <functional>

namespace orvane::ge {

// The integral of F over [A, B]. An interval is halved until the Kronrod and Gauss sums of
// each piece agree within its share of AbsTol, or MaxDepth halvings are reached.
double IntegrateAdaptive(const std::function<double(double)>& F, double A, double B, double AbsTol,
                         int MaxDepth = 30);

// The integral of F over [A, B] with a bounded amount of work: the interval whose error
// estimate is largest is halved until the estimates sum to AbsTol or less, or MaxIntervals
// intervals are reached, or a sum is not finite. F is evaluated at most 15 * (2 * MaxIntervals - 1)
// times whatever F and AbsTol are; a kink or a narrow peak draws the halvings to itself.
double IntegrateBounded(const std::function<double(double)>& F, double A, double B, double AbsTol,
                        int MaxIntervals);

// One 15-point Kronrod sum over [A, B], and in ErrorEstimate its distance from the
// embedded 7-point Gauss sum.
double KronrodSum(const std::function<double(double)>& F, double A, double B, double& ErrorEstimate);

}  // namespace orvane::ge
