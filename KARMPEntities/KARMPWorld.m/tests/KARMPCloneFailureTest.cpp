// Filtered clones whose classes look at one another, and those that fail half way.
#include "AllocationCounter.h"
#include "CloneTesting.h"
#include "KARMPBody2D.h"
#include "KARMPPoint.h"
#include "KARMPPoint2D.h"
#include "QOBException.h"

#include <new>

/// What an application derives: a body that knows all of its kind and looks at them when it is
/// copied. The factory does not know it, so that tests of all classes do not meet it.
class LookingBody : public KARMPBody
{
    KARMP_ABSTRACT_ENTITY(LookingBody, KARMPBody)

public:
    static inline std::vector<LookingBody*> s_all;
    static inline std::vector<int> s_seen;

protected:
    LookingBody();
    LookingBody(const LookingBody& source, CopyMode mode);
    ~LookingBody() override;
};
KARMP_DEFINE_IDENTITY(LookingBody, "0B0C6A0E-7E63-4D8B-8E1C-52D1E4C8F0A7",
                      karmp::EntityAccess::Operations<LookingBody>());
LookingBody::LookingBody()
{
    s_all.push_back(this);
}
LookingBody::LookingBody(const LookingBody& source, CopyMode mode) : Super(source, mode)
{
    for (const LookingBody* body : s_all) {
        for (int i = 0; i < body->GetGeometryCount(); ++i) {
            QOBSharedHandle<KARMPGeometry> geometry;
            if (!KARFailed(body->GetGeometry(i, geometry)))
                s_seen.push_back(static_cast<int>(geometry->getEntityName().size()));
        }
    }
    s_all.push_back(this);
}
LookingBody::~LookingBody()
{
    std::erase(s_all, this);
}

namespace {

/// Counts those that live.
template <class T>
class Counted : public T
{
public:
    Counted() { ++s_living; }
    QOBSharedObject* _duplicateObject(QOBDynamicObject::CopyMode mode) const override
    {
        QOBSharedObject* copy = new Counted(*this, mode);
        copy->addReference();
        return copy;
    }
    static inline int s_living = 0;

protected:
    Counted(const Counted& source, QOBDynamicObject::CopyMode mode) : T(source, mode)
    {
        ++s_living;
    }
    ~Counted() override { --s_living; }
};

/// Has a duplicate that no planar body takes as a geometry.
class Misfit : public KARMPPoint2D
{
public:
    Misfit() = default;
    QOBSharedObject* _duplicateObject(CopyMode) const override
    {
        const auto duplicate = KARMPPoint::create(L"misfit");
        duplicate->addReference();
        return duplicate.get();
    }
};

/// Is its own duplicate.
class Unique : public KARMPBody
{
public:
    Unique() = default;
    QOBSharedObject* _duplicateObject(CopyMode) const override
    {
        addReference();
        return const_cast<Unique*>(this);
    }
};

/// A fixture whose filtered clones fail when they link a planar body.
class FailingClone : public CloneFixture
{
protected:
    /// Files and lists an entity of a family.
    template <class Family, class T>
    void List(const QOBSharedHandle<T>& entity)
    {
        list.push_back(File<Family>(entity));
    }
    /// Clones what is listed, and a body with the geometry that its duplicate does not take.
    void ExpectFailure()
    {
        const QOBSharedHandle<KARMPBody2D> body(KARMPBody2D::create(L"other"));
        const QOBSharedHandle<KARMPGeometry2D> misfit(new Misfit);
        body->AddGeometry(misfit);
        List<KARMPBody>(body);
        List<KARMPGeometry>(misfit);
        EXPECT_THROW(static_cast<void>(world->CloneWithFilter(list)), QOBEInvalidCast);
    }

    QOBSharedList<KARMPEntity> list;
};

TEST_F(CloneFixture, LetsAnApplicationsClassLookAtItsCopiesWhileMoreAreMade)
{
    QOBSharedList<KARMPEntity> list;
    QOBSharedHandle<KARMPGeometry> shared;
    std::vector<QOBSharedHandle<KARMPEntity>> points;
    for (int number = 0; number < 3; ++number) {
        const auto body = File<KARMPBody>(karmp::EntityAccess::Create<LookingBody>(L"body"));
        const QOBSharedHandle<KARMPGeometry> point(
            File<KARMPGeometry>(KARMPPoint::create(L"point")));
        if (!shared)
            shared = point;
        body->AddGeometry(shared);
        list.push_back(body);
        points.emplace_back(point);
    }
    list.insert(list.end(), points.begin(), points.end());
    LookingBody::s_seen.clear();
    const auto clone = CloneOf(list);
    // The three sources have a geometry each; no copy has one before all are made.
    EXPECT_EQ(LookingBody::s_seen, std::vector<int>(9, 5));
    for (int i = 0; i < 3; ++i) {
        QOBSharedHandle<KARMPBody> copy;
        clone->Get(i, copy);
        EXPECT_EQ(copy->GetGeometryCount(), 1);
    }
}

TEST_F(FailingClone, FreesItsPlanarDuplicates)
{
    using Body = Counted<KARMPBody2D>;
    using Point = Counted<KARMPPoint2D>;
    const QOBSharedHandle<KARMPBody2D> body(new Body);
    const QOBSharedHandle<KARMPGeometry2D> point(new Point);
    body->AddGeometry(point);
    point->SetBody(body);
    List<KARMPBody>(body);
    List<KARMPGeometry>(point);
    ExpectFailure();
    EXPECT_EQ(Body::s_living, 1);
    EXPECT_EQ(Point::s_living, 1);
}

TEST_F(FailingClone, KeepsTheLinksOfWhatIsItsOwnDuplicate)
{
    const QOBSharedHandle<KARMPBody> unique(new Unique);
    const QOBSharedHandle<KARMPGeometry> point(KARMPPoint::create(L"point"));
    unique->AddGeometry(point);
    point->SetBody(unique);
    List<KARMPBody>(unique);
    File<KARMPGeometry>(point);
    ExpectFailure();
    EXPECT_EQ(unique->GetGeometryCount(), 1);
}

TEST_F(CloneFixture, FreesItsDuplicatesWhenAllAllocationsFailFromOneOn)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    using Body = Counted<KARMPBody>;
    QOBSharedList<KARMPEntity> list;
    for (int number = 0; number < 20; ++number) {
        const QOBSharedHandle<KARMPBody> body(new Body);
        File<KARMPBody>(body);
        list.push_back(body);
        // So many that their list comes from the heap.
        for (int index = 0; index < 12; ++index) {
            const QOBSharedHandle<KARMPGeometry> point(KARMPPoint::create(L"point"));
            File<KARMPGeometry>(point);
            body->AddGeometry(point);
            point->SetBody(body);
            list.push_back(point);
        }
    }
    const int before = Body::s_living;
    int failures = 0;
    for (bool isDone = false; !isDone;) {
        QOBSharedHandle<KARMPWorld> clone;
        AllocationCounter counter;
        counter.FailAllocationsFrom(static_cast<std::size_t>(failures) + 1);
        try {
            clone = world->CloneWithFilter(list);
            isDone = true;
        } catch (const std::bad_alloc&) {
            ++failures;
        }
        counter.FailAllocation(0);
        if (clone)
            Placed(clone);
        clone.detach();
        EXPECT_EQ(Body::s_living, before) << failures;
    }
    EXPECT_GT(failures, 20);
}

} // namespace
