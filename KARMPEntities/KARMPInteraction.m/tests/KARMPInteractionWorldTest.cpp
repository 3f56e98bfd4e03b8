// Interactions and the sensor of their contacts in the document of a world.
#include "KARMPBody.h"
#include "KARMPCollisionInterLayer.h"
#include "KARMPCollisionLayer.h"
#include "KARMPCollisionRule.h"
#include "KARMPCollisionSensor.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

using Body = QOBSharedHandle<KARMPBody>;

/// A world with two bodies, a rule of them, two layers, an inter-layer and a sensor with a contact.
class InteractionWorld : public KARMPTestFixture
{
protected:
    InteractionWorld()
    {
        Add<KARMPBody>(first);
        Add<KARMPBody>(second);
        rule->SetFirstBody(first);
        rule->SetSecondBody(second);
        near->AddCollidable(first);
        far->AddCollidable(second);
        interLayer->AddCollidable(near);
        interLayer->AddCollidable(far);
        Add<KARMPInteraction>(rule);
        Add<KARMPInteraction>(near);
        Add<KARMPInteraction>(far);
        Add<KARMPInteraction>(interLayer);
        sensor->SetCollisionRule(rule);
        KARMPContactGeometryData contact;
        contact.firstBody = second;
        contact.secondBody = first;
        contact.penetrationDepth = 0.5;
        sensor->AddContactGeometryData(contact);
        Add<KARMPSensor>(sensor);
    }
    template <class T>
    void Add(const QOBSharedHandle<T>& entity)
    {
        basicWorld->addLogicalChild(entity);
        EXPECT_EQ(world->Add(entity), KARSuccess);
    }
    /// The only entity of a registry that is of a class.
    template <class T, class Family>
    static QOBSharedHandle<T> Only(const KARMPWorld& from)
    {
        QOBSharedHandle<T> found;
        for (int index = 0; index < from.template Count<Family>(); ++index) {
            QOBSharedHandle<Family> entity;
            from.Get(index, entity);
            if (entity->isInstanceOf(T::ClassInfo())) {
                EXPECT_FALSE(found);
                found = QOBSharedHandle<T>(entity);
            }
        }
        EXPECT_TRUE(found);
        return found;
    }

    QOBSharedHandle<QOBBasicWorld> basicWorld = QOBBasicWorld::create(L"basic");
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basicWorld);
    Body first = KARMPBody::create(L"first");
    Body second = KARMPBody::create(L"second");
    QOBSharedHandle<KARMPCollisionRule> rule = KARMPCollisionRule::create(L"rule");
    QOBSharedHandle<KARMPCollisionLayer> near = KARMPCollisionLayer::create(L"near");
    QOBSharedHandle<KARMPCollisionLayer> far = KARMPCollisionLayer::create(L"far");
    QOBSharedHandle<KARMPCollisionInterLayer> interLayer =
        KARMPCollisionInterLayer::create(L"between");
    QOBSharedHandle<KARMPCollisionSensor> sensor = KARMPCollisionSensor::create(L"sensor");
};

// A layer's record names no interaction, so that a world finds no registry for one that it reads.
TEST_F(InteractionWorld, ReadsAllOfThemAndFilesAllButLayers)
{
    TestSerializer root;
    EXPECT_EQ(world->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Count(L"World/Interactions/CollisionLayer"), 2U);
    const auto otherBasic = QOBBasicWorld::create(L"other");
    const auto other = KARMPWorld::create(otherBasic);
    EXPECT_EQ(other->Deserialize(TestDeserializer::From(root).get()), KARSuccess);
    ExpectReports(0);
    EXPECT_EQ(other->Count<KARMPInteraction>(), 2);
    const auto readRule = Only<KARMPCollisionRule, KARMPInteraction>(*other);
    const auto between = Only<KARMPCollisionInterLayer, KARMPInteraction>(*other);
    const auto readSensor = Only<KARMPCollisionSensor, KARMPSensor>(*other);
    Body one;
    Body two;
    EXPECT_EQ(readRule->GetFirstBody(one), KARSuccess);
    EXPECT_EQ(readRule->GetSecondBody(two), KARSuccess);
    EXPECT_EQ(one->getEntityName(), L"first");
    EXPECT_EQ(two->getEntityName(), L"second");
    QOBSharedVector<KARMPEntity> all;
    EXPECT_EQ(between->GetEntities(0, all), KARSuccess);
    EXPECT_EQ(between->GetEntities(1, all), KARSuccess);
    EXPECT_EQ(all, (QOBSharedVector<KARMPEntity>{one, two}));
    QOBSharedHandle<KARMPCollisionRule> found;
    EXPECT_EQ(readSensor->GetCollisionRule(found), KARSuccess);
    EXPECT_EQ(found, readRule);
    KARMPContactGeometryData contact;
    EXPECT_EQ(readSensor->GetContactGeometryData(0, contact), KARSuccess);
    EXPECT_EQ(contact.firstBody, two);
    EXPECT_EQ(contact.secondBody, one);
    EXPECT_EQ(contact.penetrationDepth, 0.5);
}

TEST_F(InteractionWorld, LetsEverythingGoWithTheWorld)
{
    KARMPWorld::destroy(world);
    basicWorld = nullptr;
    EXPECT_EQ(rule->getReferenceCount(), 2U) << "this fixture and the sensor";
    sensor = nullptr;
    EXPECT_EQ(rule->getReferenceCount(), 1U);
    rule = nullptr;
    near = nullptr;
    EXPECT_EQ(first->getReferenceCount(), 2U) << "the inter-layer keeps its layers";
    interLayer = nullptr;
    EXPECT_EQ(first->getReferenceCount(), 1U);
}

} // namespace
