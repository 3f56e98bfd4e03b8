#include "KARMPAxialSpring.h"
#include "ConnectorTesting.h"
#include "KARIMPAxialSpringLoader.h"

namespace {

using Spring = KARMPAxialSpring;
using Behavior = KARMPSpringBehavior;

const std::vector<ValueOf<Spring>> SpringValues{
    {&Spring::SetRestLength, &Spring::GetRestLength, 1, L"RestLength"},
    {&Spring::SetStiffness, &Spring::GetStiffness, 1, L"Stiffness"},
    {&Spring::SetDamping, &Spring::GetDamping, 1, L"Damping"},
    {&Spring::SetActuatorForce, &Spring::GetActuatorForce, 0, L"PreLoadForce"}};

class AxialSpring : public ConnectorTest
{
protected:
    QOBSharedHandle<Spring> spring = Spring::create(L"spring");
};

TEST_F(AxialSpring, KeepsItsValuesWithoutTellingItsLoader)
{
    ExpectValues(SpringValues);
}

TEST_F(AxialSpring, ActsInBothSensesUnlessTold)
{
    Behavior::Enum behavior = Behavior::CompressionLock;
    EXPECT_EQ(spring->GetBehavior(behavior), KARSuccess);
    EXPECT_EQ(behavior, Behavior::Bidirectional);
    EXPECT_EQ(spring->SetBehavior(Behavior::ExtensionLock), KARSuccess);
    EXPECT_EQ(spring->GetBehavior(behavior), KARSuccess);
    EXPECT_EQ(behavior, Behavior::ExtensionLock);
}

TEST_F(AxialSpring, GivesItsLoader)
{
    ExpectLoader<Spring, KARIMPAxialSpringLoader>();
}

TEST_F(AxialSpring, WritesItsLinksThenTheBehaviorThenItsValuesInOrder)
{
    for (const ValueOf<Spring>& value : SpringValues)
        (spring.get()->*value.set)(&value - SpringValues.data() < 2 ? first : second);
    spring->SetBehavior(Behavior::CompressionFree);
    TestSerializer root;
    EXPECT_EQ(spring->Serialize(&root), KARSuccess);
    EXPECT_EQ(ElementsOf(root),
              (Names{L"Behavior", L"RestLength", L"Stiffness", L"Damping", L"PreLoadForce"}));
    EXPECT_EQ(root.Text(L"AxialSpring/Behavior"), L"CompressionFree");
    EXPECT_EQ(root.Text(L"AxialSpring/Stiffness/@id"), L"K1");
    EXPECT_EQ(root.Text(L"AxialSpring/PreLoadForce/@id"), L"K2");
    EXPECT_EQ(root.Text(L"AxialSpring/PreLoadForce/@name"), L"second");
}

TEST_F(AxialSpring, WritesNoValueThatIsNotSetAndReportsNone)
{
    TestSerializer root;
    EXPECT_EQ(spring->Serialize(&root), KARSuccess);
    EXPECT_EQ(ElementsOf(root), Names{L"Behavior"});
    EXPECT_EQ(root.Text(L"AxialSpring/Behavior"), L"Bidirectional");
}

TEST_F(AxialSpring, WritesTheFirstWordForABehaviorThatIsNone)
{
    spring->SetBehavior(static_cast<Behavior::Enum>(5));
    TestSerializer root;
    EXPECT_EQ(spring->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"AxialSpring/Behavior"), L"Bidirectional");
}

// Its getters are not asked: a value that one of them keeps back is written all the same.
TEST_F(AxialSpring, WritesWhatItHoldsWhateverItsGettersGive)
{
    class Silent : public Spring
    {
    public:
        KARStatus GetStiffness(Value& value) const override
        {
            value = nullptr;
            return KARFailure;
        }
    };
    const QOBSharedHandle<Spring> silent(new Silent);
    silent->SetStiffness(first);
    TestSerializer root;
    EXPECT_EQ(silent->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"AxialSpring/Stiffness/@id"), L"K1");
}

TEST_F(AxialSpring, ReadsEachValueFromItsElement)
{
    ExpectValuesRead(L"AxialSpring", SpringValues);
}

TEST_F(AxialSpring, MissesNothingThatIsNotThere)
{
    spring->SetBehavior(Behavior::ExtensionFree);
    TestDeserializer root;
    AddElement(root, L"AxialSpring");
    EXPECT_EQ(spring->Deserialize(&root, entities), KARSuccess);
    ExpectReports(0);
    Behavior::Enum behavior = Behavior::Bidirectional;
    spring->GetBehavior(behavior);
    EXPECT_EQ(behavior, Behavior::ExtensionFree);
}

TEST_F(AxialSpring, ReadsAnUnknownWordAsTheFirst)
{
    spring->SetBehavior(Behavior::ExtensionFree);
    TestDeserializer root;
    AddElement(root, L"AxialSpring").Leaf(L"Behavior", L"Stiff");
    EXPECT_EQ(spring->Deserialize(&root, entities), KARSuccess);
    Behavior::Enum behavior = Behavior::ExtensionFree;
    spring->GetBehavior(behavior);
    EXPECT_EQ(behavior, Behavior::Bidirectional);
}

TEST_F(AxialSpring, CopiesItsBehaviorAlone)
{
    const auto original = ConcreteEntity<Spring>::create(L"original");
    original->SetBehavior(Behavior::CompressionLock);
    for (const ValueOf<Spring>& value : SpringValues)
        (original.get()->*value.set)(first);
    const auto copy = original->copy();
    Behavior::Enum behavior = Behavior::Bidirectional;
    copy->GetBehavior(behavior);
    EXPECT_EQ(behavior, Behavior::CompressionLock);
    for (const ValueOf<Spring>& value : SpringValues) {
        Value found;
        EXPECT_EQ((copy.get()->*value.get)(found), KARFailure);
    }
    EXPECT_EQ(TakeReports(), 3U);
}

TEST_F(AxialSpring, SharesItsValuesWithOtherSprings)
{
    const auto other = Spring::create(L"other");
    for (const auto& owner : {spring, other}) {
        owner->SetStiffness(first);
        owner->SetDamping(first);
    }
    spring->orphanObject();
    spring.detach();
    Value found;
    EXPECT_EQ(other->GetStiffness(found), KARSuccess);
    EXPECT_EQ(found, first);
    EXPECT_EQ(ReadBack(other)->GetDamping(found), KARSuccess);
    EXPECT_EQ(found, first);
}

} // namespace
