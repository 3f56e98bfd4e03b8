#include "CloneTesting.h"
#include "KARMPCoincidence.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPJointKinds.h"
#include "KARMPObserver.h"
#include "KARMPPoint.h"
#include "TestEntity.h"

namespace {

template <class T>
constexpr bool HasGlobal = std::is_same_v<T, KARMPBody> || std::is_same_v<T, KARMPGeometry> ||
                           std::is_same_v<T, KARMPVariable>;

// A mechanism of two bodies with everything that a filtered clone links.
class FilteredClone : public CloneFixture
{
protected:
    FilteredClone()
    {
        LinkBodies();
        constraint->SetJoint(joint);
        constraint->LinkToGeometry(point);
        constraint->LinkToVariable(variable);
        constraint->LinkToSensor(sensor);
        variable->LinkToConstraint(constraint);
        point->LinkToConstraint(constraint);
    }
    void LinkBodies()
    {
        joint->LinkToBody(first, KARMPBodyOrientation::In);
        joint->LinkToBody(second, KARMPBodyOrientation::Out);
        joint->AddConstraint(constraint);
        first->LinkToJoint(joint);
        second->LinkToJoint(joint);
        first->AddGeometry(point);
        point->SetBody(first);
        first->LinkToShape(shape);
        shape->LinkToBody(first);
        first->SetDisplacementSensor(sensor);
        sensor->SetBody(first);
    }
    QOBSharedList<KARMPEntity> Everything() const
    {
        return {joint, constraint, variable, point, shape, sensor, first, second};
    }
    // The list without one entity.
    QOBSharedHandle<KARMPWorld> CloneWithout(const QOBSharedHandle<KARMPEntity>& entity) const
    {
        auto filter = Everything();
        filter.remove(entity);
        return CloneOf(filter);
    }

    const QOBSharedHandle<KARMPBody> first = File<KARMPBody>(KARMPBody::create(L"first"));
    const QOBSharedHandle<KARMPBody> second = File<KARMPBody>(KARMPBody::create(L"second"));
    const QOBSharedHandle<KARMPJoint> joint{File<KARMPJoint>(KARMPRevolute::create(L"joint"))};
    const QOBSharedHandle<KARMPConstraint> constraint{
        File<KARMPConstraint>(KARMPCoincidence::create(L"constraint"))};
    const QOBSharedHandle<KARMPGeometry> point{File<KARMPGeometry>(KARMPPoint::create(L"point"))};
    const QOBSharedHandle<KARMPVariable> variable =
        File<KARMPVariable>(KARMPVariable::create(L"variable"));
    const QOBSharedHandle<KARMPShape> shape =
        File<KARMPShape>(OwnKindOf<KARMPShape>::create(L"shape"));
    const QOBSharedHandle<KARMPDisplacementSensor> sensor =
        File<KARMPSensor>(KARMPDisplacementSensor::create(L"sensor"));
};

TEST_F(FilteredClone, OfNothingHasTheDefaultEntitiesAndGlobalsOfItsOwn)
{
    const auto clone = world->CloneWithFilter({});
    karmp::Families::ForEach([&](auto family) {
        using T = typename decltype(family)::Type;
        EXPECT_EQ(clone->Count<T>(), HasGlobal<T> ? 1 : 0) << T::ClassName();
    });
    EXPECT_NE(GlobalBody(*clone), Named<KARMPBody>(*clone, L"GlobalBody"));
    EXPECT_NE(GlobalAxisSystem(*clone), Named<KARMPGeometry>(*clone, L"GlobalAxisSystem"));
    EXPECT_NE(GlobalTime(*clone), Named<KARMPVariable>(*clone, L"GlobalTime"));
    EXPECT_EQ(GlobalBody(*clone)->getEntityName(), L"GlobalBody");
}

TEST_F(FilteredClone, CarriesOverEveryFamilyButConnectorsAndValues)
{
    QOBSharedList<KARMPEntity> filter;
    karmp::Families::ForEach([&](auto family) {
        using T = typename decltype(family)::Type;
        File<T>(OwnKindOf<T>::create(L"not chosen"));
        filter.push_back(File<T>(OwnKindOf<T>::create(L"chosen")));
    });
    const auto clone = CloneOf(filter);
    karmp::Families::ForEach([&](auto family) {
        using T = typename decltype(family)::Type;
        const auto source = Named<T>(*world, L"chosen");
        Names expected;
        if (HasGlobal<T>)
            expected.push_back(NamesIn<T>(*world).front());
        if (!std::is_same_v<T, KARMPConnector> && !std::is_same_v<T, KARMPValue>)
            expected.push_back(NameOfDuplicate(*source));
        EXPECT_EQ(NamesIn<T>(*clone), expected) << T::ClassName();
    });
}

TEST_F(FilteredClone, ListsDuplicatesInTheOrderOfTheList)
{
    EXPECT_EQ(NamesIn<KARMPBody>(*CloneOf({second, first})),
              (Names{L"GlobalBody", L"second", L"first"}));
}

TEST_F(FilteredClone, LinksAJointToItsBodiesAndConstraints)
{
    const auto clone = CloneOf(Everything());
    const auto duplicate = Named<KARMPJoint>(*clone, L"joint");
    ASSERT_EQ(duplicate->GetLinkedBodyCount(), 2);
    QOBSharedHandle<KARMPBody> body;
    KARMPBodyOrientation::Enum orientation{};
    duplicate->GetLinkedBody(0, body, orientation);
    EXPECT_EQ(body, Named<KARMPBody>(*clone, L"first"));
    EXPECT_EQ(orientation, KARMPBodyOrientation::In);
    duplicate->GetLinkedBody(1, body, orientation);
    EXPECT_EQ(body, Named<KARMPBody>(*clone, L"second"));
    EXPECT_EQ(orientation, KARMPBodyOrientation::Out);
    ASSERT_EQ(duplicate->GetConstraintCount(), 1);
    QOBSharedHandle<KARMPConstraint> linked;
    duplicate->GetConstraint(0, linked);
    EXPECT_EQ(linked, Named<KARMPConstraint>(*clone, L""));
}

TEST_F(FilteredClone, LinksABodyToGeometriesJointsShapesAndItsSensor)
{
    const auto clone = CloneOf(Everything());
    const auto duplicate = Named<KARMPBody>(*clone, L"first");
    ASSERT_EQ(duplicate->GetGeometryCount(), 1);
    ASSERT_EQ(duplicate->GetLinkedJointCount(), 1);
    ASSERT_EQ(duplicate->GetLinkedShapeCount(), 1);
    QOBSharedHandle<KARMPGeometry> geometry;
    duplicate->GetGeometry(0, geometry);
    EXPECT_EQ(geometry, Named<KARMPGeometry>(*clone, L"point"));
    QOBSharedHandle<KARMPJoint> linkedJoint;
    duplicate->GetLinkedJoint(0, linkedJoint);
    EXPECT_EQ(linkedJoint, Named<KARMPJoint>(*clone, L"joint"));
    QOBSharedHandle<KARMPShape> linkedShape;
    duplicate->GetLinkedShape(0, linkedShape);
    EXPECT_EQ(linkedShape, Named<KARMPShape>(*clone, L"shape"));
    QOBSharedHandle<KARMPDisplacementSensor> linkedSensor;
    EXPECT_EQ(duplicate->GetDisplacementSensor(linkedSensor), KARSuccess);
    EXPECT_EQ(linkedSensor, Named<KARMPSensor>(*clone, L"sensor"));
}

TEST_F(FilteredClone, LinksAConstraintToGeometriesJointVariablesAndSensors)
{
    const auto clone = CloneOf(Everything());
    QOBSharedHandle<KARMPConstraint> duplicate;
    clone->Get(0, duplicate);
    ASSERT_EQ(duplicate->GetLinkedGeometryCount(), 1);
    ASSERT_EQ(duplicate->GetLinkedVariableCount(), 1);
    ASSERT_EQ(duplicate->GetLinkedSensorCount(), 1);
    QOBSharedHandle<KARMPGeometry> geometry;
    duplicate->GetLinkedGeometry(0, geometry);
    EXPECT_EQ(geometry, Named<KARMPGeometry>(*clone, L"point"));
    QOBSharedHandle<KARMPJoint> linkedJoint;
    EXPECT_EQ(duplicate->GetJoint(linkedJoint), KARSuccess);
    EXPECT_EQ(linkedJoint, Named<KARMPJoint>(*clone, L"joint"));
    QOBSharedHandle<KARMPVariable> linkedVariable;
    duplicate->GetLinkedVariable(0, linkedVariable);
    EXPECT_EQ(linkedVariable, Named<KARMPVariable>(*clone, L"variable"));
    QOBSharedHandle<KARMPSensor> linkedSensor;
    duplicate->GetLinkedSensor(0, linkedSensor);
    EXPECT_EQ(linkedSensor, Named<KARMPSensor>(*clone, L"sensor"));
}

TEST_F(FilteredClone, LinksVariablesGeometriesAndShapes)
{
    const auto clone = CloneOf(Everything());
    QOBSharedHandle<KARMPConstraint> duplicate;
    clone->Get(0, duplicate);
    const auto geometry = Named<KARMPGeometry>(*clone, L"point");
    const auto linkedVariable = Named<KARMPVariable>(*clone, L"variable");
    const auto linkedShape = Named<KARMPShape>(*clone, L"shape");
    ASSERT_EQ(linkedVariable->GetLinkedConstraintCount(), 1);
    ASSERT_EQ(geometry->GetLinkedConstraintCount(), 1);
    ASSERT_EQ(linkedShape->GetLinkedBodyCount(), 1);
    QOBSharedHandle<KARMPConstraint> linked;
    linkedVariable->GetLinkedConstraint(0, linked);
    EXPECT_EQ(linked, duplicate);
    geometry->GetLinkedConstraint(0, linked);
    EXPECT_EQ(linked, duplicate);
    QOBSharedHandle<KARMPBody> body;
    EXPECT_EQ(geometry->GetBody(body), KARSuccess);
    EXPECT_EQ(body, Named<KARMPBody>(*clone, L"first"));
    linkedShape->GetLinkedBody(0, body);
    EXPECT_EQ(body, Named<KARMPBody>(*clone, L"first"));
}

// A sensor is linked to by its body and its constraints; its own links are not restored.
TEST_F(FilteredClone, LeavesSensorsWithoutLinksOfTheirOwn)
{
    const auto clone = CloneOf(Everything());
    const auto duplicate =
        QOBSharedHandle<KARMPDisplacementSensor>(Named<KARMPSensor>(*clone, L"sensor"));
    QOBSharedHandle<KARMPBody> body;
    EXPECT_EQ(duplicate->GetBody(body), KARFailure);
    ExpectReports(1); // it says that there is none
}

TEST_F(FilteredClone, DropsTheLinksThatLeadOutOfTheList)
{
    const auto jointOf = [](const QOBSharedHandle<KARMPWorld>& clone) {
        return Named<KARMPJoint>(*clone, L"joint");
    };
    auto clone = CloneWithout(first);
    ASSERT_EQ(jointOf(clone)->GetLinkedBodyCount(), 1);
    QOBSharedHandle<KARMPBody> body;
    jointOf(clone)->GetLinkedBody(0, body);
    EXPECT_EQ(body, Named<KARMPBody>(*clone, L"second"));
    EXPECT_EQ(Named<KARMPGeometry>(*clone, L"point")->GetBody(body), KARFailure);
    EXPECT_EQ(Named<KARMPShape>(*clone, L"shape")->GetLinkedBodyCount(), 0);

    clone = CloneWithout(constraint);
    EXPECT_EQ(jointOf(clone)->GetConstraintCount(), 0);
    EXPECT_EQ(Named<KARMPVariable>(*clone, L"variable")->GetLinkedConstraintCount(), 0);
    EXPECT_EQ(Named<KARMPGeometry>(*clone, L"point")->GetLinkedConstraintCount(), 0);

    QOBSharedHandle<KARMPConstraint> duplicate;
    clone = CloneWithout(joint);
    clone->Get(0, duplicate);
    QOBSharedHandle<KARMPJoint> linked;
    EXPECT_EQ(duplicate->GetJoint(linked), KARFailure);
    EXPECT_EQ(Named<KARMPBody>(*clone, L"first")->GetLinkedJointCount(), 0);

    clone = CloneWithout(sensor);
    clone->Get(0, duplicate);
    EXPECT_EQ(duplicate->GetLinkedSensorCount(), 0);
    QOBSharedHandle<KARMPDisplacementSensor> linkedSensor;
    EXPECT_EQ(Named<KARMPBody>(*clone, L"first")->GetDisplacementSensor(linkedSensor), KARFailure);
}

TEST_F(FilteredClone, LeavesTheSourceAsItWas)
{
    const auto clone = CloneOf(Everything());
    EXPECT_EQ(joint->GetLinkedBodyCount(), 2);
    EXPECT_EQ(first->GetGeometryCount(), 1);
    EXPECT_EQ(constraint->GetLinkedGeometryCount(), 1);
    QOBSharedHandle<KARMPJoint> linked;
    constraint->GetJoint(linked);
    EXPECT_EQ(linked, joint);
    EXPECT_EQ(world->GetBodyCount(), 3);
}

TEST_F(FilteredClone, ReportsANullEntryAndGoesOn)
{
    const auto clone = CloneOf({nullptr, first, nullptr, point});
    ExpectReports(2);
    EXPECT_EQ(Named<KARMPBody>(*clone, L"first")->GetGeometryCount(), 1);
}

TEST_F(FilteredClone, DuplicatesAnEntityTwiceThatIsListedTwice)
{
    const auto clone = CloneOf({first, point, first});
    ASSERT_EQ(NamesIn<KARMPBody>(*clone), (Names{L"GlobalBody", L"first", L"first"}));
    QOBSharedHandle<KARMPBody> earlier;
    QOBSharedHandle<KARMPBody> later;
    clone->Get(1, earlier);
    clone->Get(2, later);
    EXPECT_EQ(earlier->GetGeometryCount(), 0);
    EXPECT_EQ(later->GetGeometryCount(), 1);
    QOBSharedHandle<KARMPBody> carrier;
    Named<KARMPGeometry>(*clone, L"point")->GetBody(carrier);
    EXPECT_EQ(carrier, later);
}

TEST_F(FilteredClone, TakesEntitiesThatTheWorldDoesNotList)
{
    const auto loose = KARMPBody::create(L"loose");
    basicWorld->addLogicalChild(loose);
    joint->LinkToBody(loose, KARMPBodyOrientation::In);
    const auto clone = CloneOf({loose, joint});
    EXPECT_EQ(Named<KARMPJoint>(*clone, L"joint")->GetLinkedBodyCount(), 1);
    KARBaseUnknown_var key1;
    KARBaseUnknown_var key2;
    EXPECT_EQ(clone->GetKeys(Named<KARMPBody>(*clone, L"loose"), key1, key2), KARUnchanged);
}

TEST_F(FilteredClone, TakesNoKeysOfAnotherWorld)
{
    const auto key = WorldTestKey::Make();
    const auto otherBasicWorld = QOBBasicWorld::create(L"other");
    const auto other = KARMPWorld::create(otherBasicWorld);
    const auto foreign = KARMPBody::create(L"foreign");
    other->Add(key, key, foreign);
    const auto clone = CloneOf({foreign});
    QOBSharedHandle<KARMPBody> found;
    EXPECT_EQ(clone->Get(key, key, found), KARUnchanged);
    EXPECT_TRUE(Named<KARMPBody>(*clone, L"foreign"));
}

TEST_F(FilteredClone, PassesOverAnEntityOfNoFamily)
{
    const auto stranger = TestEntity::create(L"stranger");
    const int alive = TestEntity::Alive();
    const auto clone = CloneOf({stranger, first});
    EXPECT_EQ(TestEntity::Alive(), alive);
    EXPECT_EQ(clone->GetBodyCount(), 2);
}

TEST_F(FilteredClone, LinksEntitiesOfDerivedClasses)
{
    const auto own = File<KARMPJoint>(OwnKindOf<KARMPJoint>::create(L"own"));
    own->LinkToBody(first, KARMPBodyOrientation::Out);
    const auto clone = CloneOf({own, first});
    const auto duplicate = Named<KARMPJoint>(*clone, L"own");
    EXPECT_NE(dynamic_cast<OwnKindOf<KARMPJoint>*>(duplicate.get()), nullptr);
    EXPECT_EQ(duplicate->GetLinkedBodyCount(), 1);
}

// A geometry that cannot tell its first constraint.
class Forgetful : public OwnKindOf<KARMPGeometry>
{
public:
    KARStatus GetLinkedConstraint(int index,
                                  QOBSharedHandle<KARMPConstraint>& linked) const override
    {
        return index == 0 ? KARFailure : KARMPGeometry::GetLinkedConstraint(index, linked);
    }
    QOBSharedObject* _duplicateObject(CopyMode mode) const override
    {
        return OwnKindOf<KARMPGeometry>::_duplicateObject(mode);
    }
};

TEST_F(FilteredClone, ReportsALinkThatCannotBeReadAndGoesOn)
{
    const auto other = File<KARMPConstraint>(KARMPCoincidence::create(L"other"));
    const QOBSharedHandle<KARMPGeometry> forgetful(new Forgetful);
    File<KARMPGeometry>(forgetful);
    forgetful->setEntityName(L"forgetful");
    forgetful->LinkToConstraint(constraint);
    forgetful->LinkToConstraint(other);
    const auto clone = CloneOf({forgetful, constraint, other});
    ExpectReports(1);
    EXPECT_EQ(Named<KARMPGeometry>(*clone, L"forgetful")->GetLinkedConstraintCount(), 1);
}

// A geometry whose duplicates cannot be carried by a body.
class Unbound : public OwnKindOf<KARMPGeometry>
{
public:
    Unbound() = default;
    Unbound(const Unbound& source, CopyMode mode)
        : OwnKindOf<KARMPGeometry>(source, mode), m_isCopy(true)
    {}
    KARStatus SetBody(const QOBSharedHandle<KARMPBody>& body) override
    {
        return m_isCopy ? KARFailure : KARMPGeometry::SetBody(body);
    }
    QOBSharedObject* _duplicateObject(CopyMode mode) const override
    {
        QOBSharedObject* copy = new Unbound(*this, mode);
        copy->addReference();
        return copy;
    }

private:
    bool m_isCopy = false;
};

TEST_F(FilteredClone, ReportsALinkThatCannotBeMadeAndGoesOn)
{
    const QOBSharedHandle<KARMPGeometry> unbound(new Unbound);
    File<KARMPGeometry>(unbound);
    unbound->setEntityName(L"unbound");
    unbound->SetBody(first);
    unbound->LinkToConstraint(constraint);
    const auto clone = CloneOf({unbound, first, constraint});
    ExpectReports(1);
    EXPECT_EQ(Named<KARMPGeometry>(*clone, L"unbound")->GetLinkedConstraintCount(), 1);
}

} // namespace
