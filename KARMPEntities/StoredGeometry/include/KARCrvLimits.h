#pragma once

#include "KARCrvParam.h"
#include "KARPlatformExport.h"

#include <cstddef>
#include <type_traits>

/// The part of a curve that is used: from a low to a high parameter. Its memory comes from malloc,
/// so that an owner who knows it as an untyped pointer may free it.
class KAR_API KARCrvLimits
{
public:
    /// The empty range at 0.
    KARCrvLimits() = default;
    /// The range between two parameters, which are kept as given. With `verification` 1 the range
    /// is checked and IsValid tells the result; with 0 it counts as valid.
    KARCrvLimits(const KARCrvParam& low, const KARCrvParam& high, int verification = 0);

    /// The two parameters as numbers.
    void GetExtremities(double& low, double& high) const;
    /// The two parameters.
    void GetExtremities(KARCrvParam& low, KARCrvParam& high) const;
    /// False when the check found a number that is not finite, or low above high.
    bool IsValid() const { return m_valid; }

    /// Memory of this library, so that it may be freed in another one.
    static void* operator new(std::size_t size);
    static void operator delete(void* memory) noexcept;

private:
    KARCrvParam m_low;
    KARCrvParam m_high;
    bool m_valid = true;
};

static_assert(std::is_trivially_destructible_v<KARCrvLimits>, "freed without its destructor");
