#pragma once

#include "KARPlatformExport.h"
#include "KARStatus.h"

#include <span>
#include <vector>

class KARWBEquation;

/// Computes the value of equations; keeps its working memory from one call to the next.
class KAR_API KARWBEvaluator
{
public:
    /// Computes the equation with the values of its variables. An argument outside of a function's
    /// domain gives not-a-number, a comparison 1 or 0, an `=` the difference of its two sides.
    /// Returns 0, or a failure and not-a-number if the equation is not complete.
    KARStatus Evaluate(const KARWBEquation& equation, double& value);

    /// The same with given values, one for each variable of the equation in its order; a failure
    /// and not-a-number if there are fewer.
    KARStatus Evaluate(const KARWBEquation& equation, std::span<const double> variables,
                       double& value);

private:
    std::vector<double> m_stack;
    std::vector<double> m_values;
};
