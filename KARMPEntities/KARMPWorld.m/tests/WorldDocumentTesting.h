#pragma once

#include "TestDeserializer.h"
#include "TestSerializer.h"
#include "WorldTesting.h"

/// A fixture that writes its world to a tree and reads it from another one.
class WorldDocument : public WorldFixture
{
protected:
    template <class T>
    QOBSharedHandle<T> add(const std::wstring& identifier)
    {
        const auto entity = TestOf<T>::create(identifier);
        EXPECT_EQ(world->Add(entity), KARSuccess);
        return entity;
    }
    /// A registry's element of a document that is being made.
    TestDeserializer& registry(std::wstring_view name) { return worldElement.Add(name); }
    static TestDeserializer& entity(TestDeserializer& registry, std::wstring_view element,
                                    std::wstring_view identifier)
    {
        return registry.Add(element)
            .Attribute(L"id", identifier)
            .Attribute(L"name", L"")
            .Attribute(L"isActive", L"yes");
    }
    KARStatus read() { return world->Deserialize(&document); }

    const WorldTestClasses classes;
    TestSerializer written;
    TestDeserializer document;
    TestDeserializer& worldElement = document.Add(L"World");
};
