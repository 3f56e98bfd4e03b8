#pragma once

#include "KARBaseUnknown.h"

/// An object of a modelling application that counts its references. Release never deletes it, so
/// that a test can look at its counts afterwards.
class ModelObject : public KARBaseUnknown
{
public:
    ModelObject() = default;
    ~ModelObject() override = default;

    void* Query(const char* classId) override
    {
        return KARSameClassId(classId, KARBaseUnknown::ClassId()) ? this : nullptr;
    }
    unsigned int AddRef() override
    {
        ++m_added;
        return Held();
    }
    unsigned int Release() override
    {
        ++m_released;
        return Held();
    }

    /// Calls of AddRef so far.
    unsigned int Added() const { return m_added; }
    /// Calls of Release so far.
    unsigned int Released() const { return m_released; }
    /// References that are held now; a release too many shows as a huge number.
    unsigned int Held() const { return m_added - m_released; }

private:
    unsigned int m_added = 0;
    unsigned int m_released = 0;
};
