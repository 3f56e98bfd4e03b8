#include "KARMPJointKinds.h"

#include "KARMPBody.h"
#include "KARMPCouplingKinds.h"
#include "KARMPEntityTable.h"
#include "KARMPJoint2D.h"
#include "KARMPScrew.h"
#include "KARMPTestFixture.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

struct Kind
{
    const char* name;
    const char* guid;
    const wchar_t* element;
};

constexpr Kind Kinds[] = {
    {"KARMPRevolute", "8A63D1C8-9EA2-4648-9912-379A66C7B63C", L"Revolute"},
    {"KARMPPrismatic", "443A4A98-0ACE-41df-BFF1-DAF3988B82C2", L"Prismatic"},
    {"KARMPCylindrical", "9A41726A-78D5-4674-B8BF-E39F1A404303", L"Cylindrical"},
    {"KARMPSpherical", "1CB6E905-6601-49ba-9E2D-3E68544B6EBC", L"Spherical"},
    {"KARMPPlanar", "C855983D-4B1F-4611-98AD-E3C735A77BFA", L"Planar"},
    {"KARMPUniversal", "41A64EF6-3CDF-49c2-AE78-F962AE3F4561", L"Universal"},
    {"KARMPRigid", "C2AF513B-FD5A-4bb1-9000-D536BC788A02", L"Rigid"},
    {"KARMPScrew", "1DE43FB1-A0F1-439a-986F-3CBFD603DE65", L"Screw"},
    {"KARMPPointCurve", "C9E10801-BCD5-4a39-97F4-1566D5B73542", L"PointCurve"},
    {"KARMPPointSurface", "0B713522-0419-4778-B8A8-4A76B083D773", L"PointSurface"},
    {"KARMPRollCurve", "2B25E499-F0B3-4818-BA4D-68A3D54DF62C", L"RollCurve"},
    {"KARMPSlideCurve", "50DC0FC1-85B0-4beb-BFB1-4B731DBB6A03", L"SlideCurve"},
    {"KARMPSymmetric", "6EF921DF-16CE-4296-B39B-9010FC10C032", L"Symmetric"},
    {"KARMPUserDefined", "896FAB27-2CC6-4801-81EE-9C3EBCC81B10", L"UserDefined"},
    {"KARMPGear", "9B315683-BFDF-42d1-8D90-0DE1E00427C6", L"Gear"},
    {"KARMPRack", "BC733B73-C8F8-4f6d-B455-8565A190E6AC", L"Rack"},
    {"KARMPCable", "DA99EAA0-CF90-449b-A685-622FC6997E8D", L"Cable"},
};

class JointKinds : public KARMPTestFixture
{
protected:
    static QOBSharedHandle<KARMPJoint> Create(const Kind& kind)
    {
        QOBSharedHandle<KARMPEntity> entity;
        EXPECT_EQ(KARMPFactory::Create(kind.name, entity), KARSuccess);
        return QOBSharedHandle<KARMPJoint>(entity);
    }

    KARMPEntityTable table;
};

TEST_F(JointKinds, EachIsMadeByTheFactoryWithItsIdentity)
{
    for (const Kind& kind : Kinds) {
        const auto joint = Create(kind);
        EXPECT_EQ(joint->getClassName(), kind.name);
        EXPECT_EQ(joint->getClassID(), QOBUUID(kind.guid)) << kind.name;
        EXPECT_TRUE(joint.isDerivedFrom(KARMPJoint::ClassInfo())) << kind.name;
        EXPECT_FALSE(joint.isInstanceOf(KARMPJoint::ClassInfo())) << kind.name;
    }
}

TEST_F(JointKinds, TheBasesAreNotMadeByTheFactory)
{
    for (const char* name : {"KARMPJoint", "KARMPJoint2D", "KARMPCoupling"}) {
        QOBSharedHandle<KARMPEntity> entity;
        EXPECT_EQ(KARMPFactory::Create(name, entity), KARFailure);
        ExpectReports(1);
    }
    EXPECT_EQ(KARMPJoint::ClassID(), QOBUUID("30EACC4A-72AF-49ac-828E-B6822908F37F"));
    EXPECT_EQ(KARMPJoint2D::ClassID(), QOBUUID("6B6E2CD1-F7E2-401C-89D6-8E633D75DDF1"));
    EXPECT_EQ(KARMPCoupling::ClassID(), QOBUUID("41A36EF6-3CDF-49c2-AE78-F962AE3F4561"));
}

TEST_F(JointKinds, OnlyGearRackAndCableHaveACouplingsRecord)
{
    for (const Kind& kind : Kinds) {
        const auto joint = Create(kind);
        const std::wstring_view name = kind.element;
        EXPECT_EQ(joint.isDerivedFrom(KARMPCoupling::ClassInfo()),
                  name == L"Gear" || name == L"Rack" || name == L"Cable");
    }
}

TEST_F(JointKinds, AScrewIsACouplingToACastAndAJointToItsRecord)
{
    const QOBSharedHandle<KARMPJoint> screw(KARMPScrew::create(L"screw"));
    EXPECT_FALSE(screw.isDerivedFrom(KARMPCoupling::ClassInfo()));
    EXPECT_TRUE(screw.isDerivedFrom(KARMPJoint::ClassInfo()));
    EXPECT_EQ(QOBSharedHandle<KARMPCoupling>(screw), screw);
}

TEST_F(JointKinds, EachWritesAndReadsItsElement)
{
    for (const Kind& kind : Kinds) {
        const auto body = KARMPBody::create(L"body");
        body->SetIdentifier(L"B");
        table.Set(L"B", body);
        const auto joint = Create(kind);
        joint->setEntityName(L"joint");
        joint->LinkToBody(body, KARMPBodyOrientation::In);
        TestSerializer root;
        EXPECT_EQ(joint->Serialize(&root), KARSuccess);
        ASSERT_EQ(root.GetElementCount(), 1u);
        EXPECT_EQ(root.Child(0).GetId(), kind.element);
        const auto document = TestDeserializer::From(root);
        const auto read = Create(kind);
        EXPECT_EQ(read->Deserialize(document.get(), table), KARSuccess);
        EXPECT_EQ(read->getEntityName(), L"joint");
        EXPECT_EQ(read->GetLinkedBodyCount(), 1);
        // The element itself may be handed in as well.
        const KARMPDeserializer* element = nullptr;
        document->GetElement(kind.element, element);
        const auto again = Create(kind);
        EXPECT_EQ(again->Deserialize(element, table), KARSuccess);
        EXPECT_EQ(again->GetLinkedBodyCount(), 1);
    }
}

TEST_F(JointKinds, TheElementOfAnotherKindIsNotRead)
{
    for (const Kind& kind : Kinds) {
        TestDeserializer document;
        document.Add(std::wstring_view(kind.element) == L"Prismatic" ? L"Revolute" : L"Prismatic")
            .Attribute(L"id", L"J");
        const auto joint = Create(kind);
        EXPECT_EQ(joint->Deserialize(&document, table), KARFailure) << kind.name;
        ExpectReports(1);
    }
}

TEST_F(JointKinds, NullArgumentsAndFailedElementsAreReported)
{
    for (const Kind& kind : Kinds) {
        const auto joint = Create(kind);
        EXPECT_EQ(joint->Serialize(nullptr), KARFailure) << kind.name;
        ExpectReports(1);
        EXPECT_EQ(joint->Deserialize(nullptr, table), KARFailure) << kind.name;
        ExpectReports(1);
        TestSerializer root;
        root.FailCreation(1);
        EXPECT_EQ(joint->Serialize(&root), KARFailure) << kind.name;
        ExpectReports(2);
    }
}

TEST_F(JointKinds, ARigidJointOfThreeBodiesIsWrittenAndReadAsAnyOther)
{
    const auto rigid = KARMPRigid::create(L"rigid");
    for (const wchar_t* name : {L"A", L"B", L"C"}) {
        const auto body = KARMPBody::create(name);
        body->SetIdentifier(name);
        table.Set(name, body);
        rigid->LinkToBody(body, KARMPBodyOrientation::In);
    }
    TestSerializer root;
    EXPECT_EQ(rigid->Serialize(&root), KARSuccess);
    const auto read = KARMPRigid::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), table), KARSuccess);
    ASSERT_EQ(read->GetLinkedBodyCount(), 3);
    QOBSharedHandle<KARMPBody> third;
    read->GetLinkedBody(2, third);
    EXPECT_EQ(third->getEntityName(), L"C");
}

TEST_F(JointKinds, CopiesAreOfTheSameKind)
{
    for (const Kind& kind : Kinds) {
        const auto joint = Create(kind);
        joint->setEntityName(L"source");
        const auto copy = KARMPJoint::clone(joint, QOBDynamicObject::CopyDeep);
        ASSERT_TRUE(copy) << kind.name;
        EXPECT_EQ(copy->getClassName(), kind.name);
        EXPECT_EQ(copy->getEntityName(), L"source");
    }
}

} // namespace
