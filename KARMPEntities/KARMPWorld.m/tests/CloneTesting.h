// What the tests of clones share: entities of any family that have duplicates, and the clones of
// the fixture's world.
#pragma once

#include "KARMPAxisSystem.h"
#include "WorldTesting.h"

/// An entity of a family, as an application derives its own, that has duplicates.
template <class T>
class OwnKindOf : public T
{
public:
    static QOBSharedHandle<T> create(const std::wstring& name)
    {
        const QOBSharedHandle<T> entity(new OwnKindOf);
        entity->setEntityName(name);
        return entity;
    }
    QOBSharedObject* _duplicateObject(QOBDynamicObject::CopyMode mode) const override
    {
        QOBSharedObject* copy = new OwnKindOf(*this, mode);
        copy->addReference();
        return copy;
    }

protected:
    OwnKindOf() = default;
    OwnKindOf(const OwnKindOf& source, QOBDynamicObject::CopyMode mode) : T(source, mode) {}
    ~OwnKindOf() override = default;
};

/// The name that the duplicate of an entity has: none for a constraint, which is as new.
inline std::wstring NameOfDuplicate(const KARMPEntity& source)
{
    return source.isDerivedFrom(KARMPConstraint::ClassInfo()) ? L"" : source.getEntityName();
}

/// The names of the entities that a registry of a world lists, in order.
template <class T>
std::vector<std::wstring> NamesIn(const KARMPWorld& world)
{
    std::vector<std::wstring> names;
    for (int i = 0; i < world.Count<T>(); ++i) {
        QOBSharedHandle<T> entity;
        EXPECT_EQ(world.Get(i, entity), KARSuccess);
        names.push_back(entity->getEntityName());
    }
    return names;
}

using Names = std::vector<std::wstring>;

/// The entry of that name in a registry of a world; the last one of several.
template <class T>
QOBSharedHandle<T> Named(const KARMPWorld& world, const std::wstring& name)
{
    QOBSharedHandle<T> found;
    for (int i = 0; i < world.Count<T>(); ++i) {
        QOBSharedHandle<T> entity;
        world.Get(i, entity);
        if (entity->getEntityName() == name)
            found = entity;
    }
    return found;
}

/// A fixture whose world stands in a basic world and is cloned.
class CloneFixture : public WorldFixture
{
protected:
    /// Adds an entity to the world and places it under the basic world, so that entities that hold
    /// one another are freed with it.
    template <class Family, class T>
    QOBSharedHandle<T> File(const QOBSharedHandle<T>& entity)
    {
        basicWorld->addLogicalChild(entity);
        world->Add<Family>(entity);
        return entity;
    }
    /// The filtered clone, whose duplicates are placed in the same manner.
    QOBSharedHandle<KARMPWorld> CloneOf(const QOBSharedList<KARMPEntity>& filter) const
    {
        return Placed(world->CloneWithFilter(filter));
    }
    /// A filtered clone, whose duplicates it places.
    static QOBSharedHandle<KARMPWorld> Placed(const QOBSharedHandle<KARMPWorld>& clone)
    {
        const QOBSharedHandle<QOBBasicEntity> above(clone->getExtendible());
        karmp::Families::ForEach([&](auto family) {
            using T = typename decltype(family)::Type;
            for (int i = 0; i < clone->Count<T>(); ++i) {
                QOBSharedHandle<T> entity;
                clone->Get(i, entity);
                above->addLogicalChild(entity);
            }
        });
        return clone;
    }
};
