#include "KARMPDiagnostic.h"
#include "KARMPBody.h"
#include "KARMPEntityTable.h"
#include "KARMPGenericFactory.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"
#include "VirtualSlot.h"

namespace {

using Entity = QOBSharedHandle<KARMPEntity>;

class Diagnostic : public KARMPTestFixture
{
protected:
    static std::vector<Entity> EntitiesOf(const KARMPDiagnostic& diagnostic)
    {
        std::vector<Entity> found;
        for (int index = 0; index < diagnostic.GetEntityCount(); ++index) {
            found.emplace_back();
            EXPECT_EQ(diagnostic.GetEntity(index, found.back()), KARSuccess);
        }
        return found;
    }

    QOBSharedHandle<KARMPDiagnostic> diagnostic = KARMPDiagnostic::create(L"finding");
    Entity body = KARMPBody::create(L"body");
    Entity variable = KARMPVariable::create(L"variable");
    Entity point = KARMPPoint::create(L"point");
};

TEST_F(Diagnostic, SaysNothingAboutNobodyAtFirst)
{
    KARMPDiagnosticID::Enum id = KARMPDiagnosticID::Redundant;
    EXPECT_EQ(diagnostic->GetDiagnosticID(id), KARSuccess);
    EXPECT_EQ(id, KARMPDiagnosticID::Unspecified);
    KARUnicodeString message("something");
    EXPECT_EQ(diagnostic->GetMessageString(message), KARSuccess);
    EXPECT_TRUE(message == "");
    EXPECT_EQ(diagnostic->GetEntityCount(), 0);
}

TEST_F(Diagnostic, KeepsNumberAndMessage)
{
    for (const auto id : {KARMPDiagnosticID::NotConverged, static_cast<KARMPDiagnosticID::Enum>(99),
                          KARMPDiagnosticID::Unspecified}) {
        EXPECT_EQ(diagnostic->SetDiagnosticID(id), KARSuccess);
        KARMPDiagnosticID::Enum kept{};
        EXPECT_EQ(diagnostic->GetDiagnosticID(kept), KARSuccess);
        EXPECT_EQ(kept, id);
    }
    EXPECT_EQ(diagnostic->SetMessageString("the loop does not close"), KARSuccess);
    KARUnicodeString message;
    EXPECT_EQ(diagnostic->GetMessageString(message), KARSuccess);
    EXPECT_TRUE(message == "the loop does not close");
}

TEST_F(Diagnostic, ListsEntitiesOfAnyClassOnceInTheOrderOfAdding)
{
    EXPECT_EQ(diagnostic->AddEntity(variable), KARSuccess);
    EXPECT_EQ(diagnostic->AddEntity(body), KARSuccess);
    EXPECT_EQ(diagnostic->AddEntity(point), KARSuccess);
    EXPECT_EQ(diagnostic->AddEntity(body), KARUnchanged);
    EXPECT_EQ(EntitiesOf(*diagnostic), (std::vector<Entity>{variable, body, point}));
    EXPECT_EQ(diagnostic->RemoveEntity(variable), KARSuccess);
    EXPECT_EQ(diagnostic->RemoveEntity(variable), KARUnchanged);
    EXPECT_EQ(EntitiesOf(*diagnostic), (std::vector<Entity>{body, point}));
}

TEST_F(Diagnostic, FailsForIndicesOutsideItsListInSilence)
{
    diagnostic->AddEntity(body);
    for (const int index : {-1, 1}) {
        Entity entity = body;
        EXPECT_EQ(diagnostic->GetEntity(index, entity), KARFailure);
        EXPECT_FALSE(entity);
    }
}

TEST_F(Diagnostic, RefusesNullHandlesWithAReport)
{
    EXPECT_EQ(diagnostic->AddEntity(Entity()), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(diagnostic->RemoveEntity(Entity()), KARFailure);
    ExpectReports(1);
}

TEST_F(Diagnostic, CopiesNumberAndMessageAndNoEntities)
{
    diagnostic->SetDiagnosticID(KARMPDiagnosticID::Inconsistent);
    diagnostic->SetMessageString("message");
    diagnostic->AddEntity(body);
    const auto copy = KARMPDiagnostic::clone(diagnostic, QOBDynamicObject::CopyShallow);
    KARMPDiagnosticID::Enum id{};
    copy->GetDiagnosticID(id);
    EXPECT_EQ(id, KARMPDiagnosticID::Inconsistent);
    KARUnicodeString message;
    copy->GetMessageString(message);
    EXPECT_TRUE(message == "message");
    EXPECT_EQ(copy->GetEntityCount(), 0);
}

TEST_F(Diagnostic, DropsItsEntitiesWhenItIsDestroyed)
{
    diagnostic->AddEntity(body);
    const auto other = diagnostic;
    KARMPDiagnostic::destroy(diagnostic);
    EXPECT_EQ(other->GetEntityCount(), 0);
    EXPECT_EQ(body->getReferenceCount(), 1U);
}

TEST_F(Diagnostic, WritesWhatEveryEntityWritesOnTheNodeThatItIsGiven)
{
    diagnostic->SetIdentifier(L"finding");
    diagnostic->SetMessageString("message");
    diagnostic->AddEntity(body);
    TestSerializer root;
    EXPECT_EQ(diagnostic->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"@id"), L"finding");
    EXPECT_EQ(root.GetElementCount(), 0U);
    EXPECT_EQ(root.Dump().find("message"), std::string::npos);
    EXPECT_EQ(diagnostic->Serialize(nullptr), KARSuccess);
}

TEST_F(Diagnostic, IsMadeByTheFactory)
{
    Entity entity;
    EXPECT_EQ(KARMPFactory::Create("KARMPDiagnostic", entity), KARSuccess);
    EXPECT_TRUE(entity->isInstanceOf(KARMPDiagnostic::ClassInfo()));
}

#if defined(__GNUC__) && defined(__x86_64__)

// Applications derive from the class and are built apart from the library.
TEST_F(Diagnostic, HasItsOperationsInAFixedOrder)
{
    ExpectSlotsBehind(VirtualSlot(&KARMPDiagnostic::SetDiagnosticID),
                      {VirtualSlot(&KARMPDiagnostic::GetDiagnosticID),
                       VirtualSlot(&KARMPDiagnostic::SetMessageString),
                       VirtualSlot(&KARMPDiagnostic::GetMessageString)});
}

#endif

} // namespace
