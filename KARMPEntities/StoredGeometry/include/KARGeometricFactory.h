#pragma once

#include "KARIGMKObject.h"

#include <utility>
#include <vector>

/// Makes stored objects and owns them: one reference on each, until the factory goes.
class KAR_API KARGeometricFactory : public KARCountedUnknown
{
    KAR_STORED_CLASS(KARGeometricFactory, KARCountedUnknown)

    /// Makes an empty factory with one reference, the caller's.
    static KARGeometricFactory* Create();

    /// Makes an object by its class's Create; null when the arguments are refused. The reference
    /// is the factory's, none is added for the caller.
    template <typename Object, typename... Arguments>
    Object* Make(Arguments&&... arguments)
    {
        Object* object = Object::Create(std::forward<Arguments>(arguments)...);
        Adopt(object);
        return object;
    }
    /// Takes over the caller's reference on an object, which is given up when an allocation fails;
    /// null changes nothing.
    void Adopt(KARIGMKObject* object);
    /// Takes over the caller's references on objects, none of which is null; when an allocation
    /// fails the caller keeps them all.
    void Adopt(const std::vector<KARIGMKObject*>& objects);
    /// Number of objects that the factory owns.
    int GetObjectCount() const { return static_cast<int>(m_objects.size()); }

private:
    KARGeometricFactory();
    ~KARGeometricFactory() override;

    std::vector<KARIGMKObject*> m_objects;
};
