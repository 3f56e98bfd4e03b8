// Clones of large worlds of library classes, which take another way than those with an
// application's own classes: both must give the same.
#include "AllocationCounter.h"
#include "CloneTesting.h"
#include "KARMP3DRep.h"
#include "KARMPBody2D.h"
#include "KARMPCoincidence.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPGeometry2D.h"
#include "KARMPJoint2D.h"
#include "KARMPJointKinds.h"
#include "KARMPPoint.h"
#include "KARMPShape2D.h"

#include <algorithm>
#include <new>
#include <random>

namespace {

/// An own class without a record, whose entities must be asked themselves.
class OwnPoint : public KARMPPoint
{
public:
    KARStatus LinkToConstraint(const QOBSharedHandle<KARMPConstraint>& constraint) override
    {
        ++s_links;
        return KARMPPoint::LinkToConstraint(constraint);
    }
    QOBSharedObject* _duplicateObject(CopyMode mode) const override
    {
        QOBSharedObject* copy = new OwnPoint(*this, mode);
        copy->addReference();
        return copy;
    }
    static inline int s_links = 0;

    OwnPoint() = default;

protected:
    OwnPoint(const OwnPoint& source, CopyMode mode) : KARMPPoint(source, mode) {}
};

class PlainClone : public CloneFixture
{
protected:
    // A chain of bodies, each with a point, a joint to the one before, a constraint, a variable.
    explicit PlainClone(int count = 700)
    {
        QOBSharedHandle<KARMPBody> former;
        for (int number = 0; number < count; ++number) {
            const std::wstring name = std::to_wstring(number);
            const auto body = File<KARMPBody>(KARMPBody::create(L"body" + name));
            const QOBSharedHandle<KARMPGeometry> point(
                File<KARMPGeometry>(KARMPPoint::create(L"point" + name)));
            const QOBSharedHandle<KARMPJoint> joint(
                File<KARMPJoint>(KARMPRevolute::create(L"joint" + name)));
            const QOBSharedHandle<KARMPConstraint> constraint(
                File<KARMPConstraint>(KARMPCoincidence::create(L"constraint" + name)));
            const auto variable = File<KARMPVariable>(KARMPVariable::create(L"variable" + name));
            body->AddGeometry(point);
            point->SetBody(body);
            if (former) {
                joint->LinkToBody(former, KARMPBodyOrientation::Out);
                former->LinkToJoint(joint);
            }
            joint->LinkToBody(body, KARMPBodyOrientation::In);
            body->LinkToJoint(joint);
            joint->AddConstraint(constraint);
            constraint->SetJoint(joint);
            constraint->LinkToGeometry(point);
            point->LinkToConstraint(constraint);
            constraint->LinkToVariable(variable);
            variable->LinkToConstraint(constraint);
            former = body;
            if (number % 5 == 0)
                AddShapeAndSensor(name, body, constraint);
        }
    }
    void AddShapeAndSensor(const std::wstring& name, const QOBSharedHandle<KARMPBody>& body,
                           const QOBSharedHandle<KARMPConstraint>& constraint)
    {
        const QOBSharedHandle<KARMPShape> shape(
            File<KARMPShape>(KARMP3DRep::create(L"shape" + name)));
        const auto sensor = File<KARMPSensor>(KARMPDisplacementSensor::create(L"sensor" + name));
        shape->LinkToBody(body);
        body->LinkToShape(shape);
        body->SetDisplacementSensor(sensor);
        constraint->LinkToSensor(sensor);
    }
    std::vector<QOBSharedHandle<KARMPEntity>> All() const
    {
        std::vector<QOBSharedHandle<KARMPEntity>> all;
        karmp::Families::ForEach([&](auto family) {
            using T = typename decltype(family)::Type;
            for (int i = 0; i < world->Count<T>(); ++i) {
                QOBSharedHandle<T> entity;
                world->Get(i, entity);
                all.emplace_back(entity);
            }
        });
        return all;
    }
    std::vector<QOBSharedHandle<KARMPEntity>> AllAtRandom() const
    {
        auto all = All();
        std::shuffle(all.begin(), all.end(), std::mt19937(11));
        return all;
    }
};

// What is linked to an entity, by name, in order; of a constraint, which has none, its joint's.
class Description
{
public:
    static std::wstring Of(const KARMPEntity& entity)
    {
        Description description;
        const auto& info = entity.getClassInfo();
        if (info.isDerivedFrom(KARMPBody::ClassInfo()))
            description.Add(static_cast<const KARMPBody&>(entity));
        else if (info.isDerivedFrom(KARMPJoint::ClassInfo()))
            description.Add(static_cast<const KARMPJoint&>(entity));
        else if (info.isDerivedFrom(KARMPConstraint::ClassInfo()))
            description.Add(static_cast<const KARMPConstraint&>(entity));
        else if (info.isDerivedFrom(KARMPGeometry::ClassInfo()))
            description.Add(static_cast<const KARMPGeometry&>(entity));
        else if (info.isDerivedFrom(KARMPVariable::ClassInfo()))
            description.Add(static_cast<const KARMPVariable&>(entity));
        else if (info.isDerivedFrom(KARMPShape::ClassInfo()))
            description.Add(static_cast<const KARMPShape&>(entity));
        return description.m_text;
    }

private:
    static std::wstring NameOf(const KARMPEntity& entity)
    {
        const auto* const constraint = dynamic_cast<const KARMPConstraint*>(&entity);
        QOBSharedHandle<KARMPJoint> joint;
        if (constraint == nullptr)
            return entity.getEntityName();
        return KARFailed(constraint->GetJoint(joint)) ? L"?" : L"of " + joint->getEntityName();
    }
    template <class C, class T>
    void List(const C& entity, int (C::*count)() const,
              KARStatus (C::*get)(int, QOBSharedHandle<T>&) const)
    {
        m_text += L"|";
        for (int index = 0; index < (entity.*count)(); ++index) {
            QOBSharedHandle<T> linked;
            EXPECT_EQ((entity.*get)(index, linked), KARSuccess);
            m_text += L" " + NameOf(*linked);
        }
    }
    void Add(const KARMPBody& body)
    {
        List(body, &KARMPBody::GetGeometryCount, &KARMPBody::GetGeometry);
        List(body, &KARMPBody::GetLinkedJointCount, &KARMPBody::GetLinkedJoint);
        List(body, &KARMPBody::GetLinkedShapeCount, &KARMPBody::GetLinkedShape);
        QOBSharedHandle<KARMPDisplacementSensor> sensor;
        if (!KARFailed(body.GetDisplacementSensor(sensor)))
            m_text += NameOf(*sensor);
    }
    void Add(const KARMPJoint& joint)
    {
        for (int index = 0; index < joint.GetLinkedBodyCount(); ++index) {
            QOBSharedHandle<KARMPBody> body;
            KARMPBodyOrientation::Enum orientation{};
            joint.GetLinkedBody(index, body, orientation);
            m_text += L" " + NameOf(*body) + std::to_wstring(static_cast<int>(orientation));
        }
        List(joint, &KARMPJoint::GetConstraintCount, &KARMPJoint::GetConstraint);
    }
    void Add(const KARMPConstraint& constraint)
    {
        using C = KARMPConstraint;
        m_text += NameOf(constraint);
        List(constraint, &C::GetLinkedGeometryCount, &C::GetLinkedGeometry);
        List(constraint, &C::GetLinkedVariableCount, &C::GetLinkedVariable);
        List(constraint, &C::GetLinkedSensorCount, &C::GetLinkedSensor);
    }
    void Add(const KARMPGeometry& geometry)
    {
        QOBSharedHandle<KARMPBody> body;
        if (!KARFailed(geometry.GetBody(body)))
            m_text += NameOf(*body);
        List(geometry, &KARMPGeometry::GetLinkedConstraintCount,
             &KARMPGeometry::GetLinkedConstraint);
    }
    void Add(const KARMPVariable& variable)
    {
        List(variable, &KARMPVariable::GetLinkedConstraintCount,
             &KARMPVariable::GetLinkedConstraint);
    }

    void Add(const KARMPShape& shape)
    {
        List(shape, &KARMPShape::GetLinkedBodyCount, &KARMPShape::GetLinkedBody);
    }

    std::wstring m_text;
};

// Every duplicate is in its registry where the list has its source, with the source's links.
void ExpectDuplicates(const KARMPWorld& clone,
                      const std::vector<QOBSharedHandle<KARMPEntity>>& sources)
{
    karmp::Families::ForEach([&](auto family) {
        using T = typename decltype(family)::Type;
        int index = 0;
        if constexpr (std::is_same_v<T, KARMPBody> || std::is_same_v<T, KARMPGeometry> ||
                      std::is_same_v<T, KARMPVariable>)
            index = 1; // its own global
        for (const QOBSharedHandle<KARMPEntity>& source : sources) {
            if (!source->isDerivedFrom(T::ClassInfo()))
                continue;
            QOBSharedHandle<T> duplicate;
            ASSERT_EQ(clone.Get(index++, duplicate), KARSuccess);
            ASSERT_NE(duplicate, source);
            ASSERT_EQ(&duplicate->getClassInfo(), &source->getClassInfo());
            ASSERT_EQ(duplicate->getEntityName(), NameOfDuplicate(*source));
            ASSERT_EQ(Description::Of(*duplicate), Description::Of(*source));
        }
        ASSERT_EQ(clone.Count<T>(), index) << T::ClassName();
    });
}

QOBSharedList<KARMPEntity> ListOf(const std::vector<QOBSharedHandle<KARMPEntity>>& entities)
{
    return {entities.begin(), entities.end()};
}

TEST_F(PlainClone, LinksAllAsTheSourcesAre)
{
    ExpectDuplicates(*CloneOf(ListOf(All())), All());
}

TEST_F(PlainClone, FilesInTheOrderOfAListAtRandom)
{
    const auto all = AllAtRandom();
    ExpectDuplicates(*CloneOf(ListOf(all)), all);
}

TEST_F(PlainClone, FilesUnderTheKeysOfTheSourcesOfAListAtRandom)
{
    const auto key = WorldTestKey::Make();
    const auto first = File<KARMPShape>(OwnKindOf<KARMPShape>::create(L"shape"));
    const auto body = KARMPBody::create(L"keyed");
    basicWorld->addLogicalChild(body);
    world->Add(key, key, body);
    auto all = AllAtRandom();
    all.erase(std::find(all.begin(), all.end(), first));
    const auto clone = CloneOf(ListOf(all));
    ExpectDuplicates(*clone, all);
    QOBSharedHandle<KARMPBody> filed;
    EXPECT_EQ(clone->Get(key, key, filed), KARSuccess);
    EXPECT_EQ(filed->getEntityName(), L"keyed");
}

TEST_F(PlainClone, IsTheSameWithAnEntityThatIsAskedItself)
{
    const QOBSharedHandle<KARMPGeometry> own(new OwnPoint);
    own->setEntityName(L"own");
    File<KARMPGeometry>(own);
    QOBSharedHandle<KARMPConstraint> constraint;
    world->Get(5, constraint);
    own->LinkToConstraint(constraint);
    constraint->LinkToGeometry(own);
    for (const auto& all : {All(), AllAtRandom()}) {
        OwnPoint::s_links = 0;
        ExpectDuplicates(*CloneOf(ListOf(all)), all);
        EXPECT_EQ(OwnPoint::s_links, 1);
    }
}

/// An own class that notes the order in which its entities are copied.
template <class Base>
class Noted : public Base
{
public:
    QOBSharedObject* _duplicateObject(QOBDynamicObject::CopyMode mode) const override
    {
        Noted<KARMPPoint>::s_names.push_back(this->getEntityName());
        QOBSharedObject* copy = new Noted(*this, mode);
        copy->addReference();
        return copy;
    }
    static inline std::vector<std::wstring> s_names;

    Noted() = default;

protected:
    Noted(const Noted& source, QOBDynamicObject::CopyMode mode) : Base(source, mode) {}
};

// The first one stands at the end of its registry, the second one at the begin of its own.
TEST_F(PlainClone, AsksEntitiesForTheirCopiesInTheOrderOfTheList)
{
    const QOBSharedHandle<KARMPVariable> variable(new Noted<KARMPVariable>);
    const QOBSharedHandle<KARMPGeometry> point(new Noted<KARMPPoint>);
    variable->setEntityName(L"variable");
    point->setEntityName(L"point");
    auto all = All();
    for (const auto& entity : all)
        if (entity->isDerivedFrom(KARMPGeometry::ClassInfo()))
            world->Remove<KARMPGeometry>(QOBSharedHandle<KARMPGeometry>(entity));
    File<KARMPVariable>(variable);
    File<KARMPGeometry>(point);
    for (const auto& entity : all)
        if (entity->isDerivedFrom(KARMPGeometry::ClassInfo()))
            world->Add<KARMPGeometry>(QOBSharedHandle<KARMPGeometry>(entity));
    all = All();
    const auto indexOf = [&](const QOBSharedBase& entity) {
        return std::find(all.begin(), all.end(), entity) - all.begin();
    };
    std::vector<std::wstring> expected{L"variable", L"point"};
    if (indexOf(point) < indexOf(variable))
        std::swap(expected[0], expected[1]);
    Noted<KARMPPoint>::s_names.clear();
    ExpectDuplicates(*CloneOf(ListOf(all)), all);
    EXPECT_EQ(Noted<KARMPPoint>::s_names, expected);
}

TEST_F(PlainClone, DropsTheLinksThatLeadOutOfTheList)
{
    for (auto all : {All(), AllAtRandom()}) {
        all.erase(std::remove_if(all.begin(), all.end(),
                                 [](const auto& entity) {
                                     return entity->isDerivedFrom(KARMPJoint::ClassInfo());
                                 }),
                  all.end());
        const auto clone = CloneOf(ListOf(all));
        EXPECT_EQ(clone->Count<KARMPJoint>(), 0);
        QOBSharedHandle<KARMPBody> body = Named<KARMPBody>(*clone, L"body3");
        EXPECT_EQ(body->GetLinkedJointCount(), 0);
        EXPECT_EQ(body->GetGeometryCount(), 1);
    }
}

// Half of what each joint and each body list is dropped, the other half keeps its order and, of the
// bodies, the orientation.
TEST_F(PlainClone, KeepsTheLinksThatStayWithinTheListInOrder)
{
    auto all = AllAtRandom();
    const auto left = Named<KARMPBody>(*world, L"body3");
    all.erase(std::find(all.begin(), all.end(), left));
    const auto clone = CloneOf(ListOf(all));
    for (const auto* const name : {L"joint3", L"joint4"}) {
        const auto joint = Named<KARMPJoint>(*clone, name);
        const auto source = Named<KARMPJoint>(*world, name);
        ASSERT_EQ(joint->GetLinkedBodyCount(), 1);
        QOBSharedHandle<KARMPBody> body;
        QOBSharedHandle<KARMPBody> sourceBody;
        KARMPBodyOrientation::Enum orientation{};
        KARMPBodyOrientation::Enum sourceOrientation{};
        EXPECT_EQ(joint->GetLinkedBody(0, body, orientation), KARSuccess);
        const int other = std::wstring(name) == L"joint3" ? 0 : 1;
        EXPECT_EQ(source->GetLinkedBody(other, sourceBody, sourceOrientation), KARSuccess);
        EXPECT_EQ(body->getEntityName(), sourceBody->getEntityName());
        EXPECT_EQ(orientation, sourceOrientation);
    }
    QOBSharedHandle<KARMPBody> carrier;
    EXPECT_EQ(Named<KARMPGeometry>(*clone, L"point3")->GetBody(carrier), KARFailure);
}

TEST_F(PlainClone, ReportsNullEntriesAndTakesTheSecondDuplicateOfWhatIsListedTwice)
{
    for (auto all : {All(), AllAtRandom()}) {
        const auto body = Named<KARMPBody>(*world, L"body3");
        all.insert(all.begin() + 7, body);
        all.insert(all.begin() + 9, nullptr);
        const auto clone = CloneOf(ListOf(all));
        ExpectReports(1);
        EXPECT_EQ(clone->GetBodyCount(), world->GetBodyCount() + 2);
        std::vector<QOBSharedHandle<KARMPBody>> copies;
        for (int index = 0; index < clone->GetBodyCount(); ++index) {
            QOBSharedHandle<KARMPBody> copy;
            clone->Get(index, copy);
            if (copy->getEntityName() == L"body3")
                copies.push_back(copy);
        }
        ASSERT_EQ(copies.size(), 2U);
        EXPECT_EQ(copies[0]->GetGeometryCount(), 0);
        EXPECT_EQ(copies[1]->GetGeometryCount(), 1);
        QOBSharedHandle<KARMPBody> carrier;
        Named<KARMPGeometry>(*clone, L"point3")->GetBody(carrier);
        EXPECT_EQ(carrier, copies[1]);
    }
}

// Of thousands of allocations each of the first ones and one in twenty of the later ones fails.
// What was duplicated till then is freed, as the address sanitizer sees.
TEST_F(PlainClone, WhereAnAllocationFailsLeavesTheSourceAlone)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    const auto source = Named<KARMPBody>(*world, L"body3");
    const auto references = source->getReferenceCount();
    for (const auto& list : {ListOf(All()), ListOf(AllAtRandom())}) {
        int failures = 0;
        QOBSharedHandle<KARMPWorld> clone;
        for (std::size_t failing = 1; !clone; failing += 1 + failing / 20) {
            AllocationCounter counter;
            counter.FailAllocation(failing);
            try {
                clone = world->CloneWithFilter(list);
            } catch (const std::bad_alloc&) {
                ++failures;
            }
        }
        Placed(clone);
        EXPECT_GT(failures, 20);
        EXPECT_EQ(source->getReferenceCount(), references + 2); // in both lists
    }
}

TEST_F(PlainClone, OfAWholeWorldListsDuplicatesOfAllKindsInOrder)
{
    File<KARMPGeometry>(QOBSharedHandle<KARMPGeometry>(new OwnPoint));
    File<KARMPGeometry>(KARMPPoint::create(L"behind"));
    world->Remove<KARMPGeometry>(Named<KARMPGeometry>(*world, L"point9"));
    const auto clone = world->Clone();
    auto expected = NamesIn<KARMPGeometry>(*world);
    expected.insert(expected.begin(), L"GlobalAxisSystem");
    EXPECT_EQ(NamesIn<KARMPGeometry>(*clone), expected);
    EXPECT_EQ(Named<KARMPBody>(*clone, L"body3")->GetGeometryCount(), 0);
}

// The lists are so long that their blocks come from the heap. Where a link was not counted, the
// address sanitizer finds it.
TEST_F(CloneFixture, WhereAnAllocationFailsIsFreedWithTheLinksThatItHas)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    std::vector<QOBSharedHandle<KARMPEntity>> all;
    for (int number = 0; number < 20; ++number) {
        const auto body = File<KARMPBody>(KARMPBody::create(L"body"));
        all.emplace_back(body);
        for (int index = 0; index < 12; ++index) {
            const auto point = File<KARMPGeometry>(KARMPPoint::create(L"point"));
            body->AddGeometry(point);
            all.emplace_back(point);
        }
    }
    const QOBSharedList<KARMPEntity> list(all.begin(), all.end());
    int failures = 0;
    for (bool isDone = false; !isDone;) {
        AllocationCounter counter;
        counter.FailAllocation(static_cast<std::size_t>(failures) + 1);
        try {
            static_cast<void>(world->CloneWithFilter(list));
            isDone = true;
        } catch (const std::bad_alloc&) {
            ++failures;
        }
    }
    EXPECT_GT(failures, 20);
    EXPECT_EQ(all.front()->getReferenceCount(), 4U); // here, the list, the world and its hierarchy
}

struct WithOwnCopy : KARMPPoint
{
    QOBSharedObject* _duplicateObject(CopyMode mode) const override
    {
        return KARMPPoint::_duplicateObject(mode);
    }
};
struct WithOwnLinks : KARMPPoint
{
    KARStatus SetBody(const QOBSharedHandle<KARMPBody>& body) override
    {
        return KARMPPoint::SetBody(body);
    }
};
struct WithMoreLinks : KARMPPoint
{
    using KARMPPoint::SetBody;
    virtual KARStatus SetBody(int) { return KARSuccess; }
};
struct WithHiddenLinks : KARMPBody
{
    KARStatus AddGeometry(const QOBSharedHandle<KARMPGeometry>&) { return KARFailure; }
};

TEST(PlainClass, OverridesNothingOfWhatCopiesAndLinks)
{
    using Access = karmp::EntityAccess;
    EXPECT_TRUE(Access::IsCopiedByRecord<KARMPPoint>());
    EXPECT_TRUE(Access::IsCopiedByRecord<WithOwnLinks>());
    EXPECT_FALSE(Access::IsCopiedByRecord<WithOwnCopy>());
    EXPECT_TRUE(Access::HasFamilyLinks<KARMPPoint>());
    EXPECT_TRUE(Access::HasFamilyLinks<KARMPBody>());
    EXPECT_TRUE(Access::HasFamilyLinks<KARMPRevolute>());
    EXPECT_TRUE(Access::HasFamilyLinks<KARMPCoincidence>());
    EXPECT_TRUE(Access::HasFamilyLinks<KARMPVariable>());
    EXPECT_FALSE(Access::HasFamilyLinks<KARMPBody2D>());
    EXPECT_FALSE(Access::HasFamilyLinks<KARMPJoint2D>());
    EXPECT_FALSE(Access::HasFamilyLinks<KARMPGeometry2D>());
    EXPECT_FALSE(Access::HasFamilyLinks<KARMPShape2D>());
    EXPECT_FALSE(Access::HasFamilyLinks<WithOwnLinks>());
    EXPECT_FALSE(Access::HasFamilyLinks<WithMoreLinks>());
    EXPECT_FALSE(Access::HasFamilyLinks<WithHiddenLinks>());
    EXPECT_EQ(*KARMPPoint::ClassInfo().getOperations().copiedClass, typeid(KARMPPoint));
}

} // namespace
