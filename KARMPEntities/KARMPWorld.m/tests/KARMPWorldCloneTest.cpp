#include "CloneTesting.h"
#include "KARMPObserver.h"
#include "KARMPPoint.h"
#include "KARWBFactory.h"
#include "ModelObject.h"
#include "QOBException.h"

/// A body that notes the copies of its kind. The factory does not know it, so that tests of all
/// classes do not meet it.
class NotedBody : public KARMPBody
{
    KARMP_ABSTRACT_ENTITY(NotedBody, KARMPBody)

public:
    static inline std::vector<std::pair<std::wstring, CopyMode>> s_copies;

protected:
    NotedBody() = default;
    NotedBody(const NotedBody& source, CopyMode mode) : Super(source, mode)
    {
        s_copies.emplace_back(source.getEntityName(), mode);
    }
};
KARMP_DEFINE_IDENTITY(NotedBody, "5D0E7A52-93C4-4B7B-A1D8-6C2F1B9E4A30",
                      karmp::EntityAccess::Operations<NotedBody>());

namespace {

using CloneOfAWorld = CloneFixture;

TEST_F(CloneOfAWorld, ExtendsABasicWorldOfItsOwn)
{
    const auto clone = world->Clone();
    const auto host = QOBSharedHandle<QOBBasicWorld>(clone->getExtendible());
    ASSERT_TRUE(host);
    EXPECT_NE(host, basicWorld);
    EXPECT_EQ(host->getEntityName(), L"BasicWorld");
    EXPECT_EQ(host->getLogicalChildCount(), 0U);
}

TEST_F(CloneOfAWorld, HasSizeTolerancesOriginAndGravity)
{
    world->SetLinearTolerance(1);
    world->SetAngularTolerance(2);
    world->SetOrigin({1, 2, 3});
    world->SetSize(4, 5, 6);
    world->SetGravity({7, 8, 9});
    for (const auto& clone : {world->Clone(), world->CloneWithFilter({})}) {
        EXPECT_EQ(clone->GetLinearTolerance(), 1);
        EXPECT_EQ(clone->GetAngularTolerance(), 2);
        KARMathPoint origin;
        clone->GetOrigin(origin);
        EXPECT_EQ(origin, KARMathPoint(1, 2, 3));
        std::array<double, 3> size{};
        clone->GetSize(size[0], size[1], size[2]);
        EXPECT_EQ(size, (std::array{4.0, 5.0, 6.0}));
        KARMathVector gravity;
        clone->GetGravity(gravity);
        EXPECT_EQ(gravity, KARMathVector(7, 8, 9));
    }
}

TEST_F(CloneOfAWorld, HasNeitherUnitNorGroundBodyNorSolverSideNorCount)
{
    ModelObject table;
    ModelObject loader;
    world->SetTable(&table);
    world->SetLoader(&loader, 5);
    world->SetGroundBody(GlobalBody(*world));
    world->SetLengthUnit(KARMPUnit::Foot);
    world->GetEntityId();
    for (const auto& clone : {world->Clone(), world->CloneWithFilter({})}) {
        KARMPUnit::Enum unit = KARMPUnit::Foot;
        clone->GetLengthUnit(unit);
        EXPECT_EQ(unit, KARMPUnit::Millimeter);
        QOBSharedHandle<KARMPBody> ground;
        clone->GetGroundBody(ground);
        EXPECT_FALSE(ground);
        KARBaseUnknown* got = nullptr;
        int kind = 0;
        EXPECT_EQ(clone->GetTable(got), KARUnchanged);
        EXPECT_EQ(clone->GetLoader(got, kind), KARUnchanged);
        EXPECT_EQ(clone->GetEntityId(), 3U);
    }
    EXPECT_EQ(table.Held(), 1U);
    world = nullptr;
    basicWorld = nullptr;
}

TEST_F(CloneOfAWorld, HasAnEquationFactoryOfItsOwn)
{
    KARWBFactory* factory = nullptr;
    KARWBFactory* own = nullptr;
    world->GetWBFactory(factory);
    world->Clone()->GetWBFactory(own);
    EXPECT_NE(own, nullptr);
    EXPECT_NE(own, factory);
}

// The default one, the duplicate of the source's, and the third one that the accessor gives.
template <class Family, class T>
void ExpectThreeGlobals(const KARMPWorld& clone, const QOBSharedHandle<T>& source,
                        const QOBSharedHandle<T>& global)
{
    ASSERT_EQ(clone.Count<Family>(), 2) << Family::ClassName();
    ASSERT_TRUE(global);
    EXPECT_NE(global, source);
    EXPECT_EQ(global->getEntityName(), source->getEntityName());
    for (int i = 0; i < 2; ++i) {
        QOBSharedHandle<Family> listed;
        clone.Get(i, listed);
        EXPECT_NE(listed, source);
        EXPECT_NE(listed, global);
        EXPECT_EQ(listed->getEntityName(), source->getEntityName());
    }
}

TEST_F(CloneOfAWorld, HasGlobalsThatNoRegistryLists)
{
    const auto clone = world->Clone();
    ExpectThreeGlobals<KARMPBody>(*clone, GlobalBody(*world), GlobalBody(*clone));
    ExpectThreeGlobals<KARMPGeometry>(*clone, GlobalAxisSystem(*world), GlobalAxisSystem(*clone));
    ExpectThreeGlobals<KARMPVariable>(*clone, GlobalTime(*world), GlobalTime(*clone));
    EXPECT_EQ(GlobalBody(*clone)->GetGeometryCount(), 0);
    EXPECT_TRUE(GlobalBody(*clone)->IsFixed());
    EXPECT_EQ(GlobalTime(*clone)->GetPhysicalQuantity(), KARMPPhysicalQuantity::Time);
}

TEST_F(CloneOfAWorld, KeepsItsOwnGlobalsWhereTheSourceHasNone)
{
    world->SetGlobalBody(nullptr);
    world->SetGlobalAxisSystem(nullptr);
    world->SetGlobalTime(nullptr);
    const auto clone = world->Clone();
    ExpectReports(3);
    QOBSharedHandle<KARMPBody> body;
    clone->Get(0, body);
    EXPECT_EQ(GlobalBody(*clone), body);
    QOBSharedHandle<KARMPGeometry> axisSystem;
    clone->Get(0, axisSystem);
    EXPECT_EQ(GlobalAxisSystem(*clone), axisSystem);
    QOBSharedHandle<KARMPVariable> time;
    clone->Get(0, time);
    EXPECT_EQ(GlobalTime(*clone), time);
}

TEST_F(CloneOfAWorld, ListsADuplicateOfEveryEntityInOrder)
{
    karmp::Families::ForEach([this](auto family) {
        using T = typename decltype(family)::Type;
        File<T>(OwnKindOf<T>::create(L"second"));
        File<T>(OwnKindOf<T>::create(L"first"));
    });
    const auto clone = world->Clone();
    karmp::Families::ForEach([&](auto family) {
        using T = typename decltype(family)::Type;
        const int before = world->Count<T>() - 2;
        ASSERT_EQ(clone->Count<T>(), 2 * before + 2) << T::ClassName();
        for (const int number : {0, 1}) {
            QOBSharedHandle<T> source;
            QOBSharedHandle<T> duplicate;
            world->Get(before + number, source);
            clone->Get(2 * before + number, duplicate);
            EXPECT_NE(source, duplicate);
            EXPECT_EQ(duplicate->getEntityName(), NameOfDuplicate(*source));
            EXPECT_NE(dynamic_cast<OwnKindOf<T>*>(duplicate.get()), nullptr);
            EXPECT_FALSE(duplicate->getWorld());
        }
    });
}

TEST_F(CloneOfAWorld, FilesDuplicatesUnderTheKeysOfTheirSources)
{
    const auto key1 = WorldTestKey::Make();
    const auto key2 = WorldTestKey::Make();
    const auto none = KARBaseUnknown_var();
    world->Add(key1, key2, KARMPBody::create(L"both"));
    world->Add(key1, none, KARMPBody::create(L"one"));
    world->Add(KARMPBody::create(L"none"));
    world->Add(key1, key2, KARMPBody::create(L"both again"));
    for (const bool filtered : {false, true}) {
        QOBSharedList<KARMPEntity> all;
        for (int i = 0; i < world->GetBodyCount(); ++i) {
            QOBSharedHandle<KARMPBody> body;
            world->Get(i, body);
            all.push_back(body);
        }
        const auto clone = filtered ? CloneOf(all) : world->Clone();
        QOBSharedVector<KARMPBody> bodies;
        EXPECT_EQ(clone->Get(key1, key2, bodies), KARSuccess);
        EXPECT_EQ(bodies, (QOBSharedVector<KARMPBody>{Named<KARMPBody>(*clone, L"both"),
                                                      Named<KARMPBody>(*clone, L"both again")}));
        QOBSharedHandle<KARMPBody> body;
        EXPECT_EQ(clone->Get(key1, none, body), KARSuccess);
        EXPECT_EQ(body, Named<KARMPBody>(*clone, L"one"));
        KARBaseUnknown_var got1 = key1;
        KARBaseUnknown_var got2 = key1;
        EXPECT_EQ(clone->GetKeys(Named<KARMPBody>(*clone, L"none"), got1, got2), KARUnchanged);
        EXPECT_EQ(got1, none);
        EXPECT_EQ(clone->GetKeys(Named<KARMPBody>(*clone, L"both"), got1, got2), KARSuccess);
        EXPECT_EQ(got1, key1);
        EXPECT_EQ(got2, key2);
        EXPECT_EQ(NamesIn<KARMPBody>(*clone),
                  (Names{L"GlobalBody", L"GlobalBody", L"both", L"one", L"none", L"both again"}));
    }
}

/// One that has no record of its own, and so must be asked for its copy.
class AskedBody : public NotedBody
{
public:
    AskedBody() = default;
};

TEST_F(CloneOfAWorld, CopiesShallowlyAndTheGlobalsLast)
{
    const auto recorded = File<KARMPBody>(karmp::EntityAccess::Create<NotedBody>(L"recorded"));
    const auto asked = File<KARMPBody>(QOBSharedHandle<AskedBody>(new AskedBody));
    asked->setEntityName(L"asked");
    const QOBSharedHandle<AskedBody> global(new AskedBody);
    global->setEntityName(L"global");
    world->SetGlobalBody(global);
    constexpr auto Shallow = QOBDynamicObject::CopyShallow;
    for (const bool filtered : {false, true}) {
        NotedBody::s_copies.clear();
        const auto clone = filtered ? world->CloneWithFilter({recorded, asked}) : world->Clone();
        EXPECT_EQ(NotedBody::s_copies,
                  (std::vector<std::pair<std::wstring, QOBDynamicObject::CopyMode>>{
                      {L"recorded", Shallow}, {L"asked", Shallow}, {L"global", Shallow}}));
    }
}

// An entity that is listed with keys and without has two entries, and so two duplicates.
TEST_F(CloneOfAWorld, DuplicatesAnEntityForEachOfItsEntries)
{
    const auto key = WorldTestKey::Make();
    const auto body = KARMPBody::create(L"body");
    world->Add(body);
    world->Add(key, key, body);
    const auto clone = world->Clone();
    EXPECT_EQ(NamesIn<KARMPBody>(*clone), (Names{L"GlobalBody", L"GlobalBody", L"body", L"body"}));
    QOBSharedVector<KARMPBody> filed;
    EXPECT_EQ(clone->Get(key, key, filed), KARSuccess);
    EXPECT_EQ(filed.size(), 2U);
}

TEST_F(CloneOfAWorld, LinksNothing)
{
    const auto body = File<KARMPBody>(KARMPBody::create(L"body"));
    const auto point = File<KARMPGeometry>(KARMPPoint::create(L"point"));
    point->SetBody(body);
    body->AddGeometry(point);
    const auto clone = world->Clone();
    EXPECT_EQ(Named<KARMPBody>(*clone, L"body")->GetGeometryCount(), 0);
    QOBSharedHandle<KARMPBody> carrier;
    EXPECT_EQ(Named<KARMPGeometry>(*clone, L"point")->GetBody(carrier), KARFailure);
}

TEST_F(CloneOfAWorld, IsIndependentOfItsSource)
{
    File<KARMPBody>(KARMPBody::create(L"body"))->SetMass(3);
    const auto clone = world->Clone();
    world->EmptyWorld();
    world = nullptr;
    basicWorld = nullptr;
    EXPECT_EQ(clone->GetBodyCount(), 3);
    double mass = 0.0;
    EXPECT_EQ(Named<KARMPBody>(*clone, L"body")->GetMass(mass), KARSuccess);
    EXPECT_EQ(mass, 3);
}

TEST_F(CloneOfAWorld, CanBeMadeOfAWorldThatExtendsNothing)
{
    const auto unbound = KARMPWorld::create(nullptr);
    unbound->Add<KARMPBody>(KARMPBody::create(L"body"));
    EXPECT_EQ(unbound->Clone()->GetBodyCount(), 3);
    EXPECT_EQ(unbound->CloneWithFilter({Named<KARMPBody>(*unbound, L"body")})->GetBodyCount(), 2);
}

// An entity whose class makes no duplicates.
TEST_F(CloneOfAWorld, LeavesOutWhatHasNoDuplicateAndGoesOn)
{
    const auto shape = File<KARMPShape>(TestOf<KARMPShape>::create(L"none"));
    const auto other = File<KARMPShape>(OwnKindOf<KARMPShape>::create(L"other"));
    EXPECT_EQ(NamesIn<KARMPShape>(*world->Clone()), Names{L"other"});
    ExpectReports(1);
    EXPECT_EQ(NamesIn<KARMPShape>(*CloneOf({shape, other})), Names{L"other"});
    ExpectReports(1);
}

// A body whose duplicate is something else.
class Changeling : public KARMPBody
{
public:
    QOBSharedObject* _duplicateObject(CopyMode) const override
    {
        const QOBSharedHandle<KARMPPoint> point = KARMPPoint::create(L"point");
        point->addReference();
        return point.get();
    }
};

TEST_F(CloneOfAWorld, ThrowsWhenADuplicateIsOfAnotherFamily)
{
    const QOBSharedHandle<KARMPBody> body(new Changeling);
    world->Add(body);
    EXPECT_THROW(world->Clone(), QOBEInvalidCast);
    EXPECT_THROW(world->CloneWithFilter({body}), QOBEInvalidCast);
}

// A body that empties its world's list of bodies while it is duplicated.
class Quitter : public KARMPBody
{
public:
    explicit Quitter(KARMPWorld& world) : m_world(world) {}
    QOBSharedObject* _duplicateObject(CopyMode mode) const override
    {
        m_world.EmptyRegistry<KARMPBody>();
        return KARMPBody::_duplicateObject(mode);
    }

private:
    KARMPWorld& m_world;
};

TEST_F(CloneOfAWorld, SurvivesAnEntityThatLeavesTheWorldMeanwhile)
{
    world->Add(QOBSharedHandle<KARMPBody>(new Quitter(*world)));
    world->Add<KARMPBody>(KARMPBody::create(L"behind"));
    const auto clone = world->Clone();
    EXPECT_EQ(clone->GetBodyCount(), 3);
    EXPECT_EQ(world->GetBodyCount(), 0);
}

TEST_F(CloneOfAWorld, IsNotWatchedByTheObserverOfItsSource)
{
    const auto body = File<KARMPBody>(KARMPBody::create(L"body"));
    const auto observer = KARMPObserver::create();
    observer->Subscribe(world);
    const auto clone = CloneOf({body});
    EXPECT_EQ(body->getSubscriberCount(), 1U);
    EXPECT_EQ(observer->GetMovingBodyCount(KARMPObserver::SinceSubscribe), 0U);
    EXPECT_EQ(observer->GetModifiedEntityCount(KARMPObserver::SinceSubscribe), 0U);
    Named<KARMPBody>(*clone, L"body")->NotifyUpdate();
    Named<KARMPBody>(*world->Clone(), L"body")->NotifyUpdate();
    EXPECT_EQ(observer->GetMovingBodyCount(KARMPObserver::SinceSubscribe), 0U);
    body->NotifyUpdate();
    EXPECT_EQ(observer->GetMovingBodyCount(KARMPObserver::SinceSubscribe), 1U);
}

TEST_F(CloneOfAWorld, FreesItsGlobals)
{
    auto clone = world->Clone();
    const auto global = Probe(*GlobalAxisSystem(*clone));
    QOBSharedHandle<KARMPGeometry> first;
    clone->Get(0, first);
    const auto own = Probe(*first);
    first = nullptr;
    clone = nullptr;
    EXPECT_FALSE(global.isAlive());
    EXPECT_FALSE(own.isAlive());
}

} // namespace
