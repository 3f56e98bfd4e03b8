#include "KARMPVariableHelper.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "KARWBFactory.h"
#include "KARWBVariable.h"

#include <clocale>
#include <string>

namespace {

// A locale whose narrow characters are UTF-8, for as long as the object lives.
class Utf8Locale
{
public:
    Utf8Locale() : m_former(std::setlocale(LC_ALL, nullptr))
    {
        m_installed = std::setlocale(LC_ALL, "C.UTF-8") != nullptr ||
                      std::setlocale(LC_ALL, "en_US.UTF-8") != nullptr;
    }
    ~Utf8Locale() { std::setlocale(LC_ALL, m_former.c_str()); }
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;

    bool IsInstalled() const { return m_installed; }

private:
    std::string m_former;
    bool m_installed = false;
};

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

TEST_F(VariableHelper, IdentifierThatTheLocaleLacksFails)
{
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
