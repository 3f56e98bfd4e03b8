#include "KARMPProximitySensor.h"
#include "ConcreteEntity.h"
#include "KARIMPProximitySensorLoader.h"
#include "KARMPBody.h"
#include "KARMPEntityTable.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "QOBException.h"
#include "RecordingSensorLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

using Body = QOBSharedHandle<KARMPBody>;
using Sensor = QOBSharedHandle<KARMPProximitySensor>;
using Data = KARMPProximitySensorData;
using Loader = RecordingSensorLoaderOf<KARIMPProximitySensorLoader>;

class ProximitySensor : public KARMPTestFixture
{
protected:
    ProximitySensor()
    {
        Enter(L"watched", watched);
        Enter(L"first", first);
        Enter(L"second", second);
    }
    void Enter(const wchar_t* identifier, const QOBSharedHandle<KARMPEntity>& entity)
    {
        entity->SetIdentifier(identifier);
        entities.Set(identifier, entity);
    }
    /// Every flag set, a clearance, a body and a group of two.
    Data Full() const
    {
        Data data;
        data.SetSensorBody(watched);
        data.SetUseGroupContext(true);
        data.AddBodyToGroup(first);
        data.AddBodyToGroup(second);
        data.SetInverseResult(true);
        data.SetUseClearance(true);
        data.SetClearance(0.25);
        return data;
    }
    static Data DataOf(const KARMPProximitySensor& one)
    {
        Data data;
        EXPECT_EQ(one.GetProximitySensorData(data), KARSuccess);
        return data;
    }
    static bool StatusOf(const KARMPProximitySensor& one)
    {
        bool status = false;
        EXPECT_EQ(one.GetProximitySensorStatus(status), KARSuccess);
        return status;
    }
    static Body SensorBodyOf(const Data& data)
    {
        Body body;
        const KARStatus status = data.GetSensorBody(body);
        EXPECT_EQ(status, body ? KARSuccess : KARFailure);
        return body;
    }
    static std::vector<Body> GroupOf(const Data& data)
    {
        std::vector<Body> group(static_cast<std::size_t>(data.GetBodyInGroupCount()));
        for (int index = 0; index < data.GetBodyInGroupCount(); ++index)
            EXPECT_EQ(data.GetBodyInGroup(index, group[static_cast<std::size_t>(index)]),
                      KARSuccess);
        return group;
    }
    static void ExpectScalars(const Data& data, bool flags, double clearance)
    {
        EXPECT_EQ(data.GetUseGroupContext(), flags);
        EXPECT_EQ(data.GetInverseResult(), flags);
        EXPECT_EQ(data.GetUseClearance(), flags);
        EXPECT_EQ(data.GetClearance(), clearance);
    }
    static TestDeserializer& Plain(TestDeserializer& root)
    {
        return root.Add(L"ProximitySensor")
            .Attribute(L"id", L"r")
            .Attribute(L"name", L"r")
            .Attribute(L"isActive", L"yes");
    }

    SensorLoaderRecord record;
    QOBSharedHandle<ConcreteEntity<KARMPProximitySensor>> sensor =
        ConcreteEntity<KARMPProximitySensor>::create(L"s");
    Body watched = KARMPBody::create(L"watched");
    Body first = KARMPBody::create(L"first");
    Body second = KARMPBody::create(L"second");
    KARMPEntityTable entities;
};

TEST_F(ProximitySensor, WatchesNothingAtFirst)
{
    const Data data = DataOf(*sensor);
    ExpectScalars(data, false, 0.0);
    EXPECT_FALSE(SensorBodyOf(data));
    EXPECT_EQ(data.GetBodyInGroupCount(), 0);
    EXPECT_FALSE(StatusOf(*sensor));
}

TEST_F(ProximitySensor, HasEachBodyOnceInItsGroup)
{
    Data data;
    EXPECT_EQ(data.AddBodyToGroup(first), KARSuccess);
    EXPECT_EQ(data.AddBodyToGroup(second), KARSuccess);
    EXPECT_EQ(data.AddBodyToGroup(first), KARUnchanged);
    EXPECT_EQ(data.AddBodyToGroup({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(GroupOf(data), (std::vector<Body>{first, second}));
    for (const int index : {-1, 2}) {
        Body found = first;
        EXPECT_EQ(data.GetBodyInGroup(index, found), KARFailure);
        EXPECT_FALSE(found);
    }
    ExpectReports(0);
}

TEST_F(ProximitySensor, StoresTheWatchedBodyNullIncluded)
{
    Data data;
    EXPECT_EQ(data.SetSensorBody(watched), KARSuccess);
    EXPECT_EQ(SensorBodyOf(data), watched);
    EXPECT_EQ(data.SetSensorBody({}), KARSuccess);
    EXPECT_FALSE(SensorBodyOf(data));
    ExpectReports(0);
}

TEST_F(ProximitySensor, CopiesItsDataInAndOut)
{
    Data data = Full();
    EXPECT_EQ(sensor->SetProximitySensorData(data), KARSuccess);
    data.SetClearance(9.0);
    data.AddBodyToGroup(watched);
    Data found = DataOf(*sensor);
    ExpectScalars(found, true, 0.25);
    EXPECT_EQ(SensorBodyOf(found), watched);
    EXPECT_EQ(GroupOf(found), (std::vector<Body>{first, second}));
    found.SetSensorBody({});
    EXPECT_EQ(SensorBodyOf(DataOf(*sensor)), watched);
}

TEST_F(ProximitySensor, ForgetsItsStatusAloneWhenReset)
{
    sensor->SetLoader(new Loader(record));
    sensor->SetProximitySensorData(Full());
    EXPECT_EQ(sensor->SetProximitySensorStatus(true), KARSuccess);
    EXPECT_TRUE(StatusOf(*sensor));
    EXPECT_EQ(sensor->Reset(), KARSuccess);
    EXPECT_FALSE(StatusOf(*sensor));
    ExpectScalars(DataOf(*sensor), true, 0.25);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(ProximitySensor, HasItsLoaderMeasureWhetherItIsActiveOrNot)
{
    record.measure = [this] { sensor->SetProximitySensorStatus(true); };
    sensor->SetLoader(new Loader(record));
    EXPECT_EQ(sensor->Update(), KARSuccess);
    EXPECT_TRUE(StatusOf(*sensor));
    sensor->Reset();
    sensor->Deactivate();
    EXPECT_EQ(sensor->Update(), KARSuccess);
    EXPECT_TRUE(StatusOf(*sensor));
    EXPECT_EQ(record.calls, (std::vector<std::string>{"Update", "OnDeactivate", "Update"}));
    record.answer = KARUnchanged;
    EXPECT_EQ(sensor->Update(), KARSuccess);
    record.answer = KARUnexpected;
    EXPECT_EQ(sensor->Update(), KARFailure);
    ExpectReports(1);
}

TEST_F(ProximitySensor, FailsToUpdateWithoutALoaderOfItsOwn)
{
    for (const bool isActive : {true, false}) {
        if (!isActive)
            sensor->Deactivate();
        EXPECT_EQ(sensor->Update(), KARFailure);
        ExpectReports(1);
    }
    sensor->SetLoader(new RecordingSensorLoader(record));
    EXPECT_EQ(sensor->Update(), KARFailure);
    ExpectReports(1);
    EXPECT_TRUE(record.calls.empty());
    sensor->failsToFetch = true;
    EXPECT_EQ(sensor->Update(), KARFailure);
    EXPECT_GE(TakeReports(), 1U);
}

TEST_F(ProximitySensor, CopiesFlagsClearanceAndStatusButNoBody)
{
    sensor->SetProximitySensorData(Full());
    sensor->SetProximitySensorStatus(true);
    const auto copy = sensor->copy();
    const Data data = DataOf(*copy);
    ExpectScalars(data, true, 0.25);
    EXPECT_FALSE(SensorBodyOf(data));
    EXPECT_EQ(data.GetBodyInGroupCount(), 0);
    EXPECT_TRUE(StatusOf(*copy));
    EXPECT_EQ(GroupOf(DataOf(*sensor)).size(), 2U);
}

TEST_F(ProximitySensor, KeepsDestroyedBodies)
{
    const auto counted = first->getReferenceCount();
    sensor->SetProximitySensorData(Full());
    Body handle = first;
    KARMPBody::destroy(handle);
    EXPECT_EQ(GroupOf(DataOf(*sensor)), (std::vector<Body>{first, second}));
    sensor = nullptr;
    EXPECT_EQ(first->getReferenceCount(), counted);
}

TEST_F(ProximitySensor, WritesWhatItWatches)
{
    sensor->SetProximitySensorData(Full());
    sensor->SetProximitySensorStatus(true);
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"ProximitySensor");
    EXPECT_TRUE(element.Flag(L"@Status"));
    ASSERT_EQ(element.GetElementCount(), 1U);
    const TestSerializer& data = element.Child(0);
    EXPECT_EQ(data.GetId(), L"ProximitySensorData");
    EXPECT_TRUE(data.Flag(L"@UseGroupContext"));
    EXPECT_TRUE(data.Flag(L"@InverseResult"));
    EXPECT_TRUE(data.Flag(L"@UseClearance"));
    EXPECT_EQ(data.Number(L"@Clearance"), 0.25);
    ASSERT_EQ(data.GetElementCount(), 2U);
    EXPECT_EQ(data.Child(0).GetId(), L"SensorBody");
    EXPECT_EQ(data.Text(L"SensorBody/@id"), L"watched");
    EXPECT_EQ(data.Text(L"SensorBody/@name"), L"watched");
    EXPECT_EQ(data.Child(1).GetId(), L"ProximitySensorGroup");
    EXPECT_EQ(data.Count(L"ProximitySensorGroup/BodyInGroup"), 2U);
    EXPECT_EQ(data.Text(L"ProximitySensorGroup/BodyInGroup[1]/@id"), L"second");
}

TEST_F(ProximitySensor, WritesNoFlagThatIsFalseAndNothingThatIsNotUsed)
{
    Data data = Full();
    data.SetSensorBody({});
    data.SetUseGroupContext(false);
    data.SetInverseResult(false);
    data.SetUseClearance(false);
    sensor->SetProximitySensorData(data);
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    ExpectReports(0);
    const TestSerializer& written = root.Child(0).Child(0);
    EXPECT_EQ(written.GetAttributeCount(), 0);
    ASSERT_EQ(written.GetElementCount(), 1U);
    EXPECT_EQ(written.Child(0).GetId(), L"SensorBody");
    EXPECT_EQ(written.Child(0).GetAttributeCount(), 0);
    EXPECT_FALSE(root.Flag(L"ProximitySensor/@Status"));
}

TEST_F(ProximitySensor, WritesNoEmptyGroup)
{
    Data data;
    data.SetUseGroupContext(true);
    sensor->SetProximitySensorData(data);
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    EXPECT_TRUE(root.Flag(L"ProximitySensor/ProximitySensorData/@UseGroupContext"));
    EXPECT_FALSE(root.Has(L"ProximitySensor/ProximitySensorData/ProximitySensorGroup"));
}

TEST_F(ProximitySensor, ReadsBackWhatItWroteInEitherForm)
{
    sensor->SetProximitySensorStatus(true);
    for (const bool isFull : {true, false}) {
        sensor->SetProximitySensorData(isFull ? Full() : Data());
        TestSerializer root;
        sensor->Serialize(&root);
        for (const bool asText : {false, true}) {
            const Sensor read = KARMPProximitySensor::create(L"");
            const auto tree = TestDeserializer::From(root, {.asText = asText});
            EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
            ExpectReports(0);
            const Data data = DataOf(*read);
            ExpectScalars(data, isFull, isFull ? 0.25 : 0.0);
            EXPECT_EQ(SensorBodyOf(data), isFull ? watched : Body());
            EXPECT_EQ(GroupOf(data),
                      isFull ? (std::vector<Body>{first, second}) : std::vector<Body>());
            EXPECT_TRUE(StatusOf(*read));
        }
    }
}

TEST_F(ProximitySensor, ReadsAFlagThatIsMissingAsFalse)
{
    TestDeserializer root;
    Plain(root).Attribute(L"Status", false).Add(L"ProximitySensorData").Add(L"SensorBody");
    const Sensor read = KARMPProximitySensor::create(L"");
    read->SetProximitySensorData(Full());
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(0);
    ExpectScalars(DataOf(*read), false, 0.0);
    EXPECT_EQ(SensorBodyOf(DataOf(*read)), watched);
}

TEST_F(ProximitySensor, KeepsItsStatusAndDataWhereTheyAreMissing)
{
    TestDeserializer root;
    Plain(root);
    const Sensor read = KARMPProximitySensor::create(L"");
    read->SetProximitySensorData(Full());
    read->SetProximitySensorStatus(true);
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(2);
    ExpectScalars(DataOf(*read), true, 0.25);
    EXPECT_TRUE(StatusOf(*read));
}

TEST_F(ProximitySensor, SkipsUnknownBodiesAndRefusesAnotherClass)
{
    TestDeserializer root;
    TestDeserializer& data = Plain(root).Attribute(L"Status", true).Add(L"ProximitySensorData");
    data.Reference(L"SensorBody", L"unknown");
    data.Add(L"ProximitySensorGroup")
        .Reference(L"BodyInGroup", L"unknown")
        .Reference(L"BodyInGroup", L"second")
        .Reference(L"BodyInGroup", L"second");
    const Sensor read = KARMPProximitySensor::create(L"");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(0);
    EXPECT_FALSE(SensorBodyOf(DataOf(*read)));
    EXPECT_EQ(GroupOf(DataOf(*read)), std::vector<Body>{second});
    entities.Set(L"unknown", KARMPPoint::create(L"p"));
    const Sensor again = KARMPProximitySensor::create(L"");
    EXPECT_THROW(again->Deserialize(&root, entities), QOBEInvalidCast);
}

TEST_F(ProximitySensor, FailsWithoutItsElement)
{
    TestDeserializer root;
    EXPECT_EQ(sensor->Deserialize(&root, entities), KARFailure);
    EXPECT_EQ(sensor->Deserialize(nullptr, entities), KARFailure);
    EXPECT_EQ(sensor->Serialize(nullptr), KARFailure);
    ExpectReports(3);
}

TEST_F(ProximitySensor, FailsWhenItsElementOrItsDataCannotBeAdded)
{
    sensor->SetProximitySensorData(Full());
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
            const bool counts = failing == 1 || failing == 2;
            EXPECT_EQ(sensor->Serialize(&root), counts ? KARFailure : KARSuccess) << failing;
            EXPECT_EQ(TakeReports() > 0, failing != 0);
        });
    EXPECT_EQ(creations, 6U);
}

} // namespace
