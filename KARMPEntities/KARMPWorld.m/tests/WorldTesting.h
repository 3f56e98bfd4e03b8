// What the tests of this module share: entities of every family that a document can hold, and keys.
#pragma once

#include "KARBaseUnknown_var.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "KARMPWorldFamilies.h"
#include "KARTextConversion.h"
#include "QOBBasicWorld.h"

#include <functional>
#include <optional>

/// What the tests' entities do beyond their base, set by a test.
struct WorldTestScript
{
    /// Called with each entity before it reads its content.
    std::function<void(KARMPEntity& entity)> onRead;
    /// Identifier of the entity whose Serialize and Deserialize fail.
    std::optional<std::wstring> failing;
    /// Reads the reference "Other" of each entity.
    std::function<void(const std::wstring& reader, const KARMPEntity* other)> onOther;

    static WorldTestScript& Current()
    {
        static WorldTestScript script;
        return script;
    }
};

/// An entity of a family, with the family's record, that can be made and that writes an element
/// "Test" followed by the family's name.
template <class T>
class TestOf : public T
{
public:
    TestOf() = default;
    ~TestOf() override = default;

    static QOBSharedHandle<T> create(const std::wstring& identifier)
    {
        const QOBSharedHandle<T> entity(new TestOf);
        entity->SetIdentifier(identifier);
        entity->setEntityName(L"name of " + identifier);
        return entity;
    }
    static std::wstring Element() { return L"Test" + kar::ToWide(T::ClassName().substr(5)); }

    KARStatus Serialize(KARMPSerializer* serializer) const override
    {
        karmp::ElementWriter element(serializer, Element());
        std::wstring identifier;
        this->GetIdentifier(identifier);
        if (!element || identifier == WorldTestScript::Current().failing)
            return KARFailure;
        return KARMPEntity::Serialize(element.Node());
    }
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override
    {
        const WorldTestScript& script = WorldTestScript::Current();
        if (script.onRead)
            script.onRead(*this);
        KARMPEntity::Deserialize(deserializer, entities);
        std::wstring identifier;
        this->GetIdentifier(identifier);
        karmp::ElementReader element(deserializer);
        if (script.onOther && element.Has(L"Other")) {
            const auto other =
                element.Child(L"Other", karmp::Absent::Keep).template Target<KARMPEntity>(entities);
            script.onOther(identifier, other.get());
        }
        return identifier == script.failing ? KARFailure : KARSuccess;
    }
};

/// Enters the tests' classes into the factory for as long as it lives; their names begin with
/// "KARMPTest".
class WorldTestClasses : private KARMPGenericFactoryBase
{
public:
    WorldTestClasses()
    {
        karmp::Families::ForEach([](auto family) {
            using T = typename decltype(family)::Type;
            const KARMPGenericFactory<TestOf<T>> factory("KARMP" +
                                                         kar::ToUtf8(TestOf<T>::Element()));
        });
    }
    ~WorldTestClasses()
    {
        std::erase_if(
            GetMap(), [](const auto& entry) { return entry.first.starts_with("KARMPTest"); });
    }
    WorldTestClasses(const WorldTestClasses&) = delete;
    WorldTestClasses& operator=(const WorldTestClasses&) = delete;
};

/// A key that stands for what a test says; by default for itself.
class WorldTestKey : public KARCountedUnknown
{
public:
    static KARBaseUnknown_var Make(KARBaseUnknown* target)
    {
        auto* key = new WorldTestKey;
        const KARBaseUnknown_var held(key);
        key->m_target = target;
        key->Release();
        return held;
    }
    static KARBaseUnknown_var Make()
    {
        const KARBaseUnknown_var key = Make(nullptr);
        Resolve(key, key);
        return key;
    }
    static void Resolve(KARBaseUnknown* key, KARBaseUnknown* target)
    {
        static_cast<WorldTestKey*>(key)->m_target = target;
    }
    static unsigned int References(KARBaseUnknown* key)
    {
        return static_cast<WorldTestKey*>(key)->GetRefCount();
    }

    KARBaseUnknown* GetResolved(int kind) override { return kind == 0 ? m_target : nullptr; }

private:
    KARBaseUnknown* m_target = nullptr;
};

/// A fixture with a world of its own.
class WorldFixture : public KARMPTestFixture
{
protected:
    ~WorldFixture() override { WorldTestScript::Current() = {}; }

    QOBSharedHandle<QOBBasicWorld> basicWorld = QOBBasicWorld::create(L"basic");
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basicWorld);
};

inline std::wstring IdentifierOf(const KARMPEntity& entity)
{
    std::wstring identifier;
    entity.GetIdentifier(identifier);
    return identifier;
}

/// The identifiers that a registry of a world lists, in order.
template <class T>
std::vector<std::wstring> identifiersIn(const KARMPWorld& world)
{
    std::vector<std::wstring> identifiers;
    for (int i = 0; i < world.Count<T>(); ++i) {
        QOBSharedHandle<T> entity;
        EXPECT_EQ(world.Get(i, entity), KARSuccess);
        identifiers.push_back(IdentifierOf(*entity));
    }
    return identifiers;
}

using Identifiers = std::vector<std::wstring>;

/// A functor that tells whether an agent still lives, without holding it.
inline QOBNotificationFunctor Probe(QOBNotificationAgent& agent)
{
    return {agent, [](auto, auto) {}};
}

inline QOBSharedHandle<KARMPBody> GlobalBody(const KARMPWorld& world)
{
    QOBSharedHandle<KARMPBody> body;
    EXPECT_EQ(world.GetGlobalBody(body), KARSuccess);
    return body;
}

inline QOBSharedHandle<KARMPAxisSystem> GlobalAxisSystem(const KARMPWorld& world)
{
    QOBSharedHandle<KARMPAxisSystem> axisSystem;
    EXPECT_EQ(world.GetGlobalAxisSystem(axisSystem), KARSuccess);
    return axisSystem;
}

inline QOBSharedHandle<KARMPVariable> GlobalTime(const KARMPWorld& world)
{
    QOBSharedHandle<KARMPVariable> time;
    EXPECT_EQ(world.GetGlobalTime(time), KARSuccess);
    return time;
}
