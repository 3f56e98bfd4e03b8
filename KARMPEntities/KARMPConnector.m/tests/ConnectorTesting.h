// What the tests of springs, bushings and force elements share.
#pragma once

#include "ConcreteEntity.h"
#include "KARMPConnector.h"
#include "KARMPConstant.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "RecordingEntityLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <memory>
#include <string>
#include <vector>

/// One of the values of a connector.
template <class C>
struct ValueOf
{
    using Value = QOBSharedHandle<KARMPValue>;

    KARStatus (C::*set)(const Value&);
    KARStatus (C::*get)(Value&) const;
    /// Reports of the getter while nothing is set.
    std::size_t reports;
    std::wstring element;
};

/// Two constants in a table of entities, and what holds of every connector with values.
class ConnectorTest : public KARMPTestFixture
{
protected:
    using Value = QOBSharedHandle<KARMPValue>;
    using Names = std::vector<std::wstring>;

    ConnectorTest()
    {
        Enter(L"K1", first);
        Enter(L"K2", second);
    }
    void Enter(const wchar_t* identifier, const QOBSharedHandle<KARMPEntity>& entity)
    {
        entity->SetIdentifier(identifier);
        entities.Set(identifier, entity);
    }
    /// The names of the children of a tree's first element.
    static Names ElementsOf(const TestSerializer& root)
    {
        Names names;
        for (std::size_t i = 0; i < root.Child(0).GetElementCount(); ++i)
            names.emplace_back(root.Child(0).Child(i).GetId());
        return names;
    }
    /// A connector's element as it is read, with what the entity base asks for.
    static TestDeserializer& AddElement(TestDeserializer& root, std::wstring_view name)
    {
        return root.Add(name)
            .Attribute(L"id", L"N1")
            .Attribute(L"name", L"n")
            .Attribute(L"isActive", L"yes");
    }
    /// A connector that was read from what another one writes.
    template <class C>
    QOBSharedHandle<C> ReadBack(const QOBSharedHandle<C>& connector)
    {
        TestSerializer root;
        connector->Serialize(&root);
        const auto read = C::create(L"read");
        EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
        return read;
    }

    /// Expects that each value is set, replaced and refused when null, without a word to the
    /// loader, and that one that is not set is none.
    template <class C>
    void ExpectValues(const std::vector<ValueOf<C>>& values)
    {
        LoaderRecord record;
        const auto connector = C::create(L"c");
        connector->SetLoader(new RecordingEntityLoader(record));
        for (const ValueOf<C>& value : values) {
            SCOPED_TRACE(std::string(value.element.begin(), value.element.end()));
            Value found = second;
            EXPECT_EQ((connector.get()->*value.get)(found), KARFailure);
            EXPECT_FALSE(found);
            ExpectReports(value.reports);
            EXPECT_EQ((connector.get()->*value.set)(second), KARSuccess);
            EXPECT_EQ((connector.get()->*value.set)(first), KARSuccess);
            EXPECT_EQ((connector.get()->*value.set)(Value()), KARFailure);
            ExpectReports(1);
            EXPECT_EQ((connector.get()->*value.get)(found), KARSuccess);
            EXPECT_EQ(found, first);
        }
        EXPECT_TRUE(record.calls.empty());
    }
    /// Expects that each value is read from the element of its name, and that an unknown identifier
    /// is reported by the services and by the connector.
    template <class C>
    void ExpectValuesRead(std::wstring_view name, const std::vector<ValueOf<C>>& values)
    {
        for (const ValueOf<C>& value : values) {
            SCOPED_TRACE(std::string(value.element.begin(), value.element.end()));
            TestDeserializer root;
            AddElement(root, name).Reference(value.element, L"K2");
            const auto connector = C::create(L"c");
            EXPECT_EQ(connector->Deserialize(&root, entities), KARSuccess);
            for (const ValueOf<C>& other : values) {
                Value found;
                (connector.get()->*other.get)(found);
                EXPECT_EQ(found, &other == &value ? second : Value());
            }
            TakeReports();
            TestDeserializer unknown;
            AddElement(unknown, name).Reference(value.element, L"unknown");
            const auto former = C::create(L"former");
            (former.get()->*value.set)(first);
            EXPECT_EQ(former->Deserialize(&unknown, entities), KARSuccess);
            ExpectReports(2);
            Value found;
            EXPECT_EQ((former.get()->*value.get)(found), KARSuccess);
            EXPECT_EQ(found, first) << "what was set stays";
        }
    }
    /// Expects that the connector gives its loader when it is of the interface.
    template <class C, class Loader>
    void ExpectLoader()
    {
        LoaderRecord record;
        const auto connector = ConcreteEntity<C>::create(L"c");
        Loader* loader = reinterpret_cast<Loader*>(&record);
        EXPECT_EQ(connector->GetLoader(loader), KARSuccess);
        EXPECT_EQ(loader, nullptr);
        // A loader that another one takes the place of is not freed.
        const auto other = std::make_unique<RecordingEntityLoader>(record);
        connector->SetLoader(other.get());
        loader = reinterpret_cast<Loader*>(&record);
        EXPECT_EQ(connector->GetLoader(loader), KARSuccess);
        EXPECT_EQ(loader, nullptr) << "a loader of another interface";
        auto* const attached = new RecordingLoader<Loader>(record);
        connector->SetLoader(attached);
        EXPECT_EQ(connector->GetLoader(loader), KARSuccess);
        EXPECT_EQ(loader, attached);
        connector->failsToFetch = true;
        EXPECT_EQ(connector->GetLoader(loader), KARFailure);
        EXPECT_EQ(loader, nullptr);
        ExpectReports(1);
    }

    Value first = KARMPConstant::create(L"first");
    Value second = KARMPConstant::create(L"second");
    KARMPEntityTable entities;
};
