#include "KARMPBushing.h"
#include "ConnectorTesting.h"
#include "KARIMPBushingLoader.h"

#include <limits>

namespace {

/// The three values that a bushing has in each freedom, with their elements.
struct Kind
{
    using Value = QOBSharedHandle<KARMPValue>;

    KARStatus (KARMPBushing::*set)(int, const Value&);
    KARStatus (KARMPBushing::*get)(int, Value&) const;
    std::array<std::wstring, 6> elements;
};

const std::array<Kind, 3> Kinds{
    {{&KARMPBushing::SetStiffness,
      &KARMPBushing::GetStiffness,
      {L"StiffnessTx", L"StiffnessTy", L"StiffnessTz", L"StiffnessRx", L"StiffnessRy",
       L"StiffnessRz"}},
     {&KARMPBushing::SetDamping,
      &KARMPBushing::GetDamping,
      {L"DampingTx", L"DampingTy", L"DampingTz", L"DampingRx", L"DampingRy", L"DampingRz"}},
     {&KARMPBushing::SetPreLoadForce,
      &KARMPBushing::GetPreLoadForce,
      {L"PreForceTx", L"PreForceTy", L"PreForceTz", L"PreForceRx", L"PreForceRy", L"PreForceRz"}}}};

class Bushing : public ConnectorTest
{
protected:
    using Handle = QOBSharedHandle<KARMPBushing>;

    static Value Get(const Handle& bushing, const Kind& kind, int index)
    {
        Value found;
        EXPECT_EQ((bushing.get()->*kind.get)(index, found), KARSuccess);
        return found;
    }

    Handle bushing = KARMPBushing::create(L"bushing");
};

TEST_F(Bushing, KeepsAValueInEachFreedom)
{
    LoaderRecord record;
    bushing->SetLoader(new RecordingEntityLoader(record));
    for (const Kind& kind : Kinds) {
        for (int index = 0; index < 6; ++index) {
            EXPECT_FALSE(Get(bushing, kind, index)) << "nothing set is no failure";
            EXPECT_EQ((bushing.get()->*kind.set)(index, second), KARSuccess);
            EXPECT_EQ((bushing.get()->*kind.set)(index, first), KARSuccess);
            EXPECT_EQ((bushing.get()->*kind.set)(index, Value()), KARFailure);
            ExpectReports(1);
            EXPECT_EQ(Get(bushing, kind, index), first);
        }
    }
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(Bushing, HasNoFreedomBelowTheFirstOrAboveTheSixth)
{
    for (const Kind& kind : Kinds) {
        for (const int index :
             {-1, 6, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
            EXPECT_EQ((bushing.get()->*kind.set)(index, first), KARFailure) << index;
            ExpectReports(1);
            Value found = first;
            EXPECT_EQ((bushing.get()->*kind.get)(index, found), KARFailure) << index;
            ExpectReports(1);
            EXPECT_FALSE(found);
        }
        for (int index = 0; index < 6; ++index)
            EXPECT_FALSE(Get(bushing, kind, index));
    }
}

TEST_F(Bushing, GivesItsLoader)
{
    ExpectLoader<KARMPBushing, KARIMPBushingLoader>();
}

TEST_F(Bushing, WritesNothingOfItsOwnWithoutValues)
{
    TestSerializer root;
    EXPECT_EQ(bushing->Serialize(&root), KARSuccess);
    EXPECT_EQ(ElementsOf(root), Names());
}

TEST_F(Bushing, WritesEachValueUnderTheNameOfItsFreedom)
{
    Names all;
    for (const Kind& kind : Kinds) {
        for (int index = 0; index < 6; ++index) {
            const std::wstring& name = kind.elements[static_cast<std::size_t>(index)];
            all.push_back(name);
            const auto single = KARMPBushing::create(L"single");
            (single.get()->*kind.set)(index, second);
            (bushing.get()->*kind.set)(index, first);
            TestSerializer root;
            EXPECT_EQ(single->Serialize(&root), KARSuccess);
            EXPECT_EQ(ElementsOf(root), Names{name});
            EXPECT_EQ(root.Text(L"Bushing/" + name + L"/@id"), L"K2");
            EXPECT_EQ(root.Text(L"Bushing/" + name + L"/@name"), L"second");
        }
    }
    TestSerializer root;
    EXPECT_EQ(bushing->Serialize(&root), KARSuccess);
    EXPECT_EQ(ElementsOf(root), all);
}

TEST_F(Bushing, ReadsEachValueIntoItsFreedom)
{
    for (const Kind& kind : Kinds) {
        for (int index = 0; index < 6; ++index) {
            const auto single = KARMPBushing::create(L"single");
            (single.get()->*kind.set)(index, second);
            const auto read = ReadBack(single);
            for (const Kind& other : Kinds)
                for (int freedom = 0; freedom < 6; ++freedom)
                    EXPECT_EQ(Get(read, other, freedom),
                              &other == &kind && freedom == index ? second : Value());
        }
    }
}

TEST_F(Bushing, ReportsAValueThatTheDocumentDoesNotHaveAndGoesOn)
{
    TestDeserializer root;
    AddElement(root, L"Bushing").Reference(L"StiffnessTx", L"?").Reference(L"PreForceRz", L"K1");
    EXPECT_EQ(bushing->Deserialize(&root, entities), KARSuccess);
    ExpectReports(2);
    EXPECT_FALSE(Get(bushing, Kinds[0], 0));
    EXPECT_EQ(Get(bushing, Kinds[2], 5), first);
}

TEST_F(Bushing, CopiesNoValues)
{
    const auto original = ConcreteEntity<KARMPBushing>::create(L"original");
    for (const Kind& kind : Kinds)
        (original.get()->*kind.set)(3, first);
    const Handle copy(original->copy());
    for (const Kind& kind : Kinds)
        EXPECT_FALSE(Get(copy, kind, 3));
}

} // namespace
