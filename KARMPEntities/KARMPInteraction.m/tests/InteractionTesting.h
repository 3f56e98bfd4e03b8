// Interactions with bodies that they list.
#pragma once

#include "ConcreteEntity.h"
#include "KARMPBody.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

/// An interaction of a class and three bodies in a table.
template <class T>
class InteractionTesting : public KARMPTestFixture
{
protected:
    using Entity = QOBSharedHandle<KARMPEntity>;
    using Body = QOBSharedHandle<KARMPBody>;

    InteractionTesting()
    {
        Enter(L"first", first);
        Enter(L"second", second);
        Enter(L"third", third);
    }
    /// An interaction that has no identifier, to be read into.
    static QOBSharedHandle<T> New()
    {
        struct Unnamed : ConcreteEntity<T>
        {};
        return QOBSharedHandle<T>(new Unnamed);
    }
    void Enter(const wchar_t* identifier, const Entity& entity)
    {
        entity->SetIdentifier(identifier);
        entities.Set(identifier, entity);
    }
    /// Expects the entries of an interaction, all of them.
    static void ExpectCollidables(const KARMPInteraction& one, const std::vector<Entity>& expected)
    {
        ASSERT_EQ(one.GetCollidableCount(), static_cast<int>(expected.size()));
        for (int index = 0; index < one.GetCollidableCount(); ++index) {
            Entity found;
            EXPECT_EQ(one.GetCollidable(index, found), KARSuccess);
            EXPECT_EQ(found, expected[static_cast<std::size_t>(index)]) << "at " << index;
        }
    }
    /// The attributes that every entity's element has.
    static TestDeserializer& Plain(TestDeserializer& element)
    {
        return element.Attribute(L"id", L"r")
            .Attribute(L"name", L"r")
            .Attribute(L"isActive", L"yes");
    }

    QOBSharedHandle<ConcreteEntity<T>> interaction = ConcreteEntity<T>::create(L"i");
    Body first = KARMPBody::create(L"first");
    Body second = KARMPBody::create(L"second");
    Body third = KARMPBody::create(L"third");
    KARMPEntityTable entities;
};
