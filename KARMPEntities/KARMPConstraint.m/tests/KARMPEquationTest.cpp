#include "AllocationCounter.h"
#include "ConstraintTesting.h"
#include "KARMPEntityTable.h"
#include "KARMPLinearEquation.h"
#include "KARMPPlainConstraints.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "KARWBFactory.h"

namespace {

class CountedFactory : public KARWBFactory
{
public:
    CountedFactory() { ++Alive; }
    ~CountedFactory() override { --Alive; }

    static inline int Alive = 0;
};

class Equation : public KARMPTestFixture
{
protected:
    QOBSharedHandle<KARMPEquation> equation = KARMPEquation::create(L"e");
};

TEST_F(Equation, HasNoFactoryAtFirstAndReportsThat)
{
    CountedFactory marker;
    KARWBFactory* factory = &marker;
    EXPECT_EQ(equation->GetEquation(factory), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(factory, nullptr);
}

TEST_F(Equation, GivesItsFactoryAndDeletesIt)
{
    auto* own = new CountedFactory;
    EXPECT_EQ(equation->SetEquation(own), KARSuccess);
    KARWBFactory* factory = nullptr;
    EXPECT_EQ(equation->GetEquation(factory), KARSuccess);
    EXPECT_EQ(factory, own);
    EXPECT_EQ(CountedFactory::Alive, 1);
    equation = nullptr;
    EXPECT_EQ(CountedFactory::Alive, 0);
}

TEST_F(Equation, GivesUpAFormerFactoryWithoutDeletingIt)
{
    const auto former = std::make_unique<CountedFactory>();
    equation->SetEquation(former.get());
    EXPECT_EQ(equation->SetEquation(nullptr), KARSuccess);
    equation = nullptr;
    EXPECT_EQ(CountedFactory::Alive, 1);
}

TEST_F(Equation, LosesItsFactoryInACopyAndInTheTree)
{
    equation->SetEquation(new CountedFactory);
    KARWBFactory* factory = nullptr;
    EXPECT_EQ(KARMPEquation::clone(equation, {})->GetEquation(factory), KARFailure);
    ExpectReports(1);
    const auto read = KARMPEquation::create(L"");
    EXPECT_EQ(CopyThroughTree(equation, read), KARSuccess);
    EXPECT_EQ(read->GetEquation(factory), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(CountedFactory::Alive, 1);
}

/// The classes that write nothing but the base's content, with their elements.
template <class Class>
struct ElementOf;
template <>
struct ElementOf<KARMPEquation>
{
    static constexpr const wchar_t* Name = L"Equation";
};
template <>
struct ElementOf<KARMP0DoF>
{
    static constexpr const wchar_t* Name = L"ZeroDoF";
};
template <>
struct ElementOf<KARMP6DoF>
{
    static constexpr const wchar_t* Name = L"SixDoF";
};
template <>
struct ElementOf<KARMPConcentricity>
{
    static constexpr const wchar_t* Name = L"Concentricity";
};

template <class Class>
class PlainConstraint : public KARMPTestFixture
{
protected:
    PlainConstraint()
    {
        variable->SetIdentifier(L"V1");
        entities.Set(L"V1", variable);
        constraint->LinkToVariable(variable);
    }

    QOBSharedHandle<Class> constraint = Class::create(L"c");
    QOBSharedHandle<Class> read = Class::create(L"");
    QOBSharedHandle<KARMPVariable> variable = KARMPVariable::create(L"v");
    KARMPEntityTable entities;
};

using PlainConstraints = ::testing::Types<KARMPEquation, KARMP0DoF, KARMP6DoF, KARMPConcentricity>;
TYPED_TEST_SUITE(PlainConstraint, PlainConstraints);

TYPED_TEST(PlainConstraint, KeepsItsLinksThroughTheTree)
{
    TestSerializer written;
    EXPECT_EQ(this->constraint->Serialize(&written), KARSuccess);
    ASSERT_EQ(written.GetElementCount(), 1U);
    EXPECT_EQ(written.Child(0).GetId(), ElementOf<TypeParam>::Name);
    EXPECT_EQ(written.Child(0).GetElementCount(), 1U);
    EXPECT_EQ(CopyThroughTree(this->constraint, this->read, this->entities), KARSuccess);
    QOBSharedHandle<KARMPVariable> found;
    EXPECT_EQ(this->read->GetLinkedVariable(0, found), KARSuccess);
    EXPECT_EQ(found, this->variable);
}

TYPED_TEST(PlainConstraint, ReportsAndFailsOnceWithoutAnElement)
{
    EXPECT_EQ(this->constraint->Serialize(nullptr), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(this->constraint->Deserialize(nullptr, this->entities), KARFailure);
    this->ExpectReports(1);
    TestDeserializer root(L"World");
    EXPECT_EQ(this->constraint->Deserialize(&root, this->entities), KARFailure);
    this->ExpectReports(1);
    TestSerializer full;
    full.FailCreation(1);
    EXPECT_EQ(this->constraint->Serialize(&full), KARFailure);
    this->ExpectReports(2);
}

TYPED_TEST(PlainConstraint, CopyHasNoLinks)
{
    const auto copy = TypeParam::clone(this->constraint, {});
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->GetLinkedVariableCount(), 0);
}

class LinearEquation : public KARMPTestFixture
{
protected:
    static double TermOf(const KARMPLinearEquation& source, int index)
    {
        double value = -1.0;
        EXPECT_EQ(source.GetLinearTerm(index, value), KARSuccess);
        return value;
    }
    void AddTerms()
    {
        equation->AddLinearTerm(1.5);
        equation->AddLinearTerm(2.5);
        equation->AddLinearTerm(3.5);
    }

    QOBSharedHandle<KARMPLinearEquation> equation = KARMPLinearEquation::create(L"e");
    QOBSharedHandle<KARMPLinearEquation> read = KARMPLinearEquation::create(L"");
};

/// Refuses what it reads.
class RefusingEquation : public KARMPLinearEquation
{
public:
    KARStatus AddLinearTerm(double) override { return KARFailure; }
    KARStatus SetConstantTerm(double) override { return KARFailure; }
};

/// Cannot give what it is asked to write.
class SilentEquation : public KARMPLinearEquation
{
public:
    KARStatus GetConstantTerm(double&) const override { return KARFailure; }
    KARStatus GetLinearTerm(int index, double& value) const override
    {
        return index == silentTerm ? KARFailure : KARMPLinearEquation::GetLinearTerm(index, value);
    }

    int silentTerm = -1;
};

/// Has a constant of its own.
class ConstantEquation : public KARMPLinearEquation
{
public:
    bool HasConstantTerm() const override { return true; }
    KARStatus GetConstantTerm(double& value) const override
    {
        value = 7.5;
        return KARSuccess;
    }
};

TEST_F(LinearEquation, WritesTheConstantThatItsGettersTell)
{
    const QOBSharedHandle<KARMPLinearEquation> handle(new ConstantEquation);
    handle->AddLinearTerm(1.0);
    TestSerializer root;
    EXPECT_EQ(handle->Serialize(&root), KARSuccess);
    EXPECT_TRUE(root.Flag(L"LinearEquation/ConstantTerm/HasConstantTerm"));
    EXPECT_EQ(root.Number(L"LinearEquation/ConstantTerm/ConstantTermValue"), 7.5);
}

TEST_F(LinearEquation, KeepsItsTermsByIndex)
{
    EXPECT_EQ(equation->AddLinearTerm(1.5), KARSuccess);
    EXPECT_EQ(equation->AddLinearTerm(2.5), KARSuccess);
    EXPECT_EQ(equation->SetLinearTerm(1, 4.5), KARSuccess);
    EXPECT_EQ(TermOf(*equation, 0), 1.5);
    EXPECT_EQ(TermOf(*equation, 1), 4.5);
}

TEST_F(LinearEquation, IndexOutsideTheTermsGivesZeroAndUnchanged)
{
    AddTerms();
    for (const int index : {-1, 3}) {
        double value = 9.0;
        EXPECT_EQ(equation->GetLinearTerm(index, value), KARUnchanged);
        EXPECT_EQ(value, 0.0);
        EXPECT_EQ(equation->SetLinearTerm(index, 7.0), KARUnchanged);
    }
    EXPECT_EQ(TermOf(*equation, 2), 3.5);
    ExpectReports(0);
}

TEST_F(LinearEquation, ConstantIsGivenWhetherThereIsOneOrNot)
{
    double value = 9.0;
    EXPECT_FALSE(equation->HasConstantTerm());
    EXPECT_EQ(equation->GetConstantTerm(value), KARSuccess);
    EXPECT_EQ(value, 0.0);
    EXPECT_EQ(equation->SetConstantTerm(2.5), KARSuccess);
    EXPECT_TRUE(equation->HasConstantTerm());
    EXPECT_EQ(equation->GetConstantTerm(value), KARSuccess);
    EXPECT_EQ(value, 2.5);
}

TEST_F(LinearEquation, GrowsItsCapacityInBlocks)
{
    AllocationCounter counter;
    equation->AddLinearTerm(0.0);
    EXPECT_EQ(counter.Bytes(), 32 * sizeof(double));
    for (int term = 1; term < 32; ++term)
        equation->AddLinearTerm(term);
    EXPECT_EQ(counter.Count(), 1U);
    equation->AddLinearTerm(32.0);
    EXPECT_EQ(counter.Count(), 2U);
    EXPECT_EQ(counter.Bytes(), (32 + 64) * sizeof(double));
    for (int term = 33; term < 100000; ++term)
        equation->AddLinearTerm(term);
    EXPECT_LT(counter.Count(), 200U);
    EXPECT_EQ(TermOf(*equation, 99999), 99999.0);
}

TEST_F(LinearEquation, CopyTakesTheFlagOfTheConstantAlone)
{
    AddTerms();
    equation->SetConstantTerm(2.5);
    equation->SetEquation(new CountedFactory);
    const auto copy = KARMPLinearEquation::clone(equation, {});
    ASSERT_TRUE(copy);
    double value = 9.0;
    EXPECT_EQ(copy->GetLinearTerm(0, value), KARUnchanged);
    EXPECT_TRUE(copy->HasConstantTerm());
    copy->GetConstantTerm(value);
    EXPECT_EQ(value, 0.0);
    KARWBFactory* factory = nullptr;
    EXPECT_EQ(copy->GetEquation(factory), KARFailure);
    ExpectReports(1);
}

TEST_F(LinearEquation, WritesConstantThenTerms)
{
    AddTerms();
    equation->SetConstantTerm(4.5);
    TestSerializer written;
    EXPECT_EQ(equation->Serialize(&written), KARSuccess);
    ASSERT_EQ(written.GetElementCount(), 1U);
    const TestSerializer* element = written.Find(L"LinearEquation");
    ASSERT_NE(element, nullptr);
    ASSERT_EQ(element->GetElementCount(), 2U);
    EXPECT_EQ(element->Child(0).GetId(), L"ConstantTerm");
    EXPECT_EQ(element->Child(1).GetId(), L"LinearTermDataContainer");
    EXPECT_TRUE(element->Flag(L"ConstantTerm/HasConstantTerm"));
    EXPECT_EQ(element->Number(L"ConstantTerm/ConstantTermValue"), 4.5);
    const TestSerializer& terms = element->Child(1);
    ASSERT_EQ(terms.GetElementCount(), 3U);
    for (int index = 0; index < 3; ++index) {
        const TestSerializer& term = terms.Child(static_cast<std::size_t>(index));
        EXPECT_EQ(term.GetId(), L"LinearTerm");
        EXPECT_EQ(term.Child(0).GetId(), L"LinearTermIndex");
        EXPECT_EQ(term.Integer(L"LinearTermIndex"), index);
        EXPECT_EQ(term.Number(L"LinearTermValue"), 1.5 + index);
    }
}

TEST_F(LinearEquation, WritesNoValueWithoutAConstant)
{
    AddTerms();
    TestSerializer written;
    EXPECT_EQ(equation->Serialize(&written), KARSuccess);
    EXPECT_FALSE(written.Flag(L"LinearEquation/ConstantTerm/HasConstantTerm"));
    EXPECT_FALSE(written.Has(L"LinearEquation/ConstantTerm/ConstantTermValue"));
}

TEST_F(LinearEquation, WithoutTermsFailsAndIsWrittenAllTheSame)
{
    TestSerializer written;
    EXPECT_EQ(equation->Serialize(&written), KARFailure);
    ExpectReports(1);
    EXPECT_TRUE(written.Has(L"LinearEquation/LinearTermDataContainer"));
    const auto tree = TestDeserializer::From(written);
    EXPECT_EQ(read->Deserialize(tree.get(), {}), KARSuccess);
}

TEST_F(LinearEquation, ReadsBackWhatItWroteInEitherForm)
{
    AddTerms();
    for (const bool constant : {false, true}) {
        if (constant)
            equation->SetConstantTerm(4.5);
        for (const bool asText : {false, true}) {
            const auto copy = KARMPLinearEquation::create(L"");
            EXPECT_EQ(CopyThroughTree(equation, copy, {}, asText), KARSuccess);
            EXPECT_EQ(copy->HasConstantTerm(), constant);
            double value = 0.0;
            copy->GetConstantTerm(value);
            EXPECT_EQ(value, constant ? 4.5 : 0.0);
            EXPECT_EQ(TermOf(*copy, 0), 1.5);
            EXPECT_EQ(TermOf(*copy, 2), 3.5);
            EXPECT_EQ(copy->GetLinearTerm(3, value), KARUnchanged);
        }
    }
}

TEST_F(LinearEquation, IndicesDoNotPlaceTheTerms)
{
    TestDeserializer root;
    auto& element = AddConstraint(root, L"LinearEquation");
    element.Add(L"ConstantTerm").Leaf(L"HasConstantTerm", false);
    auto& terms = element.Add(L"LinearTermDataContainer");
    terms.Add(L"LinearTerm").Leaf(L"LinearTermIndex", 5).Leaf(L"LinearTermValue", 50.0);
    terms.Add(L"LinearTerm").Leaf(L"LinearTermIndex", 2).Leaf(L"LinearTermValue", 20.0);
    EXPECT_EQ(read->Deserialize(&root, {}), KARSuccess);
    EXPECT_EQ(TermOf(*read, 0), 50.0);
    EXPECT_EQ(TermOf(*read, 1), 20.0);
}

TEST_F(LinearEquation, AnyChildOfTheContainerCountsAsATerm)
{
    TestDeserializer root;
    auto& element = AddConstraint(root, L"LinearEquation");
    element.Add(L"ConstantTerm").Leaf(L"HasConstantTerm", false);
    auto& terms = element.Add(L"LinearTermDataContainer");
    terms.Add(L"Other").Leaf(L"LinearTermIndex", 0).Leaf(L"LinearTermValue", 50.0);
    terms.Add(L"LinearTerm");
    EXPECT_EQ(read->Deserialize(&root, {}), KARSuccess);
    ExpectReports(2);
    // By name first, and a term without a value is zero.
    EXPECT_EQ(TermOf(*read, 0), 0.0);
    EXPECT_EQ(TermOf(*read, 1), 50.0);
}

TEST_F(LinearEquation, MissingContainersAreReportedAndFail)
{
    TestDeserializer root;
    AddConstraint(root, L"LinearEquation");
    EXPECT_EQ(read->Deserialize(&root, {}), KARFailure);
    ExpectReports(2);
    EXPECT_FALSE(read->HasConstantTerm());

    TestDeserializer noConstant;
    AddConstraint(noConstant, L"LinearEquation")
        .Add(L"LinearTermDataContainer")
        .Add(L"LinearTerm")
        .Leaf(L"LinearTermIndex", 0)
        .Leaf(L"LinearTermValue", 5.0);
    EXPECT_EQ(read->Deserialize(&noConstant, {}), KARFailure);
    // The constant, and the identifier that the equation has by now.
    TakeReports();
    EXPECT_EQ(TermOf(*read, 0), 5.0);
}

TEST_F(LinearEquation, MissingFlagOfTheConstantMeansNone)
{
    TestDeserializer root;
    auto& element = AddConstraint(root, L"LinearEquation");
    element.Add(L"ConstantTerm").Leaf(L"ConstantTermValue", 5.0);
    element.Add(L"LinearTermDataContainer");
    EXPECT_EQ(read->Deserialize(&root, {}), KARSuccess);
    ExpectReports(1);
    EXPECT_FALSE(read->HasConstantTerm());
}

TEST_F(LinearEquation, MissingValueOfTheConstantFails)
{
    TestDeserializer root;
    auto& element = AddConstraint(root, L"LinearEquation");
    element.Add(L"ConstantTerm").Leaf(L"HasConstantTerm", true);
    element.Add(L"LinearTermDataContainer");
    EXPECT_EQ(read->Deserialize(&root, {}), KARFailure);
    ExpectReports(1);
    EXPECT_FALSE(read->HasConstantTerm());
}

TEST_F(LinearEquation, ReportsWhatItsOwnSettersRefuse)
{
    AddTerms();
    equation->SetConstantTerm(4.5);
    const QOBSharedHandle<KARMPLinearEquation> refusing(new RefusingEquation);
    EXPECT_EQ(CopyThroughTree(equation, refusing), KARFailure);
    ExpectReports(4);
}

TEST_F(LinearEquation, LastTermAloneDecidesOnTheTerms)
{
    auto* silent = new SilentEquation;
    const QOBSharedHandle<KARMPLinearEquation> handle(silent);
    silent->AddLinearTerm(1.0);
    silent->AddLinearTerm(2.0);
    silent->silentTerm = 0;
    TestSerializer first;
    EXPECT_EQ(silent->Serialize(&first), KARSuccess);
    ExpectReports(1);
    silent->silentTerm = 1;
    TestSerializer last;
    EXPECT_EQ(silent->Serialize(&last), KARFailure);
    ExpectReports(2);
    silent->silentTerm = -1;
    silent->SetConstantTerm(3.0);
    TestSerializer constant;
    EXPECT_EQ(silent->Serialize(&constant), KARFailure);
    ExpectReports(2);
    EXPECT_FALSE(constant.Has(L"LinearEquation/ConstantTerm/ConstantTermValue"));
}

TEST_F(LinearEquation, EveryFailedAdditionFailsExceptThoseOfEarlierTerms)
{
    equation->AddLinearTerm(1.0);
    equation->AddLinearTerm(2.0);
    equation->SetConstantTerm(3.0);
    // The element; the constant with flag and value; the list; two terms of three.
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
            const bool earlierTerm = failing >= 6 && failing <= 8;
            const bool passes = failing == 0 || earlierTerm;
            EXPECT_EQ(equation->Serialize(&root), passes ? KARSuccess : KARFailure) << failing;
            const bool value = failing == 3 || failing == 4 || failing == 7 || failing == 8 ||
                               failing == 10 || failing == 11;
            const std::size_t reports = (value ? 3U : 2U);
            const std::size_t atEnd = (failing == 1 || passes) ? 0U : 1U;
            ExpectReports(failing == 0 ? 0 : reports + atEnd);
            // Whatever fails, all that does not stand in it is tried.
            const bool pair = failing == 2 || failing == 6 || failing == 9;
            const std::size_t within = failing == 1 ? 10U : failing == 5 ? 6U : pair ? 2U : 0U;
            EXPECT_EQ(root.Creations(), 11U - within) << failing;
        });
    EXPECT_EQ(creations, 11U);
}

TEST_F(LinearEquation, NullArgumentsAndAMissingElementAreReportedAndFail)
{
    EXPECT_EQ(equation->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(equation->Deserialize(nullptr, {}), KARFailure);
    ExpectReports(1);
    TestDeserializer root(L"World");
    EXPECT_EQ(equation->Deserialize(&root, {}), KARFailure);
    ExpectReports(1);
}

} // namespace
