#include "KARMPVariableHelper.h"
#include "AllocationCounter.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "KARWBFactory.h"
#include "KARWBVariable.h"
#include "ProcessLocale.h"

#include <string>

namespace {

class VariableHelper : public KARMPTestFixture
{
protected:
    QOBSharedHandle<KARMPVariable> variable = KARMPVariable::create(L"v");
    KARWBFactory factory;
    KARWBVariable* made = nullptr;
};

TEST_F(VariableHelper, TheTwoVariablesShareTheIdentifierAndTheSecondCallGivesTheSame)
{
    variable->SetIdentifier(L"id7");
    ASSERT_EQ(KARMPVariableHelper::CreateWBVariable(variable, &factory, made), KARSuccess);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->GetName(), "id7");
    KARWBVariable* again = nullptr;
    EXPECT_EQ(KARMPVariableHelper::CreateWBVariable(variable, &factory, again), KARSuccess);
    EXPECT_EQ(again, made);
    EXPECT_EQ(factory.GetNbOfVariables(), 1);
    KARWBFactory other;
    EXPECT_EQ(KARMPVariableHelper::CreateWBVariable(variable, &other, again), KARSuccess);
    EXPECT_NE(again, made);
}

TEST_F(VariableHelper, MakesTheIdentifierOnFirstNeed)
{
    ASSERT_EQ(KARMPVariableHelper::CreateWBVariable(variable, &factory, made), KARSuccess);
    std::wstring identifier;
    variable->GetIdentifier(identifier);
    EXPECT_FALSE(identifier.empty());
    EXPECT_EQ(made->GetName(), std::string(identifier.begin(), identifier.end()).c_str());
}

TEST_F(VariableHelper, FindsWhatAnEquationsTextBrought)
{
    KARWBVariable* brought = factory.CreateVariable();
    brought->SetName("V1");
    variable->SetIdentifier(L"V1");
    EXPECT_EQ(KARMPVariableHelper::CreateWBVariable(variable, &factory, made), KARSuccess);
    EXPECT_EQ(made, brought);
}

TEST_F(VariableHelper, EmptyIdentifierGivesAVariableOfTheEmptyName)
{
    variable->SetIdentifier(L"");
    ASSERT_EQ(KARMPVariableHelper::CreateWBVariable(variable, &factory, made), KARSuccess);
    EXPECT_TRUE(made->GetName().IsEmpty());
    KARWBVariable* again = nullptr;
    KARMPVariableHelper::CreateWBVariable(variable, &factory, again);
    EXPECT_EQ(again, made);
}

TEST_F(VariableHelper, RefusesNulls)
{
    KARWBVariable* const former = factory.CreateVariable();
    made = former;
    EXPECT_EQ(KARMPVariableHelper::CreateWBVariable({}, &factory, made), KARFailure);
    EXPECT_EQ(made, nullptr);
    ExpectReports(1);
    made = former;
    EXPECT_EQ(KARMPVariableHelper::CreateWBVariable(variable, nullptr, made), KARFailure);
    EXPECT_EQ(made, nullptr);
    ExpectReports(1);
}

TEST_F(VariableHelper, IdentifierThatCannotBeHadFails)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    variable->SetIdentifier(L"an identifier that takes memory of its own");
    made = factory.CreateVariable();
    AllocationCounter allocations;
    allocations.FailAllocation(1);
    EXPECT_EQ(KARMPVariableHelper::CreateWBVariable(variable, &factory, made), KARFailure);
    EXPECT_EQ(made, nullptr);
    ExpectReports(2); // by the variable and by the helper
    EXPECT_EQ(factory.GetNbOfVariables(), 1);
}

TEST_F(VariableHelper, IdentifierThatTheLocaleLacksFails)
{
    const PlainLocale locale;
    variable->SetIdentifier(L"K\u00f6rper");
    EXPECT_EQ(KARMPVariableHelper::CreateWBVariable(variable, &factory, made), KARFailure);
    EXPECT_EQ(made, nullptr);
    ExpectReports(1);
    EXPECT_EQ(factory.GetNbOfVariables(), 0);
}

TEST_F(VariableHelper, IdentifierIsNarrowedWholeInTheCurrentLocale)
{
    const Utf8Locale locale;
    if (!locale.IsInstalled())
        GTEST_SKIP() << "no locale with UTF-8 is installed";
    variable->SetIdentifier(L"K\u00f6rper\u20ac");
    ASSERT_EQ(KARMPVariableHelper::CreateWBVariable(variable, &factory, made), KARSuccess);
    EXPECT_EQ(made->GetName(), "K\xc3\xb6rper\xe2\x82\xac");
}

} // namespace
