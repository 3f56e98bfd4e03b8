#include "KARMPSerializationServices.h"
#include "KARMPConstant.h"
#include "KARMPElementWriter.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "KARMathPoint.h"
#include "KARMathVector.h"
#include "KARWBEquation.h"
#include "KARWBFactory.h"
#include "KARWBVariable.h"
#include "ProcessLocale.h"
#include "QOBException.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <climits>
#include <cstdlib>
#include <cwchar>

namespace {

using Services = KARMPSerializationServices;
using Handle = QOBSharedHandle<KARMPValue>;

class SerializationServices : public KARMPTestFixture
{
protected:
    KARMPEntityTable entities;
    TestSerializer root;
};

TEST_F(SerializationServices, WritesAPointAsThreeElementsInOrder)
{
    ASSERT_EQ(Services::Serialize(&root, KARMathPoint(1.5, -2.0, 3.0), L"Centre"), KARSuccess);
    const TestSerializer* point = root.Find(L"Centre");
    ASSERT_NE(point, nullptr);
    ASSERT_EQ(point->GetElementCount(), 3U);
    EXPECT_EQ(point->Child(0).GetId(), L"Px");
    EXPECT_EQ(point->Child(0).GetValued(), 1.5);
    EXPECT_EQ(point->Child(1).GetId(), L"Py");
    EXPECT_EQ(point->Child(1).GetValued(), -2.0);
    EXPECT_EQ(point->Child(2).GetId(), L"Pz");
    EXPECT_EQ(point->Child(2).GetValued(), 3.0);
    EXPECT_EQ(point->GetAttributeCount(), 0U);
}

TEST_F(SerializationServices, WritesAVectorAsThreeElementsInOrder)
{
    ASSERT_EQ(Services::Serialize(&root, KARMathVector(1.5, -2.0, 3.0), L"Axis"), KARSuccess);
    const TestSerializer* vector = root.Find(L"Axis");
    ASSERT_NE(vector, nullptr);
    ASSERT_EQ(vector->GetElementCount(), 3U);
    EXPECT_EQ(vector->Child(0).GetId(), L"Vx");
    EXPECT_EQ(vector->Child(2).GetId(), L"Vz");
    EXPECT_EQ(root.Number(L"Axis/Vy"), -2.0);
}

TEST_F(SerializationServices, ReadsPointsAndVectorsBack)
{
    EXPECT_EQ(Services::Serialize(&root, KARMathPoint(1.5, -2.0, 3.0), L"Centre"), KARSuccess);
    EXPECT_EQ(Services::Serialize(&root, KARMathVector(4.0, 5.0, 6.0), L"Axis"), KARSuccess);
    for (const bool asText : {false, true}) {
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        KARMathPoint point;
        EXPECT_EQ(Services::Deserialize(tree.get(), L"Centre", entities, point), KARSuccess);
        EXPECT_EQ(point, KARMathPoint(1.5, -2.0, 3.0));
        KARMathVector vector;
        EXPECT_EQ(Services::Deserialize(tree.get(), L"Axis", entities, vector), KARSuccess);
        EXPECT_EQ(vector, KARMathVector(4.0, 5.0, 6.0));
    }
}

TEST_F(SerializationServices, CommaInACoordinateIsADecimalMark)
{
    TestDeserializer tree;
    tree.Add(L"P").Leaf(L"Px", L"1,5").Leaf(L"Py", L"-0,25").Leaf(L"Pz", L"2");
    KARMathPoint point;
    EXPECT_EQ(Services::Deserialize(&tree, L"P", entities, point), KARSuccess);
    EXPECT_EQ(point, KARMathPoint(1.5, -0.25, 2.0));
}

TEST_F(SerializationServices, MissingCoordinateIsReportedAndKeepsItsValue)
{
    TestDeserializer tree;
    tree.Add(L"P").Leaf(L"Px", 1.0).Leaf(L"Pz", 3.0);
    KARMathPoint point(7.0, 8.0, 9.0);
    EXPECT_EQ(Services::Deserialize(&tree, L"P", entities, point), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(point, KARMathPoint(1.0, 8.0, 3.0));
    tree.Add(L"V");
    KARMathVector vector(7.0, 8.0, 9.0);
    EXPECT_EQ(Services::Deserialize(&tree, L"V", entities, vector), KARSuccess);
    ExpectReports(3);
    EXPECT_EQ(vector, KARMathVector(7.0, 8.0, 9.0));
}

TEST_F(SerializationServices, PointsAndVectorsNeedANodeAndTheirElement)
{
    KARMathPoint point(7.0, 8.0, 9.0);
    KARMathVector vector;
    EXPECT_EQ(Services::Serialize(nullptr, point, L"P"), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(Services::Serialize(nullptr, vector, L"V"), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(Services::Deserialize(nullptr, L"P", entities, point), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(Services::Deserialize(nullptr, L"V", entities, vector), KARFailure);
    ExpectReports(1);
    const TestDeserializer tree;
    EXPECT_EQ(Services::Deserialize(&tree, L"P", entities, point), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(point, KARMathPoint(7.0, 8.0, 9.0));
}

TEST_F(SerializationServices, CoordinateThatCannotBeAddedIsReportedAndTheNextOneWritten)
{
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [this](TestSerializer& tree, std::size_t failing) {
            const KARStatus status = Services::Serialize(&tree, KARMathPoint(1.0, 2.0, 3.0), L"P");
            EXPECT_EQ(status, failing == 1 ? KARFailure : KARSuccess);
            EXPECT_EQ(TakeReports() != 0, failing != 0);
            if (failing > 1)
                EXPECT_EQ(tree.Child(0).GetElementCount(), 2U);
        });
    EXPECT_EQ(creations, 4U);
}

class ValueReferences : public SerializationServices
{
protected:
    ValueReferences()
    {
        first->SetIdentifier(L"K1");
        second->SetIdentifier(L"K2");
        entities.Set(L"K1", first);
        entities.Set(L"K2", second);
    }

    Handle first = KARMPConstant::create(L"one");
    Handle second = KARMPConstant::create(L"two");
};

TEST_F(ValueReferences, AreWrittenWithIdentifierAndName)
{
    EXPECT_EQ(Services::Serialize(&root, first, L"Stiffness"), KARSuccess);
    EXPECT_EQ(root.Text(L"Stiffness/@id"), L"K1");
    EXPECT_EQ(root.Text(L"Stiffness/@name"), L"one");
}

// Whether names are written is decided once a process.
class ValueReferencesProcess : public ValueReferences
{};

TEST_F(ValueReferencesProcess, BearTheirNamesWhereOtherReferencesHaveNone)
{
    ASSERT_FALSE(KARMPSerializer::SerializeName());
    EXPECT_EQ(Services::Serialize(&root, first, L"Stiffness"), KARSuccess);
    EXPECT_EQ(root.Text(L"Stiffness/@id"), L"K1");
    EXPECT_EQ(root.Text(L"Stiffness/@name"), L"one");
    karmp::ElementWriter(&root).Reference(L"Other", first);
    EXPECT_EQ(root.Text(L"Other/@id"), L"K1");
    EXPECT_FALSE(root.Has(L"Other/@name"));
}

TEST_F(ValueReferences, ManyAreWrittenInTheOrderOfTheirNames)
{
    const Handle values[] = {second, first, second};
    ASSERT_EQ(Services::Serialize(&root, values, 3, {L"A", L"B", L"A"}), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 3U);
    EXPECT_EQ(root.Child(0).Text(L"@id"), L"K2");
    EXPECT_EQ(root.Child(1).GetId(), L"B");
    EXPECT_EQ(root.Child(1).Text(L"@id"), L"K1");
    EXPECT_EQ(root.Child(2).Text(L"@name"), L"two");
}

TEST_F(ValueReferences, CountOtherThanThatOfTheNamesFailsWithoutWriting)
{
    const Handle values[] = {first, second};
    EXPECT_EQ(Services::Serialize(&root, values, 2, {L"A", L"B", L"C"}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(Services::Serialize(&root, values, -1, {}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(root.GetElementCount(), 0U);
    EXPECT_EQ(Services::Serialize(&root, nullptr, 0, {}), KARSuccess);
    EXPECT_EQ(Services::Serialize(&root, nullptr, 1, {L"A"}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(Services::Serialize(nullptr, values, 2, {L"A", L"B"}), KARFailure);
    ExpectReports(1);
}

TEST_F(ValueReferences, NullValueEndsTheWritingAndLeavesABareElement)
{
    const Handle values[] = {first, Handle(), second};
    EXPECT_EQ(Services::Serialize(&root, values, 3, {L"A", L"B", L"C"}), KARFailure);
    ExpectReports(1);
    ASSERT_EQ(root.GetElementCount(), 2U);
    EXPECT_EQ(root.Child(0).GetAttributeCount(), 2U);
    EXPECT_EQ(root.Child(1).GetAttributeCount(), 0U);
}

TEST_F(ValueReferences, SingleNullValueIsRefusedBeforeAnythingIsWritten)
{
    EXPECT_EQ(Services::Serialize(&root, Handle(), L"A"), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(root.GetElementCount(), 0U);
    EXPECT_EQ(Services::Serialize(nullptr, first, L"A"), KARFailure);
    ExpectReports(1);
}

TEST_F(ValueReferences, ElementThatCannotBeAddedEndsTheWriting)
{
    const Handle values[] = {first, second};
    root.FailCreation(1);
    EXPECT_EQ(Services::Serialize(&root, values, 2, {L"A", L"B"}), KARFailure);
    // The node reports, and so does the writing.
    ExpectReports(2);
    EXPECT_EQ(root.GetElementCount(), 0U);
    root.FailCreation(1);
    EXPECT_EQ(Services::Serialize(&root, first, L"A"), KARFailure);
    ExpectReports(3);
}

TEST_F(ValueReferences, ComeBack)
{
    TestDeserializer tree;
    tree.Reference(L"A", L"K1").Reference(L"B", L"K2");
    Handle value;
    EXPECT_EQ(Services::Deserialize(&tree, L"A", entities, value), KARSuccess);
    EXPECT_EQ(value, first);
    Handle values[2];
    EXPECT_EQ(Services::Deserialize(&tree, {L"B", L"A"}, entities, values), KARSuccess);
    EXPECT_EQ(values[0], second);
    EXPECT_EQ(values[1], first);
    EXPECT_EQ(Services::Deserialize(&tree, Services::Names{}, entities, nullptr), KARSuccess);
}

TEST_F(ValueReferences, OneNameTwiceIsReadFromTheTwoElementsOfTheName)
{
    TestDeserializer tree;
    tree.Reference(L"A", L"K1").Reference(L"A", L"K2");
    Handle values[2];
    EXPECT_EQ(Services::Deserialize(&tree, {L"A", L"A"}, entities, values), KARSuccess);
    EXPECT_EQ(values[0], first);
    EXPECT_EQ(values[1], second);
}

TEST_F(ValueReferences, FirstElementMissingFailsInSilenceAndLeavesTheSecondSlot)
{
    TestDeserializer tree;
    tree.Reference(L"B", L"K2");
    Handle values[] = {second, first};
    EXPECT_EQ(Services::Deserialize(&tree, {L"A", L"B"}, entities, values), KARFailure);
    EXPECT_EQ(values[0], second);
    EXPECT_EQ(values[1], first);
}

TEST_F(ValueReferences, LastIdentifierUnknownFailsInSilenceAndKeepsTheEarlierSlots)
{
    TestDeserializer tree;
    tree.Reference(L"A", L"K1").Reference(L"B", L"K9");
    Handle values[2];
    EXPECT_EQ(Services::Deserialize(&tree, {L"A", L"B"}, entities, values), KARFailure);
    EXPECT_EQ(values[0], first);
    EXPECT_FALSE(values[1]);
    entities.Set(L"K9", {});
    EXPECT_EQ(Services::Deserialize(&tree, {L"A", L"B"}, entities, values), KARFailure);
    EXPECT_EQ(values[0], first);
}

TEST_F(ValueReferences, MissingIdentifierIsReported)
{
    TestDeserializer tree;
    tree.Add(L"A");
    Handle values[1];
    EXPECT_EQ(Services::Deserialize(&tree, {L"A"}, entities, values), KARFailure);
    ExpectReports(1);
}

TEST_F(ValueReferences, SingleOneWithoutItsElementIsReportedAndNull)
{
    const TestDeserializer tree;
    Handle value = first;
    EXPECT_EQ(Services::Deserialize(&tree, L"A", entities, value), KARFailure);
    ExpectReports(1);
    EXPECT_FALSE(value);
    value = first;
    EXPECT_EQ(Services::Deserialize(nullptr, L"A", entities, value), KARFailure);
    ExpectReports(1);
    EXPECT_FALSE(value);
    Handle values[1];
    EXPECT_EQ(Services::Deserialize(nullptr, {L"A"}, entities, values), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(Services::Deserialize(&tree, {L"A"}, entities, nullptr), KARFailure);
    ExpectReports(1);
}

TEST_F(ValueReferences, EntityThatIsNoValueThrows)
{
    const auto variable = KARMPVariable::create(L"v");
    entities.Set(L"V1", variable);
    TestDeserializer tree;
    tree.Reference(L"A", L"V1");
    Handle value = first;
    EXPECT_THROW(static_cast<void>(Services::Deserialize(&tree, L"A", entities, value)),
                 QOBEInvalidCast);
    EXPECT_FALSE(value);
}

TEST_F(SerializationServices, ClassNamesAreThoseOfTheElementsWithThreeExceptions)
{
    EXPECT_EQ(Services::to_type(L"Revolute"), "KARMPRevolute");
    EXPECT_EQ(Services::to_type(L"ZeroDoF"), "KARMP0DoF");
    EXPECT_EQ(Services::to_type(L"SixDoF"), "KARMP6DoF");
    EXPECT_EQ(Services::to_type(L"Rep3D"), "KARMP3DRep");
    EXPECT_EQ(Services::to_type(L"0DoF"), "KARMP0DoF");
    EXPECT_EQ(Services::to_type(L"3DRep"), "KARMP3DRep");
    EXPECT_EQ(Services::to_type(L"zeroDoF"), "KARMPzeroDoF");
    EXPECT_EQ(Services::to_type(L"ZeroDoFs"), "KARMPZeroDoFs");
    EXPECT_EQ(Services::to_type(L""), "KARMP");
    EXPECT_EQ(Services::to_type(L"\u00e4"), "KARMP\xc3\xa4");
}

TEST_F(SerializationServices, NumbersAndNarrowTextBecomeWide)
{
    EXPECT_EQ(Services::to_wstring(0), L"0");
    EXPECT_EQ(Services::to_wstring(-17), L"-17");
    EXPECT_EQ(Services::to_wstring(INT_MIN), std::to_wstring(INT_MIN));
    EXPECT_EQ(Services::to_wstring("abc"), L"abc");
    EXPECT_EQ(Services::to_wstring("\xc3\xa4"), L"\u00e4");
    EXPECT_EQ(Services::to_wstring(static_cast<const char*>(nullptr)), L"");
}

class NarrowText : public SerializationServices
{
protected:
    ~NarrowText() override { Forget(); }
    void Forget()
    {
        std::free(const_cast<char*>(text));
        text = nullptr;
    }

    const char* text = nullptr;
};

TEST_F(NarrowText, IsHandedOutTerminatedForTheCallerToFree)
{
    ASSERT_EQ(Services::ConvertToCString(std::wstring(L"abc"), text), KARSuccess);
    EXPECT_STREQ(text, "abc");
    Forget();
    ASSERT_EQ(Services::ConvertToCString(L"", text), KARSuccess);
    EXPECT_STREQ(text, "");
    Forget();
    const std::wstring part = L"abcdef";
    ASSERT_EQ(Services::ConvertToCString(std::wstring_view(part).substr(1, 2), text), KARSuccess);
    EXPECT_STREQ(text, "bc");
}

TEST_F(NarrowText, OfNoStorageFails)
{
    const char* result = "former";
    EXPECT_EQ(Services::ConvertToCString(std::wstring_view(), result), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(Services::ConvertToCString(static_cast<const wchar_t*>(nullptr), text), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(text, nullptr);
}

TEST_F(NarrowText, OfACharacterThatTheLocaleLacksFails)
{
    const PlainLocale locale;
    for (const wchar_t* wide : {L"caf\u00e9", L"\u20ac", L"\U0001F600"}) {
        EXPECT_EQ(Services::ConvertToCString(wide, text), KARFailure);
        ExpectReports(1);
        EXPECT_EQ(text, nullptr);
    }
    const wchar_t invalid[] = {L'a', WCHAR_MIN, 0};
    EXPECT_EQ(Services::ConvertToCString(invalid, text), KARFailure);
    ExpectReports(1);
}

TEST_F(NarrowText, IsWholeWhereCharactersTakeSeveralBytes)
{
    const Utf8Locale locale;
    if (!locale.IsInstalled())
        GTEST_SKIP() << "no locale with UTF-8 is installed";
    ASSERT_EQ(Services::ConvertToCString(L"caf\u00e9 \u20ac", text), KARSuccess);
    EXPECT_STREQ(text, "caf\xc3\xa9 \xe2\x82\xac");
    Forget();
    const wchar_t invalid[] = {L'a', WCHAR_MIN, 0};
    EXPECT_EQ(Services::ConvertToCString(invalid, text), KARFailure);
    ExpectReports(1);
}

class EquationText : public SerializationServices
{
protected:
    KARWBFactory factory;
    KARWBEquation* equation = nullptr;
};

TEST_F(EquationText, MakesOneEquationInTheFactory)
{
    ASSERT_EQ(Services::ParseWBEquation(L"2 * x + 1", &factory, equation), KARSuccess);
    ASSERT_NE(equation, nullptr);
    EXPECT_EQ(factory.GetNbOfEquations(), 1);
    EXPECT_EQ(equation, factory.GetEquationById(0));
    EXPECT_NE(factory.GetVariable("x"), nullptr);
    KARWBEquation* second = nullptr;
    ASSERT_EQ(Services::ParseWBEquation(std::wstring(L"x = y"), &factory, second), KARSuccess);
    EXPECT_EQ(second, factory.GetEquationById(1));
    EXPECT_EQ(factory.GetNbOfVariables(), 2);
}

TEST_F(EquationText, OfTwoEquationsFailsOnceTheFactoryIsFilled)
{
    equation = factory.CreateEquation();
    EXPECT_EQ(Services::ParseWBEquation(L"a + b; c * d", &factory, equation), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(equation, nullptr);
    EXPECT_EQ(factory.GetNbOfEquations(), 3);
    EXPECT_EQ(factory.GetNbOfVariables(), 4);
}

TEST_F(EquationText, OfNoEquationOrGarbageFails)
{
    for (const wchar_t* text : {L"", L"  ", L";", L"a +", L")", L"a b", L"1,5", L"#!", L"a;;b"}) {
        EXPECT_EQ(Services::ParseWBEquation(text, &factory, equation), KARFailure);
        ExpectReports(1);
        EXPECT_EQ(equation, nullptr);
    }
    EXPECT_EQ(Services::ParseWBEquation(std::wstring(L"a\0b", 3), &factory, equation), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(factory.GetNbOfEquations(), 0);
}

TEST_F(EquationText, NeedsStorageAndAFactory)
{
    EXPECT_EQ(Services::ParseWBEquation(std::wstring_view(), &factory, equation), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(Services::ParseWBEquation(static_cast<const wchar_t*>(nullptr), &factory, equation),
              KARFailure);
    ExpectReports(1);
    EXPECT_EQ(Services::ParseWBEquation(L"a", nullptr, equation), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(equation, nullptr);
}

TEST_F(EquationText, OfACharacterThatTheLocaleLacksFails)
{
    const PlainLocale locale;
    EXPECT_EQ(Services::ParseWBEquation(L"'K\u00f6rper'", &factory, equation), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(factory.GetNbOfEquations(), 0);
}

TEST_F(EquationText, IsPrintedSoThatItParsesToTheSameEquation)
{
    factory.CreateVariable()->SetName("id3f2504e0-4f89");
    ASSERT_EQ(
        Services::ParseWBEquation(L"sin('id3f2504e0-4f89') ^ 2 + 0.5 = y", &factory, equation),
        KARSuccess);
    std::wstring text;
    ASSERT_EQ(Services::PrintWBEquation(equation, text), KARSuccess);
    EXPECT_EQ(text, L"sin('id3f2504e0-4f89')^2 + 0.5 = y");
    KARWBEquation* again = nullptr;
    ASSERT_EQ(Services::ParseWBEquation(text, &factory, again), KARSuccess);
    EXPECT_TRUE(again->IsSameAs(*equation));
}

TEST_F(EquationText, KeepsItsDecimalPointWhereTheCommaIsTheMark)
{
    const DecimalCommaLocale locale;
    if (!locale.IsInstalled())
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    ASSERT_EQ(Services::ParseWBEquation(L"0.5 * x", &factory, equation), KARSuccess);
    std::wstring text;
    ASSERT_EQ(Services::PrintWBEquation(equation, text), KARSuccess);
    EXPECT_EQ(text, L"0.5 * x");
}

TEST_F(EquationText, OfNothingOrOfAnUnfinishedEquationFails)
{
    std::wstring text = L"former";
    EXPECT_EQ(Services::PrintWBEquation(nullptr, text), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(Services::PrintWBEquation(factory.CreateEquation(), text), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(text, L"former");
}

} // namespace
