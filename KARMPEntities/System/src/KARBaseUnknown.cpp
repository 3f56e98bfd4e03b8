#include "KARBaseUnknown.h"

#include <cstring>

KARBaseUnknown::~KARBaseUnknown() = default;

KARBaseUnknown* KARBaseUnknown::GetResolved([[maybe_unused]] int kind)
{
    return this;
}

const char* KARBaseUnknown::ClassId()
{
    return "KARBaseUnknown";
}

bool KARSameClassId(const char* left, const char* right)
{
    return left != nullptr && right != nullptr && std::strcmp(left, right) == 0;
}

KARCountedUnknown::~KARCountedUnknown() = default;

void* KARCountedUnknown::Query(const char* classId)
{
    if (KARSameClassId(classId, ClassId()))
        return this;
    if (KARSameClassId(classId, KARBaseUnknown::ClassId()))
        return static_cast<KARBaseUnknown*>(this);
    return nullptr;
}

unsigned int KARCountedUnknown::AddRef()
{
    return m_count.fetch_add(1, std::memory_order_relaxed) + 1;
}

unsigned int KARCountedUnknown::Release()
{
    const unsigned int left = m_count.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0)
        delete this;
    return left;
}

const char* KARCountedUnknown::ClassId()
{
    return "KARCountedUnknown";
}
