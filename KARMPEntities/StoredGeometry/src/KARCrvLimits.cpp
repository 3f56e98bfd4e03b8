#include "KARCrvLimits.h"

#include <cmath>
#include <cstdlib>
#include <new>

KARCrvLimits::KARCrvLimits(const KARCrvParam& low, const KARCrvParam& high, int verification)
    : m_low(low),
      m_high(high),
      m_valid(verification == 0 ||
              (std::isfinite(low.GetValue()) && std::isfinite(high.GetValue()) &&
               low.GetValue() <= high.GetValue()))
{}

void KARCrvLimits::GetExtremities(double& low, double& high) const
{
    low = m_low.GetValue();
    high = m_high.GetValue();
}

void KARCrvLimits::GetExtremities(KARCrvParam& low, KARCrvParam& high) const
{
    low = m_low;
    high = m_high;
}

void* KARCrvLimits::operator new(std::size_t size)
{
    void* memory = std::malloc(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void KARCrvLimits::operator delete(void* memory) noexcept
{
    std::free(memory);
}
