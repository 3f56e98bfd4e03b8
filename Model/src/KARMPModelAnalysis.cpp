// Attributes of entities, initial conditions and analysis cases.
#include "KARMPModelAnalysis.h"
#include "KAROmxOMap.h"

#include "KARMPAnalysisCase.h"
#include "KARMPAnalysisStep.h"
#include "KARMPBoolean.h"
#include "KARMPConstant.h"
#include "KARMPInitialCondition.h"
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPModelPlacing.h"
#include "KARMPModelValues.h"
#include "KARMPOutput.h"
#include "KARMPParameter.h"
#include "KARMPState.h"
#include "KARMPString.h"
#include "KARMPSupport.h"

#include <algorithm>
#include <span>

namespace karmp::model {

namespace {

using Entity = Edit::Entity;

/// A class of attributes, and the items that list those of an entity and of an attribute.
struct AttributeKind
{
    const QOBClassInfo* info;
    std::string_view ofEntity;
    std::string_view ofAttribute;
};

AttributeKind KindOf(const QOBClassInfo& info)
{
    if (&info == &KARMPState::ClassInfo())
        return {&info, "States", "ChildrenStates"};
    if (&info == &KARMPOutput::ClassInfo())
        return {&info, "Outputs", "ChildrenOutputs"};
    return {&KARMPParameter::ClassInfo(), "Parameters", "ChildrenParameters"};
}

/// What an attribute holds, and the word for it.
struct Content
{
    Entity value;
    std::string_view type;
};

template <class T, class Datum>
Entity MakeValue(Edit& edit, const std::string& identifier, KARMPPhysicalQuantity::Enum quantity,
                 const Datum& datum)
{
    const auto value = edit.Create<T>(identifier);
    const bool hasQuantity = quantity != KARMPPhysicalQuantity::NoPhysicalQuantity;
    const bool isSet = value &&
                       (!hasQuantity ||
                        edit.Check(value->SetPhysicalQuantity(quantity), "the quantity", *value)) &&
                       edit.Check(value->SetValue(datum), "the value", *value);
    return isSet ? Entity(value) : Entity();
}

Content MakeContent(Edit& edit, const std::string& owner, const Attribute& attribute)
{
    const std::string identifier = owner + ".value";
    if (const auto* const flag = std::get_if<bool>(&attribute.value))
        return {MakeValue<KARMPBoolean>(edit, identifier, attribute.quantity,
                                        static_cast<unsigned char>(*flag ? 1 : 0)),
                "bool"};
    if (const auto* const text = std::get_if<std::string>(&attribute.value))
        return {MakeValue<KARMPString>(edit, identifier, attribute.quantity,
                                       KARUnicodeString(text->c_str())),
                "string"};
    return {MakeConstant(edit, identifier, attribute.quantity, std::get<double>(attribute.value)),
            "double"};
}

// The settings are variables: GCC 12 destroys a list in an operand of && after the end of its scope
// when an allocation for one of its elements fails.
Entity MakeLeaf(Edit& edit, const AttributeKind& kind, const std::string& identifier,
                const Attribute& attribute)
{
    const Content content = MakeContent(edit, identifier, attribute);
    const Entity made = content.value ? edit.Create(*kind.info, identifier) : Entity();
    if (!made)
        return {};
    const Settings settings{
        {"entityID", attribute.name}, {"type", content.type}, {"Values", Ref(content.value)}};
    return edit.SetAll(made, settings) ? made : Entity();
}

// One for its parts, with the entity that it is about.
Entity MakeGroup(Edit& edit, const AttributeKind& kind, const std::string& identifier,
                 const Attribute& attribute)
{
    QOBSharedHandle<KARMPSupport> support;
    if (attribute.about) {
        if (!edit.IsThere(attribute.about->Handle(), "entity that an attribute is about"))
            return {};
        support = edit.Create<KARMPSupport>(identifier + ".support");
        if (!support)
            return {};
        const Settings settings{{"Target", *attribute.about}};
        if (!edit.SetAll(support, settings))
            return {};
    }
    const Entity made = edit.Create(*kind.info, identifier);
    if (!made)
        return {};
    const Settings settings{{"entityID", attribute.name}};
    const bool isSet =
        edit.SetAll(made, settings) && (!support || edit.Link(made, support, "Supports"));
    return isSet ? made : Entity();
}

bool MakeAttributes(Edit& edit, const AttributeKind& kind, const Entity& owner,
                    std::string_view item, std::span<const Attribute> attributes)
{
    return std::all_of(
        attributes.begin(), attributes.end(),
        [&](const Attribute& attribute) {
            const auto identifier = NameOn(edit, owner, attribute.name);
            if (!identifier)
                return false;
            const bool isLeaf = !std::holds_alternative<std::monostate>(attribute.value);
            const Entity made = isLeaf ? MakeLeaf(edit, kind, *identifier, attribute)
                                       : MakeGroup(edit, kind, *identifier, attribute);
            return made && edit.Link(owner, made, item) &&
                   MakeAttributes(edit, kind, made, kind.ofAttribute, attribute.parts);
        });
}

// Attributes of an entity that is there.
bool Give(Edit& edit, const QOBClassInfo& info, const Entity& owner,
          std::span<const Attribute> attributes)
{
    const AttributeKind kind = KindOf(info);
    return MakeAttributes(edit, kind, owner, kind.ofEntity, attributes);
}

bool AddStep(Edit& edit, const Entity& analysis, const AnalysisStepOptions& options)
{
    const auto step = edit.Create<KARMPAnalysisStep>(options.identifier);
    return step && Give(edit, KARMPParameter::ClassInfo(), step, options.parameters) &&
           edit.Link(analysis, step, "Steps");
}

} // namespace

RefList<KARMPAnalysisStep> StepsOf(const Ref<KARMPAnalysisCase>& analysis)
{
    RefList<KARMPAnalysisStep> steps;
    for (int index = 0; index < analysis->GetAnalysisStepCount(); ++index) {
        QOBSharedHandle<KARMPAnalysisStep> step;
        if (!KARFailed(analysis->GetAnalysisStep(index, step)))
            steps.emplace_back(step);
    }
    return steps;
}

KARStatus UpdateOutputs(const Ref<KARMPEntity>& entity, OutputValues results)
{
    KAROmxOMap<KARString, KAROmxAny> entries;
    for (const auto& [path, value] : results)
        entries.Insert(KARString(std::string(path).c_str()), value);
    return entity->UpdateOutputs(entries);
}

bool Model::AddAttributesOf(const QOBClassInfo& info, const Ref<KARMPEntity>& entity,
                            std::span<const Attribute> attributes, Where where)
{
    return m_core->Perform(
        where,
        [&](Edit& edit) {
            return edit.IsThere(entity.Handle(), "entity of the attributes") &&
                   Give(edit, info, entity.Handle(), attributes);
        });
}

Ref<KARMPInitialCondition> Model::InitialCondition(std::string_view identifier,
                                                   std::initializer_list<Attribute> parameters,
                                                   Where where)
{
    return Ref(m_core->Make<KARMPInitialCondition>(
        where,
        [&](Edit& edit, auto& condition) {
            condition = edit.Create<KARMPInitialCondition>(identifier);
            return condition && Give(edit, KARMPParameter::ClassInfo(), condition,
                                     std::span(parameters.begin(), parameters.size()));
        }));
}

Ref<KARMPAnalysisCase> Model::AnalysisCase(std::string_view identifier,
                                           const AnalysisOptions& options, Where where)
{
    return Ref(m_core->Make<KARMPAnalysisCase>(
        where,
        [&](Edit& edit, auto& analysis) {
            analysis = edit.Create<KARMPAnalysisCase>(identifier);
            return analysis &&
                   std::all_of(
                       options.steps.begin(), options.steps.end(),
                       [&](const AnalysisStepOptions& step) {
                           return AddStep(edit, analysis, step);
                       }) &&
                   Give(edit, KARMPOutput::ClassInfo(), analysis, options.outputs);
        }));
}

} // namespace karmp::model
