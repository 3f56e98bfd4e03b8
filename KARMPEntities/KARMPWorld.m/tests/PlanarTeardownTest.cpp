// A planar mechanism whose entities hold one another is taken apart in any order.
#include "ConcreteEntity.h"
#include "KARMPBody2D.h"
#include "KARMPCoincidence.h"
#include "KARMPDisplacementSensor2D.h"
#include "KARMPPoint2D.h"
#include "KARMPSketch.h"
#include "KARMPTestFixture.h"
#include "KARMPUserDefined2D.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

namespace {

class PlanarTeardown : public KARMPTestFixture
{
protected:
    using Entity = QOBSharedHandle<KARMPEntity>;

    // Two bodies in a sketch with a pin, and a sensor on one of them; all links from both sides.
    static std::vector<Entity> Build()
    {
        const auto sketch = ConcreteEntity<KARMPSketch>::create(L"sketch");
        const auto joint = ConcreteEntity<KARMPUserDefined2D>::create(L"joint");
        const auto constraint = ConcreteEntity<KARMPCoincidence>::create(L"constraint");
        const auto sensor = ConcreteEntity<KARMPDisplacementSensor2D>::create(L"sensor");
        std::vector<Entity> entities{Entity(sketch), Entity(joint), Entity(constraint),
                                     Entity(sensor)};
        joint->AddConstraint(constraint);
        constraint->SetJoint(joint);
        QOBSharedHandle<KARMPBody2D> body;
        for (const wchar_t* name : {L"first", L"second"}) {
            body = ConcreteEntity<KARMPBody2D>::create(name);
            const auto point = ConcreteEntity<KARMPPoint2D>::create(name);
            entities.emplace_back(body);
            entities.emplace_back(point);
            body->SetSketch(sketch);
            body->AddGeometry(point);
            body->LinkToJoint(joint);
            point->SetBody(body);
            point->SetSketch(sketch);
            point->LinkToConstraint(constraint);
            constraint->LinkToGeometry(point);
            joint->LinkToBody(body, KARMPBodyOrientation::In);
        }
        body->SetDisplacementSensor(sensor);
        sensor->SetBody(body);
        return entities;
    }
    template <class... T>
    static int AliveOf()
    {
        return (ConcreteEntity<T>::Alive() + ...);
    }
    static int Alive()
    {
        return AliveOf<KARMPSketch, KARMPUserDefined2D, KARMPCoincidence, KARMPDisplacementSensor2D,
                       KARMPBody2D, KARMPPoint2D>();
    }
};

TEST_F(PlanarTeardown, InAnyOrderLeavesNothingThatHoldsAnother)
{
    std::array<std::size_t, 8> order{};
    std::iota(order.begin(), order.end(), 0U);
    int orders = 0;
    // Each twentieth order of all.
    for (int number = 0; std::next_permutation(order.begin(), order.end()); ++number) {
        if (number % 20 != 0)
            continue;
        std::vector<Entity> entities = Build();
        ASSERT_EQ(entities.size(), order.size());
        for (const std::size_t index : order) {
            Entity gone = entities[index];
            KARMPEntity::destroy(gone);
        }
        ASSERT_EQ(Alive(), static_cast<int>(order.size()));
        entities.clear();
        ASSERT_EQ(Alive(), 0);
        ++orders;
    }
    EXPECT_GT(orders, 2000);
}

} // namespace
