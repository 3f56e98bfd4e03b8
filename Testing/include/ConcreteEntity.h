// Entities of classes that are not created by name themselves, and entities with scripted failures.
#pragma once

#include "KARStatus.h"
#include "QOBSharedHandle.h"

#include <string>

class KARIMPEntityLoader;

/// An entity of any class T, with T's identity, whose loader can be made impossible to fetch.
template <class T>
class ConcreteEntity : public T
{
public:
    static QOBSharedHandle<ConcreteEntity> create(const std::wstring& name)
    {
        const QOBSharedHandle<ConcreteEntity> entity(new ConcreteEntity);
        entity->setEntityName(name);
        entity->SetIdentifier(name);
        return entity;
    }
    /// A copy by T's copy constructor.
    QOBSharedHandle<ConcreteEntity> copy() const
    {
        return QOBSharedHandle<ConcreteEntity>(new ConcreteEntity(*this));
    }
    /// Entities of this class that are alive in the process.
    static int Alive() { return s_alive; }

    /// Lets the fetch of the loader fail.
    bool failsToFetch = false;

    using T::GetLoader;
    KARStatus GetLoader(KARIMPEntityLoader*& loader) const override
    {
        return failsToFetch ? KARFailure : T::GetLoader(loader);
    }

    using T::ClearContainers;
    using T::RemoveParent;

protected:
    ConcreteEntity() { ++s_alive; }
    ConcreteEntity(const ConcreteEntity& source) : T(source, {}) { ++s_alive; }
    ~ConcreteEntity() override { --s_alive; }

private:
    static inline int s_alive = 0;
};
