#include "KARMPSurface.h"
#include "AllocationCounter.h"
#include "EnvironmentVariable.h"
#include "KARBody.h"
#include "KARLinearTransfoSurface.h"
#include "KARMPBody.h"
#include "KARMPCurve.h"
#include "KARMPEntityTable.h"
#include "KARMPPoint.h"
#include "KARMPReadingPlace.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "ModelObject.h"
#include "QOBBasicWorld.h"
#include "StoredStreams.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"
#include "VirtualSlot.h"

namespace {

/// A surface whose accessors answer what a test says.
class AnsweringSurface : public KARMPSurface
{
public:
    KARStatus SetSurface(KARBaseUnknown* surface) override
    {
        ++sets;
        return answersSet != KARSuccess ? answersSet : KARMPSurface::SetSurface(surface);
    }
    KARStatus GetSurface(KARBaseUnknown*& surface) const override
    {
        return answersGet != KARSuccess ? answersGet : KARMPSurface::GetSurface(surface);
    }

    int sets = 0;
    KARStatus answersSet = KARSuccess;
    KARStatus answersGet = KARSuccess;
};

class Surface : public KARMPTestFixture
{
protected:
    Surface()
    {
        plane = MakePlane(*factory);
        moved = Moved(plane);
        surface->SetIdentifier(L"S1");
    }

    KARLinearTransfoSurface* Moved(KARSurface* other)
    {
        return factory->Make<KARLinearTransfoSurface>(
            other, KARMathTransformation({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}, {10, 0, 0}));
    }
    static KARBaseUnknown* SurfaceOf(const KARMPSurface& entity)
    {
        KARBaseUnknown* given = nullptr;
        EXPECT_EQ(entity.GetSurface(given), KARSuccess);
        return given;
    }
    static std::unique_ptr<TestDeserializer> TreeWith(const std::wstring& stream)
    {
        auto tree = std::make_unique<TestDeserializer>(L"Surface");
        tree->Attribute(L"id", L"S1").Attribute(L"name", L"s").Attribute(L"isActive", L"yes");
        tree->Add(L"SurfaceStream").Attribute(L"length", 1).SetValue(stream);
        return tree;
    }

    EnvironmentVariable leaveOutSurfaces{"DONT_SERIALIZE_SURFACE", nullptr};
    StoredFactory factory{KARGeometricFactory::Create()};
    KARPlaneSurface* plane = nullptr;
    KARLinearTransfoSurface* moved = nullptr;
    QOBSharedHandle<KARMPSurface> surface = KARMPSurface::create(L"s");
    KARMPEntityTable entities;
};

TEST_F(Surface, IsNewlyNull)
{
    EXPECT_EQ(SurfaceOf(*surface), nullptr);
    EXPECT_EQ(surface->SetSurface(nullptr), KARSuccess);
    EXPECT_EQ(SurfaceOf(*surface), nullptr);
}

TEST_F(Surface, HoldsOneReferenceAndGivesItBack)
{
    EXPECT_EQ(surface->SetSurface(plane), KARSuccess);
    EXPECT_EQ(SurfaceOf(*surface), plane);
    // The factory's, that of the moved surface, and the entity's.
    EXPECT_EQ(plane->GetRefCount(), 3U);
    EXPECT_EQ(surface->SetSurface(plane), KARSuccess);
    EXPECT_EQ(plane->GetRefCount(), 3U);
    EXPECT_EQ(surface->SetSurface(nullptr), KARSuccess);
    EXPECT_EQ(plane->GetRefCount(), 2U);
    EXPECT_EQ(SurfaceOf(*surface), nullptr);
    surface->SetSurface(plane);
    surface.detach();
    EXPECT_EQ(plane->GetRefCount(), 2U);
}

TEST_F(Surface, HoldsTheSurfaceThatIsTransformedAsWell)
{
    EXPECT_EQ(surface->SetSurface(moved), KARSuccess);
    EXPECT_EQ(moved->GetRefCount(), 2U);
    EXPECT_EQ(plane->GetRefCount(), 3U);
    KARLinearTransfoSurface* const twice = Moved(moved);
    surface->SetSurface(twice);
    EXPECT_EQ(plane->GetRefCount(), 2U);
    EXPECT_EQ(moved->GetRefCount(), 3U);
    EXPECT_EQ(twice->GetRefCount(), 2U);
    surface->SetSurface(plane);
    EXPECT_EQ(moved->GetRefCount(), 2U);
    EXPECT_EQ(twice->GetRefCount(), 1U);
    surface->SetSurface(moved);
    surface.detach();
    EXPECT_EQ(moved->GetRefCount(), 2U);
    EXPECT_EQ(plane->GetRefCount(), 2U);
}

TEST_F(Surface, KeepsASurfaceThatItAloneHoldsWhenItIsSetAgain)
{
    KARPlaneSurface* const own =
        KARPlaneSurface::Create({0, 0, 1}, {1, 0, 0}, {0, 1, 0}, {-1, 1, -1, 1});
    surface->SetSurface(own);
    own->Release();
    surface->SetSurface(own);
    EXPECT_EQ(own->GetRefCount(), 1U);
}

TEST_F(Surface, CopyTakesReferencesOfItsOwn)
{
    surface->SetSurface(moved);
    {
        const auto copy = KARMPSurface::clone(surface, QOBDynamicObject::CopyDefault);
        EXPECT_EQ(SurfaceOf(*copy), moved);
        EXPECT_EQ(moved->GetRefCount(), 3U);
        EXPECT_EQ(plane->GetRefCount(), 4U);
    }
    EXPECT_EQ(moved->GetRefCount(), 2U);
    EXPECT_EQ(plane->GetRefCount(), 3U);
    surface->SetSurface(nullptr);
    const auto copy = KARMPSurface::clone(surface, QOBDynamicObject::CopyDefault);
    EXPECT_EQ(SurfaceOf(*copy), nullptr);
}

TEST_F(Surface, IsSafeForThreadsUnlessItIsABody)
{
    EXPECT_EQ(surface->IsThreadSafe(), 1);
    ExpectReports(1);
    surface->SetSurface(plane);
    EXPECT_EQ(surface->IsThreadSafe(), 1);
    surface->SetSurface(factory->Make<KARBody>());
    EXPECT_EQ(surface->IsThreadSafe(), 0);
    ModelObject object;
    surface->SetSurface(&object);
    EXPECT_EQ(surface->IsThreadSafe(), 1);
    surface->SetSurface(nullptr);
    EXPECT_EQ(object.Held(), 0U);
}

TEST_F(Surface, ThatCannotBeHadIsSafeForThreadsWithAReport)
{
    auto* const answering = new AnsweringSurface;
    const QOBSharedHandle<KARMPSurface> handle(answering);
    answering->SetSurface(factory->Make<KARBody>());
    answering->answersGet = KARFailure;
    EXPECT_EQ(answering->IsThreadSafe(), 1);
    ExpectReports(1);
    TestSerializer root;
    EXPECT_EQ(answering->Serialize(&root), KARUnchanged);
    EXPECT_EQ(root.Child(0).GetElementCount(), 0U);
}

TEST_F(Surface, ThatIsNullOrHasNoStoredFormIsWrittenWithoutAStreamAndGivesOne)
{
    ModelObject object;
    for (KARBaseUnknown* const unsaved :
         {static_cast<KARBaseUnknown*>(nullptr), static_cast<KARBaseUnknown*>(&object)}) {
        surface->SetSurface(unsaved);
        TestSerializer root;
        EXPECT_EQ(surface->Serialize(&root), KARUnchanged);
        EXPECT_EQ(root.Text(L"Surface/@id"), L"S1");
        EXPECT_EQ(root.Child(0).GetElementCount(), 0U);
    }
    surface->SetSurface(nullptr);
}

TEST_F(Surface, IsWrittenWithoutAStreamWhenTheVariableIsSet)
{
    surface->SetSurface(plane);
    for (const char* any : {"", "0"}) {
        leaveOutSurfaces.Set(any);
        TestSerializer root;
        EXPECT_EQ(surface->Serialize(&root), KARSuccess);
        EXPECT_EQ(root.Text(L"Surface/@id"), L"S1");
        EXPECT_EQ(root.Child(0).GetElementCount(), 0U);
    }
}

TEST_F(Surface, IsNotLookedAtWhenTheVariableIsSet)
{
    leaveOutSurfaces.Set("");
    TestSerializer null;
    EXPECT_EQ(surface->Serialize(&null), KARSuccess);
    auto* const answering = new AnsweringSurface;
    const QOBSharedHandle<KARMPSurface> handle(answering);
    answering->answersGet = KARFailure;
    TestSerializer failing;
    EXPECT_EQ(answering->Serialize(&failing), KARSuccess);
}

TEST_F(Surface, ComesBackWithAFailureAndAReport)
{
    surface->SetSurface(moved);
    TestSerializer root;
    ASSERT_EQ(surface->Serialize(&root), KARSuccess);
    const StreamBytes bytes = StreamOf(moved);
    EXPECT_EQ(root.Text(L"Surface/SurfaceStream"), kar::Base64EncodeWide(bytes));
    EXPECT_EQ(root.Integer(L"Surface/SurfaceStream/@length"), static_cast<int>(bytes.size()));
    for (const bool asText : {false, true}) {
        const auto read = KARMPSurface::create(L"");
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARFailure);
        ExpectReports(1);
        const auto* const loaded = KAROmxQI<KARLinearTransfoSurface>(SurfaceOf(*read));
        ASSERT_NE(loaded, nullptr);
        EXPECT_EQ(loaded->EvalPoint(0.5, 1.0), moved->EvalPoint(0.5, 1.0));
        // The factory that loaded it is gone.
        EXPECT_EQ(loaded->GetRefCount(), 1U);
        EXPECT_EQ(loaded->GetTransformedSurface()->GetRefCount(), 2U);
        TestSerializer again;
        EXPECT_EQ(read->Serialize(&again), KARSuccess);
        EXPECT_EQ(again.Dump(), root.Dump());
    }
}

TEST_F(Surface, ComesBackAsABody)
{
    const auto read = KARMPSurface::create(L"");
    const StreamBytes bytes = StreamOf(factory->Make<KARBody>());
    EXPECT_EQ(read->Deserialize(TreeWith(kar::Base64EncodeWide(bytes)).get(), entities),
              KARFailure);
    ExpectReports(1);
    EXPECT_NE(KARSysDynamicCast<KARBody>(SurfaceOf(*read)), nullptr);
}

TEST_F(Surface, IsReportedWhenItWasSetAndNotWhenItWasNot)
{
    const auto tree = TreeWith(kar::Base64EncodeWide(StreamOf(plane)));
    for (const KARStatus status : {KARUnchanged, KARFailure, KARSuccess}) {
        auto* const answering = new AnsweringSurface;
        const QOBSharedHandle<KARMPSurface> handle(answering);
        answering->answersSet = status;
        const KARMPReadingPlace place(tree.get());
        EXPECT_EQ(answering->Deserialize(tree.get(), entities), KARFailure);
        ExpectReports(status == KARSuccess ? 1 : 0);
        EXPECT_EQ(KARMPReadingPlace::IsComplete(), status == KARSuccess);
    }
}

TEST_F(Surface, WithoutAStreamIsReportedAndStaysAsItIs)
{
    surface->SetSurface(plane);
    TestSerializer root;
    surface->Serialize(&root);
    ForEachMissingItem(root.Child(0), {}, [&](TestDeserializer& tree, const std::wstring& missing) {
        SCOPED_TRACE(std::string(missing.begin(), missing.end()));
        const bool isStream = missing == L"Surface/SurfaceStream";
        auto* const answering = new AnsweringSurface;
        const QOBSharedHandle<KARMPSurface> handle(answering);
        answering->KARMPSurface::SetSurface(plane);
        EXPECT_EQ(answering->Deserialize(&tree, entities), KARFailure);
        ExpectReports(isStream ? 1 : 2);
        EXPECT_EQ(answering->sets, isStream ? 0 : 1);
        EXPECT_EQ(SurfaceOf(*answering) == plane, isStream);
    });
}

TEST_F(Surface, DamagedStreamsAreReportedAndAllocateNothingThatTheyAnnounce)
{
    const std::vector<std::wstring> texts = DamagedStreams(StreamOf(moved));
    ASSERT_GT(texts.size(), 300U);
    const AllocationCounter counter;
    for (const std::wstring& text : texts) {
        SCOPED_TRACE(std::string(text.begin(), text.end()));
        const auto tree = TreeWith(text);
        const auto read = KARMPSurface::create(L"");
        read->SetSurface(plane);
        const KARMPReadingPlace place(tree.get());
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARFailure);
        ExpectReports(1);
        EXPECT_FALSE(KARMPReadingPlace::IsComplete());
        EXPECT_EQ(SurfaceOf(*read), plane);
    }
    EXPECT_LT(counter.Bytes(), AllocatedForDamagedStreams);
}

TEST_F(Surface, NeedsItsElement)
{
    EXPECT_EQ(surface->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(surface->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
    const TestDeserializer empty;
    EXPECT_EQ(surface->Deserialize(&empty, entities), KARFailure);
    ExpectReports(1);
}

TEST_F(Surface, AdditionThatFailsIsReportedAndTheRestIsWritten)
{
    surface->SetSurface(plane);
    ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
        EXPECT_EQ(surface->Serialize(&root), failing == 1 ? KARFailure : KARSuccess);
        EXPECT_EQ(TakeReports() != 0, failing != 0);
    });
}

TEST_F(Surface, DoesNotKeepAWorldFromReadingOn)
{
    const auto basicWorld = QOBBasicWorld::create(L"w");
    const auto world = KARMPWorld::create(basicWorld);
    surface->SetSurface(moved);
    const auto body = KARMPBody::create(L"b");
    body->AddGeometry(surface);
    surface->SetBody(body);
    basicWorld->addLogicalChild(body);
    basicWorld->addLogicalChild(surface);
    const auto point = KARMPPoint::create(L"p");
    point->SetIdentifier(L"T1");
    point->SetPoint({1, 2, 3});
    world->Add<KARMPBody>(body);
    world->Add<KARMPGeometry>(surface);
    world->Add<KARMPGeometry>(point);
    TestSerializer root;
    ASSERT_EQ(world->Serialize(&root), KARSuccess);

    const auto read = KARMPWorld::create(QOBBasicWorld::create(L"r"));
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get()), KARSuccess);
    // The surface's own and the world's, of the failure.
    ExpectReports(2);
    QOBSharedHandle<KARMPSurface> readSurface;
    QOBSharedHandle<KARMPPoint> readPoint;
    for (int index = 0; index < read->Count<KARMPGeometry>(); ++index) {
        QOBSharedHandle<KARMPGeometry> geometry;
        read->Get(index, geometry);
        if (geometry.isDerivedFrom(KARMPSurface::ClassInfo()))
            readSurface = QOBSharedHandle<KARMPSurface>(geometry);
        if (geometry.isDerivedFrom(KARMPPoint::ClassInfo()))
            readPoint = QOBSharedHandle<KARMPPoint>(geometry);
    }
    ASSERT_TRUE(readSurface);
    EXPECT_NE(KAROmxQI<KARLinearTransfoSurface>(SurfaceOf(*readSurface)), nullptr);
    QOBSharedHandle<KARMPBody> readBody;
    EXPECT_EQ(readSurface->GetBody(readBody), KARSuccess);
    ASSERT_TRUE(readPoint);
    KARMathPoint at;
    readPoint->GetPoint(at);
    EXPECT_EQ(at, KARMathPoint(1, 2, 3));
}

TEST_F(Surface, IsSharedByAClonedWorldAndGivenBack)
{
    {
        const auto world = KARMPWorld::create(QOBBasicWorld::create(L"w"));
        surface->SetSurface(moved);
        world->Add<KARMPGeometry>(surface);
        const auto clone = world->Clone();
        EXPECT_EQ(moved->GetRefCount(), 3U);
    }
    surface.detach();
    EXPECT_EQ(moved->GetRefCount(), 1U);
    EXPECT_EQ(plane->GetRefCount(), 2U);
}

#if defined(__GNUC__) && defined(__x86_64__)

TEST_F(Surface, HasItsOperationsBehindThoseOfGeometry)
{
    ExpectSlotsBehind(
        VirtualSlot(&KARMPGeometry::GetLinkedConstraintCount),
        {VirtualSlot(&KARMPSurface::SetSurface), VirtualSlot(&KARMPSurface::GetSurface)});
}

#endif

} // namespace
