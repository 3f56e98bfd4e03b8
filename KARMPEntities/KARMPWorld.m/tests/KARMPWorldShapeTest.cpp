// Shapes of planar and spatial bodies in documents and in filtered clones.
#include "CloneTesting.h"
#include "KAR3DPolylineRep.h"
#include "KARBody.h"
#include "KARMP3DRep.h"
#include "KARMPBody2D.h"
#include "KARMPShapeBody.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

class WorldShapes : public CloneFixture
{
protected:
    WorldShapes()
    {
        stored = KARBody::Create();
        look->Set3DRep(KAR3DPolylineRep::CreateRep({{0, 0, 0}, {1, 0, 0}}));
        look->LinkToBody(body);
        body->LinkToShape(look);
        outline->SetBody(stored);
        outline->LinkToBody(planarBody);
        planarBody->LinkToShape(outline);
    }
    ~WorldShapes() override { stored->Release(); }

    const QOBSharedHandle<KARMPBody> body = File<KARMPBody>(KARMPBody::create(L"body"));
    const QOBSharedHandle<KARMP3DRep> look = File<KARMPShape>(KARMP3DRep::create(L"look"));
    const QOBSharedHandle<KARMPBody2D> planarBody = File<KARMPBody>(KARMPBody2D::create(L"planar"));
    const QOBSharedHandle<KARMPShapeBody> outline =
        File<KARMPShape>(KARMPShapeBody::create(L"outline"));
    KARBody* stored = nullptr;
};

/// Expects the two bodies and shapes of the fixture, linked to one another.
void ExpectShapes(const KARMPWorld& world)
{
    QOBSharedHandle<KARMPShape> shape;
    const auto body = Named<KARMPBody>(world, L"body");
    ASSERT_EQ(body->GetLinkedShape(0, shape), KARSuccess);
    const QOBSharedHandle<KARMP3DRep> look(shape);
    EXPECT_NE(look->Get3DRep(), nullptr);
    QOBSharedHandle<KARMPBody> linked;
    EXPECT_EQ(look->GetLinkedBody(0, linked), KARSuccess);
    EXPECT_EQ(linked, body);

    const QOBSharedHandle<KARMPBody2D> planar(Named<KARMPBody>(world, L"planar"));
    QOBSharedHandle<KARMPShape2D> planarShape;
    ASSERT_EQ(planar->GetLinkedShape(0, planarShape), KARSuccess);
    EXPECT_EQ(planar->KARMPBody::GetLinkedShapeCount(), 0);
    EXPECT_NE(QOBSharedHandle<KARMPShapeBody>(planarShape)->GetBody(), nullptr);
    QOBSharedHandle<KARMPBody2D> linkedPlanar;
    ASSERT_EQ(planarShape->GetLinkedBodyCount(), 1);
    EXPECT_EQ(planarShape->GetLinkedBody(0, linkedPlanar), KARSuccess);
    EXPECT_EQ(linkedPlanar, planar);
}

TEST_F(WorldShapes, ComeBackWithTheirBodies)
{
    TestSerializer root;
    EXPECT_EQ(world->Serialize(&root), KARSuccess);
    const auto read = KARMPWorld::create(QOBBasicWorld::create(L"read"));
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get()), KARSuccess);
    ExpectShapes(*read);
}

TEST_F(WorldShapes, AreLinkedToTheirBodiesInAFilteredClone)
{
    ExpectShapes(*CloneOf({body, look, planarBody, outline}));
    const auto alone = CloneOf({planarBody, look});
    const QOBSharedHandle<KARMPBody2D> planar(Named<KARMPBody>(*alone, L"planar"));
    EXPECT_EQ(planar->GetLinkedShapeCount(), 0);
    EXPECT_EQ(Named<KARMPShape>(*alone, L"look")->GetLinkedBodyCount(), 0);
}

TEST_F(WorldShapes, LetGoOfAPlanarBodyThatIsRemoved)
{
    EXPECT_EQ(outline->GetLinkedBodyCount(), 1);
    planarBody->orphanObject();
    EXPECT_EQ(outline->GetLinkedBodyCount(), 0);
    EXPECT_EQ(planarBody->GetLinkedShapeCount(), 0);
}

} // namespace
