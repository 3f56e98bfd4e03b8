#include "KARMPSchemaGrammar.h"

#include "KARMPDocumentNames.h"
#include "KARMPSchemaClasses.h"
#include "KARTextConversion.h"

namespace karmp::documents {

namespace {

using Kind = Pattern::Kind;

constexpr const char* NumberName = "number";
constexpr const char* IntegerName = "integer";
constexpr const char* FlagName = "flag";

Pattern Named(Kind kind, std::string name)
{
    return {kind, std::move(name)};
}

Pattern Around(Kind kind, Pattern child)
{
    return {kind, {}, {std::move(child)}};
}

// The patterns one after the other, or what that is when there is at most one.
Pattern Together(Kind kind, std::vector<Pattern> patterns)
{
    if (patterns.empty())
        return {};
    if (patterns.size() == 1)
        return std::move(patterns.front());
    return {kind, {}, std::move(patterns)};
}

Pattern FlagPattern()
{
    Pattern choice{Kind::Choice, {}};
    for (const std::string_view form : TrueForms)
        choice.children.push_back(Named(Kind::Value, std::string(form)));
    for (const std::string_view form : FalseForms)
        choice.children.push_back(Named(Kind::Value, std::string(form)));
    return choice;
}

Pattern WordPattern(const SchemaItem& item)
{
    std::vector<Pattern> words;
    for (const std::wstring_view word : item.words)
        words.push_back(Named(Kind::Value, kar::ToUtf8(word)));
    return Together(Kind::Choice, std::move(words));
}

class GrammarMaker
{
public:
    explicit GrammarMaker(std::wstring_view version) : m_version(version) {}
    std::vector<Definition> Make();

private:
    Pattern TextOf(const SchemaItem& item) const;
    Pattern ContentOf(const SchemaItem& item) const;
    Pattern ElementOf(const SchemaItem& item) const;
    Pattern AttributeOf(const SchemaItem& item) const;
    Pattern WorldContent();
    Pattern FamilyElement(const SchemaItem& item, const Family& family);

    std::wstring_view m_version;
    std::vector<EntityClass> m_classes = EntityClasses();
};

Pattern GrammarMaker::TextOf(const SchemaItem& item) const
{
    switch (item.kind) {
    case ItemKind::Number:
        return Named(Kind::Reference, NumberName);
    case ItemKind::Integer:
    case ItemKind::Code:
        return Named(Kind::Reference, IntegerName);
    case ItemKind::Flag:
        return Named(Kind::Reference, FlagName);
    case ItemKind::Word:
        return WordPattern(item);
    case ItemKind::Text:
        return {Kind::Text, {}};
    default:
        return {};
    }
}

Pattern GrammarMaker::AttributeOf(const SchemaItem& item) const
{
    Pattern attribute{
        Kind::Attribute, kar::ToUtf8(item.name), {TextOf(item)}, std::string(item.says)};
    return item.presence == ItemPresence::Optional ? Around(Kind::Optional, std::move(attribute))
                                                   : attribute;
}

// Attributes, then elements in any order, or the text.
Pattern GrammarMaker::ContentOf(const SchemaItem& item) const
{
    std::vector<Pattern> parts;
    for (const SchemaItem* const attribute : ItemsAt(item.attributes, m_version))
        parts.push_back(AttributeOf(*attribute));
    std::vector<Pattern> elements;
    for (const SchemaItem* const element : ItemsAt(item.elements, m_version))
        elements.push_back(ElementOf(*element));
    if (!elements.empty())
        parts.push_back(Together(Kind::Interleave, std::move(elements)));
    if (Pattern text = TextOf(item); text.kind != Kind::Empty)
        parts.push_back(std::move(text));
    return Together(Kind::Group, std::move(parts));
}

Pattern GrammarMaker::ElementOf(const SchemaItem& item) const
{
    Pattern element{Kind::Element,
                    item.anyName ? std::string() : kar::ToUtf8(item.name),
                    {ContentOf(item)},
                    std::string(item.says)};
    const bool isOptional = item.presence == ItemPresence::Optional;
    if (item.repeats || item.anyName)
        return Around(isOptional ? Kind::ZeroOrMore : Kind::OneOrMore, std::move(element));
    return isOptional ? Around(Kind::Optional, std::move(element)) : element;
}

Pattern GrammarMaker::FamilyElement(const SchemaItem& item, const Family& family)
{
    std::vector<Pattern> entities;
    for (const EntityClass& entityClass : m_classes)
        if (entityClass.IsA(family.className))
            entities.push_back(Named(Kind::Reference, entityClass.name));
    Pattern content = entities.empty()
                          ? Pattern()
                          : Around(Kind::ZeroOrMore, Together(Kind::Choice, std::move(entities)));
    return Around(
        Kind::Optional,
        {Kind::Element, kar::ToUtf8(family.element), {std::move(content)}, std::string(item.says)});
}

Pattern GrammarMaker::WorldContent()
{
    const SchemaItem& world = RootItem().elements.front();
    std::vector<Pattern> parts;
    for (const SchemaItem& attribute : world.attributes)
        parts.push_back(AttributeOf(attribute));
    std::vector<Pattern> elements;
    for (const SchemaItem& element : world.elements) {
        const Family* const family = FamilyOf(element);
        elements.push_back(family != nullptr ? FamilyElement(element, *family)
                                             : ElementOf(element));
    }
    parts.push_back(Together(Kind::Interleave, std::move(elements)));
    return Together(Kind::Group, std::move(parts));
}

std::vector<Definition> GrammarMaker::Make()
{
    const SchemaItem& root = RootItem();
    const SchemaItem& world = root.elements.front();
    Pattern version{Kind::Attribute,
                    kar::ToUtf8(VersionName),
                    {Named(Kind::Value, kar::ToUtf8(m_version))},
                    std::string(root.attributes.front().says)};
    Pattern worldElement{
        Kind::Element, kar::ToUtf8(world.name), {WorldContent()}, std::string(world.says)};
    std::vector<Definition> definitions;
    definitions.push_back({"start",
                           {Kind::Element,
                            kar::ToUtf8(root.name),
                            {{Kind::Group, {}, {std::move(version), std::move(worldElement)}}},
                            std::string(root.says)}});
    for (const EntityClass& entityClass : m_classes) {
        definitions.push_back({entityClass.name,
                               {Kind::Element,
                                kar::ToUtf8(entityClass.item->name),
                                {ContentOf(*entityClass.item)},
                                std::string(entityClass.item->says)}});
    }
    definitions.push_back({NumberName, Named(Kind::Data, std::string(NumberPattern))});
    definitions.push_back({IntegerName, Named(Kind::Data, std::string(IntegerPattern))});
    definitions.push_back({FlagName, FlagPattern()});
    return definitions;
}

} // namespace

std::vector<Definition> MakeGrammar(std::wstring_view version)
{
    return GrammarMaker(version).Make();
}

} // namespace karmp::documents
