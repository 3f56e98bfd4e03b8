#include "KARMPForceElement.h"
#include "ConnectorTesting.h"
#include "KARIMPForceElementLoader.h"
#include "KARMPBody.h"
#include "KARMPJointKinds.h"
#include "KARMPPoint.h"
#include "QOBException.h"

namespace {

class ForceElement : public ConnectorTest
{
protected:
    using Joint = QOBSharedHandle<KARMPJoint>;

    ForceElement() { Enter(L"J1", joint); }

    std::wstring Class() const
    {
        std::wstring text = L"?";
        EXPECT_EQ(element->GetClass(text), KARSuccess);
        return text;
    }
    std::wstring Stream() const
    {
        std::wstring text = L"?";
        EXPECT_EQ(element->GetStream(text), KARSuccess);
        return text;
    }

    QOBSharedHandle<KARMPForceElement> element = KARMPForceElement::create(L"element");
    Joint joint = KARMPRevolute::create(L"joint");
    Joint other = KARMPRevolute::create(L"other");
};

TEST_F(ForceElement, KeepsClassAndStreamAsTheyAre)
{
    EXPECT_EQ(Class(), L"");
    EXPECT_EQ(Stream(), L"");
    EXPECT_EQ(element->SetClass(L"Contact"), KARSuccess);
    EXPECT_EQ(element->SetStream(L"any <text>\n\u00e9"), KARSuccess);
    EXPECT_EQ(Class(), L"Contact");
    EXPECT_EQ(Stream(), L"any <text>\n\u00e9");
}

TEST_F(ForceElement, ActsInOneJointOrNone)
{
    Joint found = other;
    EXPECT_EQ(element->GetJoint(found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(element->SetJoint(other), KARSuccess);
    EXPECT_EQ(element->SetJoint(joint), KARSuccess);
    EXPECT_EQ(element->GetJoint(found), KARSuccess);
    EXPECT_EQ(found, joint);
    EXPECT_EQ(element->SetJoint({}), KARSuccess) << "null is taken";
    EXPECT_EQ(element->GetJoint(found), KARFailure);
    ExpectReports(0);
}

TEST_F(ForceElement, LetsItsJointGo)
{
    EXPECT_EQ(element->RemoveJoint({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(element->RemoveJoint(joint), KARUnchanged);
    element->SetJoint(joint);
    EXPECT_EQ(element->RemoveJoint(other), KARUnchanged);
    EXPECT_EQ(element->RemoveJoint(joint), KARSuccess);
    Joint found;
    EXPECT_EQ(element->GetJoint(found), KARFailure);
}

TEST_F(ForceElement, GivesItsLoader)
{
    ExpectLoader<KARMPForceElement, KARIMPForceElementLoader>();
}

TEST_F(ForceElement, WritesClassAndStreamAlwaysAndTheJointThatItHas)
{
    TestSerializer bare;
    EXPECT_EQ(element->Serialize(&bare), KARSuccess);
    EXPECT_EQ(bare.Text(L"ForceElement/@class"), L"");
    EXPECT_EQ(bare.Text(L"ForceElement/@stream"), L"");
    EXPECT_EQ(ElementsOf(bare), Names());
    element->SetClass(L"Contact");
    element->SetStream(L"AAEC");
    element->SetJoint(joint);
    element->LinkToGeometry(KARMPPoint::create(L"point"));
    TestSerializer root;
    EXPECT_EQ(element->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"ForceElement/@class"), L"Contact");
    EXPECT_EQ(root.Text(L"ForceElement/@stream"), L"AAEC");
    EXPECT_EQ(ElementsOf(root), (Names{L"Geometries", L"Joint"}));
    EXPECT_EQ(root.Text(L"ForceElement/Joint/@id"), L"J1");
    EXPECT_EQ(root.Text(L"ForceElement/Joint/@name"), L"joint");
}

TEST_F(ForceElement, ReadsBackWhatItWrites)
{
    element->SetClass(L"Contact");
    element->SetStream(L"AAEC");
    element->SetJoint(joint);
    element = ReadBack(element);
    EXPECT_EQ(Class(), L"Contact");
    EXPECT_EQ(Stream(), L"AAEC");
    Joint found;
    EXPECT_EQ(element->GetJoint(found), KARSuccess);
    EXPECT_EQ(found, joint);
}

TEST_F(ForceElement, ReportsAMissingClassAndStreamAndKeepsWhatItHas)
{
    element->SetClass(L"Contact");
    element->SetStream(L"AAEC");
    TestDeserializer root;
    AddElement(root, L"ForceElement");
    EXPECT_EQ(element->Deserialize(&root, entities), KARSuccess);
    ExpectReports(2);
    EXPECT_EQ(Class(), L"Contact");
    EXPECT_EQ(Stream(), L"AAEC");
}

TEST_F(ForceElement, PassesOverAnUnknownJointInSilenceAndThrowsForAnotherClass)
{
    TestDeserializer root;
    AddElement(root, L"ForceElement")
        .Attribute(L"class", L"")
        .Attribute(L"stream", L"")
        .Reference(L"Joint", L"unknown");
    EXPECT_EQ(element->Deserialize(&root, entities), KARSuccess);
    ExpectReports(0);
    Joint found;
    EXPECT_EQ(element->GetJoint(found), KARFailure);
    Enter(L"constant", KARMPConstant::create(L"constant"));
    TestDeserializer wrong;
    AddElement(wrong, L"ForceElement")
        .Attribute(L"class", L"")
        .Attribute(L"stream", L"")
        .Reference(L"Joint", L"constant");
    const auto reader = KARMPForceElement::create(L"reader");
    EXPECT_THROW(reader->Deserialize(&wrong, entities), QOBEInvalidCast);
}

TEST_F(ForceElement, IsOrphanedWithoutItsJoint)
{
    const auto body = KARMPBody::create(L"body");
    element->SetFirstBody(body);
    body->LinkToConnector(element);
    element->SetJoint(joint);
    element->LinkToGeometry(KARMPPoint::create(L"point"));
    element->orphanObject();
    Joint found;
    EXPECT_EQ(element->GetJoint(found), KARFailure);
    EXPECT_EQ(element->GetLinkedGeometryCount(), 0);
    EXPECT_EQ(body->GetLinkedConnectorCount(), 0);
    EXPECT_EQ(joint->getReferenceCount(), 2U) << "the handle here and the one of the table";
}

TEST_F(ForceElement, CopiesClassAndStreamWithoutTheJoint)
{
    const auto original = ConcreteEntity<KARMPForceElement>::create(L"original");
    original->SetClass(L"Contact");
    original->SetStream(L"AAEC");
    original->SetJoint(joint);
    element = original->copy();
    EXPECT_EQ(Class(), L"Contact");
    EXPECT_EQ(Stream(), L"AAEC");
    Joint found;
    EXPECT_EQ(element->GetJoint(found), KARFailure);
}

} // namespace
