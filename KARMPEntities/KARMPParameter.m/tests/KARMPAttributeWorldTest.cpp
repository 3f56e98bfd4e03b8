#include "AttributeTesting.h"
#include "KARMPBody.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <cstdlib>

namespace {

/// A world with one entity that has an attribute of each kind, each with a child.
class AttributeWorld : public KARMPTestFixture
{
protected:
    AttributeWorld()
    {
        Add<KARMPParameter>("p", L"P");
        Add<KARMPState>("s", L"S");
        Add<KARMPOutput>("o", L"O");
    }

    template <class T>
    void Add(const std::string& text, const wchar_t* prefix)
    {
        const auto attribute = NewAttribute<T>(text);
        const auto child = NewAttribute<T>(text + text);
        attribute->AddChild(child);
        const auto value = KARMPConstant::create(std::wstring(L"value of ") + prefix);
        value->SetPhysicalQuantity(KARMPPhysicalQuantity::Length);
        value->SetValue(2.5, "");
        child->AddValue(value);
        AddTo(*Body(), attribute);
        world->Add(QOBSharedHandle<KARMPAttribute>(attribute));
        world->Add(QOBSharedHandle<KARMPAttribute>(child));
        world->Add(QOBSharedHandle<KARMPValue>(value));
    }
    QOBSharedHandle<KARMPBody> Body() const { return BodyOf(*world); }
    static QOBSharedHandle<KARMPBody> BodyOf(const KARMPWorld& some)
    {
        QOBSharedHandle<KARMPBody> body;
        some.GetGlobalBody(body);
        return body;
    }

    const QOBSharedHandle<QOBBasicWorld> basicWorld = QOBBasicWorld::create(L"basic");
    const QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basicWorld);
    const QOBSharedHandle<QOBBasicWorld> otherBasicWorld = QOBBasicWorld::create(L"other");
    const QOBSharedHandle<KARMPWorld> other = KARMPWorld::create(otherBasicWorld);
};

using AttributeWorldProcess = AttributeWorld;

TEST_F(AttributeWorldProcess, KeepsParametersAndStatesAloneWithoutTheVariable)
{
    ASSERT_EQ(std::getenv("MOT_DUMP_OUTPUTS"), nullptr);
    TestSerializer root;
    EXPECT_EQ(world->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Dump().find("Output"), std::string::npos);
    EXPECT_EQ(root.Count(L"World/Attributes/Parameter"), 2U);
    EXPECT_EQ(root.Count(L"World/Attributes/State"), 2U);
    const auto tree = TestDeserializer::From(root);
    EXPECT_EQ(other->Deserialize(tree.get()), KARSuccess);
    double held = 0.0;
    EXPECT_EQ(BodyOf(*other)->GetParameterValue({"p", "pp"}, 0, held), KARSuccess);
    EXPECT_EQ(held, 2.5);
    EXPECT_EQ(BodyOf(*other)->GetStateValue({"s", "ss"}, 0, held), KARSuccess);
    EXPECT_EQ(BodyOf(*other)->GetOutputCount(), 0);
    ExpectReports(0);
}

TEST_F(AttributeWorldProcess, KeepsOutputsWithTheVariable)
{
    ASSERT_NE(std::getenv("MOT_DUMP_OUTPUTS"), nullptr);
    TestSerializer root;
    EXPECT_EQ(world->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Count(L"World/Attributes/Output"), 2U);
    const auto tree = TestDeserializer::From(root);
    EXPECT_EQ(other->Deserialize(tree.get()), KARSuccess);
    double held = 0.0;
    EXPECT_EQ(BodyOf(*other)->GetOutputValue({"o", "oo"}, 0, held), KARSuccess);
    EXPECT_EQ(held, 2.5);
    // Reading looks at the variable each time: outputs are passed over from now on.
    ::unsetenv("MOT_DUMP_OUTPUTS");
    const auto basic = QOBBasicWorld::create(L"third");
    const auto third = KARMPWorld::create(basic);
    const auto again = TestDeserializer::From(root);
    EXPECT_EQ(third->Deserialize(again.get()), KARSuccess);
    EXPECT_EQ(BodyOf(*third)->GetOutputCount(), 0);
    EXPECT_EQ(BodyOf(*third)->GetStateCount(), 1);
    TakeReports();
}

} // namespace
