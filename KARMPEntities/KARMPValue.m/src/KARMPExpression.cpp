#include "KARMPExpression.h"

#include "KARIMPExpressionLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"
#include "KARMPSerializationServices.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"

#include <typeinfo>

KARMP_DEFINE_ENTITY(KARMPExpression, "B27C3563-C7BF-4A03-B166-53D33BEA8552");

namespace {

std::wstring PositionName(int position)
{
    return L"Var" + std::to_wstring(position);
}

} // namespace

// Described only: what counts in the status, the names of the mapping's children and the status of
// an expression without an equation are those of no other class.
template <>
struct karmp::ContentOf<KARMPExpression>
{
    using C = KARMPExpression;
    static KARStatus EquationText(const C& expression, std::wstring& text)
    {
        KARWBEquation* equation = nullptr;
        return KARFailed(expression.GetValue(equation))
                   ? KARFailure
                   : KARMPSerializationServices::PrintWBEquation(equation, text);
    }
    static KARStatus TakeEquation(C& expression, std::wstring_view text)
    {
        return expression.ReadEquation(text) ? KARSuccess : KARFailure;
    }
    // The variables behind the one that goes move up by one, as do the positions that they have in
    // the equation.
    static KARStatus RemoveVariable(C& expression, const QOBSharedHandle<KARMPVariable>& variable)
    {
        const int index = expression.m_variables.Find(variable);
        const KARStatus status = expression.m_variables.Remove(variable);
        if (status != KARSuccess)
            return status;
        std::map<int, int> kept;
        int removed = 0;
        for (const auto& [position, mapped] : expression.m_variableMapping)
            if (mapped == index)
                ++removed;
            else
                kept[position - removed] = mapped > index ? mapped - 1 : mapped;
        expression.m_variableMapping = std::move(kept);
        return status;
    }
    static constexpr auto List =
        Element(
            L"Expression", "A value that an equation gives from variables.", LenientFrame,
            Text<&EquationText>(L"Value", "The equation, as text over the names of its variables.")
                .Optional()
                .Through<&TakeEquation>(),
            References<&C::GetLinkedVariableCount, &C::GetLinkedVariable, &C::LinkToVariable>(
                L"Variables", L"Variable", "The variables that the equation uses.")
                .Removing<&RemoveVariable>()
                .InOrder(),
            Group(L"VariableMapping", "Positions of variables by positions in the equation.",
                  Described(ItemKind::Integer, L"Var",
                            "The position of a variable in the list of variables.")
                      .FixedBecause("GetVariableMapping and SetVariableMapping have the "
                                    "mapping as a whole."))
                .Optional()
                .AnyName())
            .LeftOutWhen<&KARMPValue::IsLeftOut>();
};
KARMP_DESCRIBE_CONTENT(KARMPExpression);

KARMPExpression::KARMPExpression() = default;
KARMPExpression::KARMPExpression(const KARMPExpression& source, CopyMode mode)
    : Super(source, mode), m_equation(source.m_equation)
{}
KARMPExpression::~KARMPExpression() = default;

KARStatus KARMPExpression::GetLoader(KARIMPExpressionLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPExpression::SetValue(KARWBEquation* equation)
{
    if (!KARMPVerify(equation != nullptr))
        return KARFailure;
    m_equation = equation;
    return KARSuccess;
}

KARStatus KARMPExpression::GetValue(KARWBEquation*& equation) const
{
    equation = m_equation;
    return equation != nullptr ? KARSuccess : KARFailure;
}

KARStatus KARMPExpression::LinkToVariable(const QOBSharedHandle<KARMPVariable>& variable)
{
    if (!KARMPVerify(static_cast<bool>(variable)))
        return KARFailure;
    const int count = GetLinkedVariableCount();
    if (IsLinked(variable, count))
        return KARUnchanged;
    m_variables.Append(variable);
    m_variableMapping[count] = count;
    return KARSuccess;
}

bool KARMPExpression::IsLinked(const QOBSharedHandle<KARMPVariable>& variable, int count) const
{
    // A subclass may replace the getter, whose answers count; the class itself looks up its index.
    if (typeid(*this) == typeid(KARMPExpression))
        return m_variables.Contains(variable);
    for (int index = 0; index < count; ++index) {
        QOBSharedHandle<KARMPVariable> linked;
        if (KARMPVerify(!KARFailed(GetLinkedVariable(index, linked))) && linked == variable)
            return true;
    }
    return false;
}

KARStatus KARMPExpression::Serialize(KARMPSerializer* serializer) const
{
    if (IsLeftOut())
        return KARSuccess;
    karmp::ElementWriter element(serializer, L"Expression");
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    const bool equationWritten = WriteEquation(element.Node());
    element.References<KARMPVariable>(
        L"Variables", L"Variable", GetLinkedVariableCount(),
        [this](int i, auto& variable) { return GetLinkedVariable(i, variable); });
    const bool mappingWritten = WriteMapping(element.Node());
    return equationWritten && mappingWritten ? KARSuccess : KARFailure;
}

bool KARMPExpression::WriteEquation(KARMPSerializer* expression) const
{
    KARWBEquation* equation = nullptr;
    if (KARFailed(GetValue(equation)))
        return true;
    std::wstring text;
    if (!KARMPVerify(!KARFailed(KARMPSerializationServices::PrintWBEquation(equation, text))))
        return false;
    return karmp::ElementWriter(expression).Value(L"Value", text);
}

bool KARMPExpression::WriteMapping(KARMPSerializer* expression) const
{
    std::map<int, int> mapping;
    if (GetVariableMapping(mapping) != KARSuccess)
        return true;
    karmp::ElementWriter element = karmp::ElementWriter(expression).Child(L"VariableMapping");
    for (const auto& [position, mapped] : mapping)
        element.Value(PositionName(position), mapped);
    return element.Status() == KARSuccess;
}

KARStatus KARMPExpression::Deserialize(const KARMPDeserializer* deserializer,
                                       const KARMPEntityTable& entities)
{
    if (IsLeftOut())
        return KARSuccess;
    karmp::ElementReader element(deserializer, L"Expression");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    std::wstring_view text;
    const bool hasEquation = element.Has(L"Value");
    if (hasEquation && element.Value(L"Value", text, karmp::Absent::ReportAndKeep))
        ReadEquation(text);
    element.References<KARMPVariable>(L"Variables", L"Variable", entities,
                                      [this](const auto& v) { return LinkToVariable(v); });
    if (element.Has(L"VariableMapping"))
        ReadMapping(element.Child(L"VariableMapping", karmp::Absent::ReportAndKeep).Node());
    return hasEquation ? KARSuccess : KARUnchanged;
}

bool KARMPExpression::ReadEquation(std::wstring_view text)
{
    bool inWorld = false;
    if (!KARMPVerify(!KARFailed(IsInWorld(inWorld)) && inWorld))
        return false;
    QOBSharedHandle<KARMPWorld> found;
    if (!KARMPVerify(!KARFailed(GetWorld(found)) && found))
        return false;
    const QOBSharedHandle<KARMPWorld> world(found, QOBSharedBase::WriteLock);
    KARWBFactory* factory = nullptr;
    if (!KARMPVerify(world && !KARFailed(world->GetWBFactory(factory)) && factory != nullptr))
        return false;
    KARWBEquation* equation = nullptr;
    const KARStatus status = KARMPSerializationServices::ParseWBEquation(text, factory, equation);
    return KARMPVerify(!KARFailed(status) && equation != nullptr) &&
           KARMPVerify(!KARFailed(SetValue(equation)));
}

void KARMPExpression::ReadMapping(const KARMPDeserializer* mapping)
{
    karmp::ElementReader element(mapping);
    if (!element)
        return;
    KARMPDeserializer::ElementVector children;
    mapping->AppendOrderedElements(children);
    // The writer's names bear the keys; the reader counts from 0, so that other keys are lost.
    std::map<int, int> read;
    for (int position = 0; position < static_cast<int>(children.size()); ++position) {
        int mapped = 0;
        if (element.Value(PositionName(position), mapped, karmp::Absent::ReportAndKeep))
            read.emplace_hint(read.end(), position, mapped);
    }
    KARMPVerify(!KARFailed(SetVariableMapping(read)));
}
