#pragma once

#include "KARMPEntity.h"
#include "KARMPOutput.h"
#include "KARMPParameter.h"
#include "KARMPState.h"

/// An entity class of the tests' own, creatable by name as every concrete class is.
class TestEntity : public KARMPEntity
{
    KARMP_ENTITY(TestEntity, KARMPEntity)

public:
    /// Entities of this class that are alive in the process.
    static int Alive() { return s_alive; }

protected:
    TestEntity() { ++s_alive; }
    TestEntity(const TestEntity& source, CopyMode mode) : Super(source, mode) { ++s_alive; }
    ~TestEntity() override { --s_alive; }

private:
    static inline int s_alive = 0;
};

/// An attribute that can be made, for entities to list.
template <class Attribute>
class TestAttribute : public Attribute
{
public:
    static QOBSharedHandle<Attribute> create(const std::wstring& name)
    {
        const QOBSharedHandle<Attribute> attribute(new TestAttribute);
        attribute->setEntityName(name);
        return attribute;
    }
};
