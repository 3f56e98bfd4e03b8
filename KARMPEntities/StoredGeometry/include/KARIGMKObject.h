#pragma once

#include "KARBaseUnknown.h"
#include "KARPlatformExport.h"

#include <vector>

namespace kar {
class GMKWriter;
}

/// Identity of a class of stored objects: its identifier, which is its name, and its query.
#define KAR_STORED_CLASS(Class, Base)                                                              \
public:                                                                                            \
    /** Identifier of this class. */                                                               \
    static const char* ClassId()                                                                   \
    {                                                                                              \
        return #Class;                                                                             \
    }                                                                                              \
    /** Answers this class's identifier and those of its bases. */                                 \
    void* Query(const char* classId) override                                                      \
    {                                                                                              \
        return KARSameClassId(classId, ClassId()) ? static_cast<Class*>(this)                      \
                                                  : Base::Query(classId);                          \
    }

/// An object of the stored geometry: a curve, a surface or a body, counted and saved to a stream.
class KAR_API KARIGMKObject : public KARCountedUnknown
{
    KAR_STORED_CLASS(KARIGMKObject, KARCountedUnknown)

    /// Appends the stored objects that this one refers to; by default none.
    virtual void GetReferences(std::vector<const KARIGMKObject*>& references) const;
    /// Writes the object's record; false when the class has none, which is the default.
    virtual bool Store(kar::GMKWriter& writer) const;

protected:
    KARIGMKObject();
    ~KARIGMKObject() override;
};
