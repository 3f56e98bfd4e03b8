#pragma once

#include "KARMPEntity.h"

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
