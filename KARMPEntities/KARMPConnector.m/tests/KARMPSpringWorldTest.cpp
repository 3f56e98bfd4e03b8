// Springs, bushings and force elements in a world: its document, its end, and what many of them
// cost.
#include "AllocationCounter.h"
#include "ConnectorTesting.h"
#include "KARMPAxialSpring.h"
#include "KARMPBody.h"
#include "KARMPBushing.h"
#include "KARMPForceElement.h"
#include "KARMPJointKinds.h"
#include "KARMPLinearSpring.h"
#include "KARMPTorsionSpring.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"

#include <algorithm>
#include <array>
#include <memory>

namespace {

using Value = QOBSharedHandle<KARMPValue>;
using Body = QOBSharedHandle<KARMPBody>;

/// A world that entities are added to as an application does.
struct Model
{
    template <class Family, class T>
    QOBSharedHandle<T> Add(const QOBSharedHandle<T>& entity)
    {
        basicWorld->addLogicalChild(entity);
        world->Add<Family>(entity);
        return entity;
    }
    template <class T>
    QOBSharedHandle<T> Connect(const QOBSharedHandle<T>& connector, const Body& from,
                               const Body& to)
    {
        Add<KARMPConnector>(connector);
        connector->SetFirstBody(from);
        connector->SetSecondBody(to);
        from->LinkToConnector(connector);
        to->LinkToConnector(connector);
        return connector;
    }
    template <class T>
    QOBSharedHandle<T> Connector(int index) const
    {
        QOBSharedHandle<KARMPConnector> connector;
        world->Get(index, connector);
        return QOBSharedHandle<T>(connector);
    }

    QOBSharedHandle<QOBBasicWorld> basicWorld = QOBBasicWorld::create(L"basic");
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basicWorld);
};

class SpringWorld : public KARMPTestFixture
{
protected:
    /// Reads a model into another one, whose registries are ordered by identifiers.
    static void Read(const Model& from, Model& to)
    {
        TestSerializer root;
        EXPECT_EQ(from.world->Serialize(&root), KARSuccess);
        EXPECT_EQ(to.world->Deserialize(TestDeserializer::From(root).get()), KARSuccess);
    }
};

TEST_F(SpringWorld, ComesBackFromItsDocument)
{
    Model model;
    const auto first = model.Add<KARMPBody>(KARMPBody::create(L"first"));
    const auto second = model.Add<KARMPBody>(KARMPBody::create(L"second"));
    const auto joint = model.Add<KARMPJoint>(KARMPRevolute::create(L"joint"));
    const auto linear = model.Connect(KARMPLinearSpring::create(L"1"), first, second);
    const auto torsion = model.Connect(KARMPTorsionSpring::create(L"2"), second, first);
    const auto axial = model.Connect(KARMPAxialSpring::create(L"3"), first, second);
    const auto bushing = model.Connect(KARMPBushing::create(L"4"), first, first);
    const auto force = model.Connect(KARMPForceElement::create(L"5"), first, second);
    linear->SetIdentifier(L"1");
    torsion->SetIdentifier(L"2");
    axial->SetIdentifier(L"3");
    bushing->SetIdentifier(L"4");
    force->SetIdentifier(L"5");
    linear->SetStiffness(2.5);
    linear->SetRestLength(0.5);
    linear->SetDampingCoefficient(0.25);
    torsion->SetStiffness(3.5);
    torsion->SetRestAngle(1.5);
    torsion->SetDampingCoefficient(0.75);
    // A constant without a quantity, which three owners share.
    const Value shared = KARMPConstant::create(L"shared");
    QOBSharedHandle<KARMPConstant>(shared)->SetValue(7.5, "");
    model.world->Add<KARMPValue>(shared);
    axial->SetStiffness(shared);
    axial->SetActuatorForce(shared);
    bushing->SetDamping(5, shared);
    force->SetJoint(joint);
    force->SetClass(L"Contact");
    force->SetStream(L"AAEC");

    Model read;
    Read(model, read);
    ASSERT_EQ(read.world->Count<KARMPConnector>(), 5);
    double number = 0.0;
    EXPECT_EQ(read.Connector<KARMPLinearSpring>(0)->GetRestLength(number), KARSuccess);
    EXPECT_EQ(number, 0.5);
    EXPECT_EQ(read.Connector<KARMPTorsionSpring>(1)->GetDampingCoefficient(number), KARSuccess);
    EXPECT_EQ(number, 0.75);
    Value ofSpring;
    Value ofBushing;
    EXPECT_EQ(read.Connector<KARMPAxialSpring>(2)->GetActuatorForce(ofSpring), KARSuccess);
    EXPECT_EQ(read.Connector<KARMPBushing>(3)->GetDamping(5, ofBushing), KARSuccess);
    EXPECT_EQ(ofSpring, ofBushing);
    EXPECT_EQ(ofSpring->getEntityName(), L"shared");
    QOBSharedHandle<KARMPJoint> readJoint;
    EXPECT_EQ(read.Connector<KARMPForceElement>(4)->GetJoint(readJoint), KARSuccess);
    Body body;
    EXPECT_EQ(read.Connector<KARMPTorsionSpring>(1)->GetFirstBody(body), KARSuccess);
    EXPECT_EQ(body->getEntityName(), L"second");
    EXPECT_EQ(body->GetLinkedConnectorCount(), 4);
}

TEST_F(SpringWorld, LosesANumberThatWasSetOutsideOfIt)
{
    Model model;
    const auto body = model.Add<KARMPBody>(KARMPBody::create(L"body"));
    const auto spring = KARMPAxialSpring::create(L"spring");
    const auto linear = KARMPLinearSpring::create(L"linear");
    linear->SetStiffness(2.5);
    Value value;
    linear->GetStiffness(value);
    spring->SetStiffness(value);
    model.Connect(spring, body, body);
    EXPECT_EQ(model.world->Count<KARMPValue>(), 0);
    Model read;
    Read(model, read);
    ExpectReports(2); // no value of that identifier: that of the services and that of the spring
    EXPECT_EQ(read.Connector<KARMPAxialSpring>(0)->GetStiffness(value), KARFailure);
    ExpectReports(1);
    // Filing the value is all that it takes.
    EXPECT_EQ(spring->GetStiffness(value), KARSuccess);
    model.world->Add<KARMPValue>(value);
    Model complete;
    Read(model, complete);
    EXPECT_EQ(complete.Connector<KARMPAxialSpring>(0)->GetStiffness(value), KARSuccess);
}

TEST_F(SpringWorld, EndsInAnyOrderOfItsHandles)
{
    using Spring = ConcreteEntity<KARMPLinearSpring>;
    using Hub = ConcreteEntity<KARMPBody>;
    using Constant = ConcreteEntity<KARMPConstant>;
    std::array<int, 4> order{0, 1, 2, 3};
    do {
        for (const bool orphansFirst : {false, true}) {
            auto model = std::make_unique<Model>();
            QOBSharedHandle<Hub> hub = Hub::create(L"hub");
            QOBSharedHandle<Spring> spring = Spring::create(L"spring");
            QOBSharedHandle<Constant> constant = Constant::create(L"constant");
            model->Add<KARMPBody>(hub);
            model->Connect(spring, hub, hub);
            model->world->Add<KARMPValue>(Value(constant));
            spring->SetStiffness(Value(constant));
            spring->SetRestLength(Value(constant));
            for (const int which : order) {
                if (which == 0)
                    model.reset();
                const auto release = [orphansFirst](auto& handle) {
                    if (orphansFirst)
                        handle->orphanObject();
                    handle.detach();
                };
                if (which == 1)
                    release(hub);
                if (which == 2)
                    release(spring);
                if (which == 3)
                    release(constant);
            }
            EXPECT_EQ(Spring::Alive(), 0);
            EXPECT_EQ(Hub::Alive(), 0);
            EXPECT_EQ(Constant::Alive(), 0);
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

/// A spring that counts how often it is asked for a link or a value, or told of one.
class AskedSpring : public KARMPLinearSpring
{
public:
    using KARMPLinearSpring::GetStiffness;
    using KARMPLinearSpring::SetStiffness;

    static inline std::size_t calls = 0;

    KARStatus GetFirstBody(Body& body) const override
    {
        ++calls;
        return KARMPLinearSpring::GetFirstBody(body);
    }
    KARStatus SetFirstBody(const Body& body) override
    {
        ++calls;
        return KARMPLinearSpring::SetFirstBody(body);
    }
    KARStatus GetStiffness(Value& value) const override
    {
        ++calls;
        return KARMPLinearSpring::GetStiffness(value);
    }
    KARStatus SetStiffness(const Value& value) override
    {
        ++calls;
        return KARMPLinearSpring::SetStiffness(value);
    }
};

/// What a step costs: allocations, their bytes, and calls of the springs' operations.
struct Cost
{
    std::size_t allocations;
    std::size_t bytes;
    std::size_t calls;
};

template <class Step>
Cost CostOf(const Step& step)
{
    AskedSpring::calls = 0;
    const AllocationCounter allocations;
    step();
    return {allocations.Count(), allocations.Bytes(), AskedSpring::calls};
}

/// The costs of building, writing, reading and tearing down one body with many springs.
std::array<Cost, 4> CostsOfHub(int count)
{
    auto model = std::make_unique<Model>();
    std::array<Cost, 4> costs{};
    costs[0] = CostOf([&] {
        const auto hub = model->Add<KARMPBody>(KARMPBody::create(L"hub"));
        const auto other = model->Add<KARMPBody>(KARMPBody::create(L"other"));
        for (int i = 0; i < count; ++i) {
            const QOBSharedHandle<KARMPLinearSpring> spring(new AskedSpring);
            model->Connect(spring, hub, other);
            spring->KARMPLinearSpring::SetStiffness(2.5);
            spring->SetRestLength(0.5);
            spring->SetDampingCoefficient(0.25);
        }
    });
    TestSerializer root;
    costs[1] = CostOf([&] { EXPECT_EQ(model->world->Serialize(&root), KARSuccess); });
    const auto tree = TestDeserializer::From(root);
    Model read;
    costs[2] = CostOf([&] { EXPECT_EQ(read.world->Deserialize(tree.get()), KARSuccess); });
    EXPECT_EQ(read.world->Count<KARMPConnector>(), count);
    costs[3] = CostOf([&] { model.reset(); });
    return costs;
}

TEST_F(SpringWorld, WithManySpringsOnOneBodyCostsSoMuchASpring)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations are not counted in this build";
    constexpr int Few = 1'000;
    constexpr int Times = 8;
    CostsOfHub(Few); // what is made once a process is made here
    const auto few = CostsOfHub(Few);
    const auto many = CostsOfHub(Few * Times);
    for (std::size_t step = 0; step < few.size(); ++step) {
        SCOPED_TRACE(step);
        EXPECT_EQ(many[step].calls, few[step].calls * Times);
        // Blocks grow by doubling, so that up to half of their bytes may be to spare.
        EXPECT_LE(many[step].allocations, few[step].allocations * Times + Few);
        EXPECT_LE(many[step].bytes, few[step].bytes * Times * 2);
    }
    EXPECT_EQ(few[0].calls, std::size_t{2} * Few) << "a body and a stiffness each are set";
    EXPECT_EQ(few[1].calls, std::size_t{2} * Few) << "and asked for once when they are written";
}

} // namespace
