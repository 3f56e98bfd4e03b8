#include "EquationTesting.h"

#include <memory>

namespace {

// Puts a text into a factory and gives the ids that its equations have there.
KARCDSIntArray Fill(KARWBFactory& factory, const char* text)
{
    KARWBModel model;
    KARCDSIntArray ids;
    KARWBParserMessenger messenger;
    EXPECT_EQ(KARWBParser::Parse(text, model, ids, messenger, nullptr), KARSuccess);
    EXPECT_EQ(model.FillFactory(&factory, ids, 0, nullptr, nullptr), KARSuccess);
    return ids;
}

TEST(EquationFactory, TwoTextsInOneFactoryShareVariablesAndHaveIdsOfTheirOwn)
{
    KARWBFactory factory;
    const KARCDSIntArray first = Fill(factory, "x + y");
    const KARCDSIntArray second = Fill(factory, "y; z");
    ASSERT_EQ(first.Size(), 1);
    ASSERT_EQ(second.Size(), 2);
    EXPECT_EQ(first[0], 0);
    EXPECT_EQ(second[0], 1);
    EXPECT_EQ(second[1], 2);
    EXPECT_EQ(factory.GetNbOfEquations(), 3);
    EXPECT_EQ(factory.GetNbOfVariables(), 3);
    EXPECT_EQ(factory.GetEquationById(0)->GetVariable(1),
              factory.GetEquationById(1)->GetVariable(0));
    EXPECT_EQ(factory.GetEquationById(2)->GetId(), 2);
}

TEST(EquationFactory, UnknownIdsAndIndicesGiveNull)
{
    KARWBFactory factory;
    Fill(factory, "x");
    EXPECT_EQ(factory.GetEquationById(-1), nullptr);
    EXPECT_EQ(factory.GetEquationById(1), nullptr);
    EXPECT_EQ(factory.GetVariable(1), nullptr);
    EXPECT_EQ(factory.GetVariable(-1), nullptr);
    EXPECT_EQ(factory.GetVariable("y"), nullptr);
    EXPECT_EQ(factory.GetEquationById(0)->GetVariable(1), nullptr);
}

TEST(EquationFactory, TextFindsVariablesThatWereCreatedBefore)
{
    KARWBFactory factory;
    KARWBVariable* variable = factory.CreateVariable();
    ASSERT_EQ(variable->SetName("id12-ab"), KARSuccess);
    Fill(factory, "2 * 'id12-ab'");
    EXPECT_EQ(factory.GetEquationById(0)->GetVariable(0), variable);
}

TEST(EquationFactory, VariableIsFoundUnderItsPresentName)
{
    KARWBFactory factory;
    KARWBVariable* variable = factory.CreateVariable();
    EXPECT_EQ(factory.GetVariable(""), nullptr);
    EXPECT_EQ(variable->SetName(""), KARSuccess);
    EXPECT_EQ(factory.GetVariable(""), variable);
    EXPECT_EQ(variable->SetName("old"), KARSuccess);
    EXPECT_EQ(factory.GetVariable(""), nullptr);
    EXPECT_EQ(variable->SetName("new"), KARSuccess);
    EXPECT_EQ(factory.GetVariable("old"), nullptr);
    EXPECT_EQ(factory.GetVariable("new"), variable);
    EXPECT_EQ(variable->SetName("new"), KARUnchanged);
}

TEST(EquationFactory, NameOfAnotherVariableIsRefused)
{
    KARWBFactory factory;
    KARWBVariable* first = factory.CreateVariable();
    KARWBVariable* second = factory.CreateVariable();
    first->SetName("x");
    second->SetName("y");
    EXPECT_EQ(second->SetName("x"), KARFailure);
    EXPECT_EQ(second->GetName(), "y");
    EXPECT_EQ(factory.GetVariable("x"), first);
    EXPECT_EQ(factory.GetVariable("y"), second);
}

TEST(EquationFactory, RenamedVariablePrintsUnderItsNewName)
{
    KARWBFactory factory;
    Fill(factory, "x + 1");
    factory.GetVariable("x")->SetName("id0");
    EXPECT_EQ(Print(factory.GetEquationById(0)), "id0 + 1");
}

TEST(EquationFactory, FactoriesDoNotShareVariables)
{
    const Parsed first("x");
    const Parsed second("x");
    first.factory.GetVariable("x")->SetValue(1.0);
    EXPECT_EQ(second.factory.GetVariable("x")->GetValue(), 0.0);
    EXPECT_EQ(first.First()->PushVariable(second.factory.GetVariable("x")), KARFailure);
    EXPECT_EQ(first.First()->PushVariable(nullptr), KARFailure);
    EXPECT_TRUE(first.First()->IsComplete());
}

TEST(EquationFactory, DerivedFactoryDiesThroughItsBase)
{
    struct Watched : KARWBFactory
    {
        explicit Watched(bool& isDead) : m_isDead(isDead) {}
        ~Watched() override { m_isDead = true; }
        bool& m_isDead;
    };
    bool isDead = false;
    KARWBFactory* factory = new Watched(isDead);
    Fill(*factory, "x + y = 1");
    delete factory;
    EXPECT_TRUE(isDead);
}

TEST(EquationModel, FillingRefusesWhatItDoesNotKnow)
{
    KARWBModel model;
    KARCDSIntArray ids;
    KARWBParserMessenger messenger;
    ASSERT_EQ(KARWBParser::Parse("x", model, ids, messenger, nullptr), KARSuccess);
    KARWBFactory factory;
    EXPECT_LT(model.FillFactory(nullptr, ids, 0, nullptr, &messenger), 0);
    EXPECT_EQ(ids.Size(), 0);
    EXPECT_LT(model.FillFactory(&factory, ids, 1, nullptr, &messenger), 0);
    int somewhere = 0;
    const auto* boxes = reinterpret_cast<const KARWBBlackBoxList*>(&somewhere);
    EXPECT_LT(model.FillFactory(&factory, ids, 0, boxes, nullptr), 0);
    EXPECT_EQ(messenger.GetNbOfErrors(), 2);
    EXPECT_EQ(factory.GetNbOfEquations(), 0);
}

TEST(EquationModel, EmptyModelFillsNothing)
{
    KARWBFactory factory;
    KARCDSIntArray ids;
    ids.Append(4);
    EXPECT_EQ(KARWBModel().FillFactory(&factory, ids, 0, nullptr, nullptr), KARUnchanged);
    EXPECT_EQ(ids.Size(), 0);
}

TEST(EquationModel, OneModelFillsSeveralTimes)
{
    KARWBModel model;
    KARCDSIntArray ids;
    KARWBParserMessenger messenger;
    KARWBParser::Parse("x * x", model, ids, messenger, nullptr);
    KARWBFactory factory;
    model.FillFactory(&factory, ids, 0, nullptr, nullptr);
    model.FillFactory(&factory, ids, 0, nullptr, nullptr);
    EXPECT_EQ(ids[0], 1);
    EXPECT_TRUE(factory.GetEquationById(0)->IsSameAs(*factory.GetEquationById(1)));
    EXPECT_EQ(factory.GetNbOfVariables(), 1);
}

TEST(EquationModel, RefusesTreesThatAreNotWholeOrNameNoVariable)
{
    KARWBModel model;
    KARWBFactory factory;
    KARWBModelEquation equation;
    EXPECT_EQ(model.AddEquation(equation), -1);
    EXPECT_EQ(factory.CreateEquation(equation), nullptr);
    equation.tree.PushVariable(0);
    EXPECT_EQ(model.AddEquation(equation), -1);
    EXPECT_EQ(factory.CreateEquation(equation), nullptr);
    equation.variableNames.emplace_back("x");
    EXPECT_EQ(model.AddEquation(equation), 0);
    EXPECT_NE(factory.CreateEquation(equation), nullptr);
    EXPECT_THROW(static_cast<void>(model.GetEquation(1)), std::out_of_range);
}

TEST(ExpressionTree, RefusesWhatNoTextCanSay)
{
    KARWBExpressionTree tree;
    EXPECT_EQ(tree.Apply(KARWBOperation::Negate), KARFailure);
    EXPECT_EQ(tree.PushConstant(KARWBOperation::Number), KARFailure);
    EXPECT_EQ(tree.PushConstant(KARWBOperation::Add), KARFailure);
    tree.PushNumber(1.0);
    EXPECT_EQ(tree.Apply(KARWBOperation::Number), KARFailure);
    EXPECT_EQ(tree.Apply(KARWBOperation::Add), KARFailure);
    EXPECT_EQ(tree.Apply(KARWBOperation::Min, 0), KARFailure);
    EXPECT_EQ(tree.Apply(KARWBOperation::Min, -1), KARFailure);
    tree.PushNumber(2.0);
    EXPECT_EQ(tree.Apply(KARWBOperation::Sin, 2), KARFailure);
    ASSERT_EQ(tree.Apply(KARWBOperation::Equate), KARSuccess);
    EXPECT_EQ(tree.Apply(KARWBOperation::Negate), KARFailure);
    EXPECT_TRUE(tree.IsComplete());
    EXPECT_EQ(tree.GetNodes().size(), 3U);
}

TEST(ExpressionTree, DepthEndsWhereTheParserEnds)
{
    const KARWBOperation nesting[] = {KARWBOperation::Sin, KARWBOperation::Negate};
    for (const KARWBOperation operation : nesting) {
        KARWBFactory factory;
        KARWBEquation* equation = factory.CreateEquation();
        equation->PushNumber(1.0);
        int levels = 0;
        while (!KARFailed(equation->Apply(operation)))
            ++levels;
        EXPECT_EQ(levels, KARWBExpressionTree::MaxDepth);
        EXPECT_EQ(equation->GetTree().GetDepth(), KARWBExpressionTree::MaxDepth);
        EXPECT_EQ(Parsed(Print(equation)).status, KARSuccess);
    }
}

// An operator applied over and over, its last result standing to the right or to the left each
// time; null if the tree refuses.
KARWBEquation* Chain(KARWBFactory& factory, KARWBOperation operation, int count, bool isToTheRight)
{
    KARWBEquation* equation = factory.CreateEquation();
    equation->PushNumber(1.0);
    for (int i = 0; isToTheRight && i < count; ++i)
        equation->PushNumber(1.0);
    for (int i = 0; i < count; ++i) {
        if (!isToTheRight)
            equation->PushNumber(1.0);
        if (KARFailed(equation->Apply(operation)))
            return nullptr;
    }
    return equation;
}

TEST(ExpressionTree, DeepestChainsOfEachKindStillParse)
{
    const KARWBOperation operations[] = {KARWBOperation::Subtract, KARWBOperation::Divide,
                                         KARWBOperation::Power, KARWBOperation::Less};
    constexpr int Limit = KARWBExpressionTree::MaxDepth;
    for (const KARWBOperation operation : operations) {
        for (const bool isToTheRight : {false, true}) {
            KARWBFactory factory;
            const bool isFlat = !isToTheRight && (operation == KARWBOperation::Subtract ||
                                                  operation == KARWBOperation::Divide);
            // The innermost operation needs no parentheses, but an exponent is a level by itself.
            const bool isPower = operation == KARWBOperation::Power;
            const int count = isFlat ? 10 * Limit : isPower ? Limit : Limit + 1;
            KARWBEquation* deepest = Chain(factory, operation, count, isToTheRight);
            ASSERT_NE(deepest, nullptr);
            EXPECT_EQ(deepest->GetTree().GetDepth(), isFlat ? 0 : Limit);
            const Parsed again(Print(deepest));
            ASSERT_EQ(again.status, KARSuccess) << again.messenger.GetText();
            EXPECT_TRUE(again.First()->IsSameAs(*deepest));
            EXPECT_EQ(Chain(factory, operation, count + 1, isToTheRight) == nullptr, !isFlat);
        }
    }
}

TEST(EquationTexts, StringKeepsAnyBytes)
{
    const char* none = nullptr;
    EXPECT_TRUE(KARCDSString(none).IsEmpty());
    EXPECT_STREQ(KARCDSString("abc").CastToCharPtr(), "abc");
    EXPECT_EQ(KARCDSString(std::string("a\0b", 3)).GetLengthInChar(), 3);
    EXPECT_FALSE(KARCDSString("a") == none);
    EXPECT_NE(KARCDSString("a"), KARCDSString("b"));
}

TEST(EquationTexts, IntArrayGrowsAndRefusesIndicesOutside)
{
    KARCDSIntArray array;
    array.Append(7);
    array.Append(8);
    array[1] = 9;
    EXPECT_EQ(array.Size(), 2);
    EXPECT_EQ(array[1], 9);
    EXPECT_THROW(static_cast<void>(array[2]), std::out_of_range);
    EXPECT_THROW(static_cast<void>(array[-1]), std::out_of_range);
    array.RemoveAll();
    EXPECT_EQ(array.Size(), 0);
}

} // namespace
