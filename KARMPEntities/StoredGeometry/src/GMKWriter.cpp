#include "GMKWriter.h"

namespace kar {

void GMKWriter::Reference(const KARIGMKObject* object)
{
    const auto found = m_indices.find(object);
    if (found == m_indices.end()) {
        Fail();
        return;
    }
    Index(found->second);
}

void GMKWriter::Limits(const KARSurLimits& limits)
{
    Real(limits.uLow);
    Real(limits.uHigh);
    Real(limits.vLow);
    Real(limits.vHigh);
}

} // namespace kar
