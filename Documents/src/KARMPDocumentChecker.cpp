#include "KARMPDocumentChecker.h"

#include "KARMPDocumentNames.h"
#include "KARMPDocumentPath.h"
#include "KARMPDocumentSource.h"
#include "KARMPEntity.h"
#include "KARMPFailedCheck.h"
#include "KARMPFormScan.h"
#include "KARMPGenericFactory.h"
#include "KARMPNearestWord.h"
#include "KARMPNodeQueries.h"
#include "KARMPSchemaClasses.h"
#include "KARMPTextEscapes.h"
#include "KARMPValueFaults.h"
#include "KARMPVersions.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <new>
#include <utility>

namespace karmp::documents {

namespace {

std::wstring_view TextOf(const KARMPDocumentReader& node)
{
    std::wstring_view text;
    if (node.HasText())
        node.GetValue(text);
    return text;
}

std::wstring IdentifierOf(const KARMPDocumentReader& node)
{
    std::wstring identifier;
    node.GetAttribute(L"id", identifier);
    return identifier;
}

// Names of items that a version has, as candidates for a name that is none.
std::vector<std::wstring_view> NamesOf(const std::vector<SchemaItem>& items,
                                       std::wstring_view version)
{
    std::vector<std::wstring_view> names;
    for (const SchemaItem& item : items)
        if (item.Applies(version) && !item.anyName)
            names.push_back(item.name);
    return names;
}

// Of a misspelt name the missing item is not told besides; a required one makes it an error.
Severity SeverityOfUnknown(const SchemaItem* missing)
{
    return missing != nullptr && missing->presence == ItemPresence::Required ? Severity::Error
                                                                             : Severity::Warning;
}

// The item of a name at a version; null when there is none.
const SchemaItem* ItemNamed(const std::vector<SchemaItem>& items, std::wstring_view name,
                            std::wstring_view version)
{
    const auto found = std::find_if(items.begin(), items.end(), [&](const SchemaItem& item) {
        return !name.empty() && item.name == name && item.Applies(version);
    });
    return found != items.end() ? &*found : nullptr;
}

} // namespace

std::wstring VersionMeant(std::wstring_view version)
{
    const std::vector<std::wstring_view>& known = KnownVersions();
    const bool isKnown = std::find(known.begin(), known.end(), version) != known.end();
    const std::wstring_view nearest = isKnown ? version : NearestWord(version, known);
    return std::wstring(nearest.empty() ? version : nearest);
}

DocumentChecker::DocumentChecker(const KARMPDocumentReader& root, Messages& messages,
                                 CheckLevel level, bool hasForm)
    : m_root(root), m_messages(messages), m_hasForm(hasForm), m_version(root.Version())
{
    if (level != CheckLevel::Mechanism)
        return;
    m_version = VersionMeant(m_version);
    m_rules.emplace(m_identifiers, [this](Code code, const Node& entity, const RulePlace& place,
                                          std::string text) {
        TellAt(code == Code::EquationText ? Severity::Error : Severity::Warning, code, entity,
               place, std::move(text));
    });
}

void DocumentChecker::Run()
{
    CollectIdentifiers();
    CheckElement(m_root, RootItem());
    while (!m_frames.empty()) {
        Frame& frame = m_frames.back();
        if (frame.next == frame.end)
            Pop();
        else
            CheckChild(NodeOf(*m_pending[frame.next++]));
    }
}

void DocumentChecker::CollectIdentifiers()
{
    const KARMPDeserializer* const world = First(m_root, L"World");
    if (world == nullptr)
        return;
    m_frames.push_back({&m_root, nullptr, nullptr, 0, 0, 0, 0, 0, 0});
    m_frames.push_back({&NodeOf(*world), nullptr, nullptr, 0, 0, 0, 0, 0, 0});
    for (const Family& family : Families()) {
        if (const KARMPDeserializer* const list = First(*world, family.element)) {
            m_frames.push_back({&NodeOf(*list), nullptr, nullptr, 0, 0, 0, 0, 0, 0});
            m_pending.clear();
            list->AppendOrderedElements(m_pending);
            for (const KARMPDeserializer* entity : m_pending) {
                NodeBuilder::BeginReading(*entity);
                Identify(NodeOf(*entity));
                NodeBuilder::EndReading(*entity);
            }
            m_frames.pop_back();
        }
    }
    m_links.Sort();
    if (m_rules)
        m_rules->EndNotes();
    m_frames.clear();
    m_pending.clear();
}

void DocumentChecker::Identify(const Node& entity)
{
    const std::optional<std::uint32_t> number = m_identifiers.Of(entity);
    if (!number)
        return;
    const Class& type = ClassOf(entity.Id());
    if (!m_hasForm)
        m_links.Collect(*number, entity, type.sides, m_identifiers);
    m_identified.resize(std::max<std::size_t>(m_identified.size(), m_identifiers.Count()));
    Identified& identified = m_identified[*number];
    if (identified.node != nullptr) {
        Tell(Severity::Error, Code::DuplicateIdentifier, entity,
             "the identifier " + Quoted(IdentifierOf(entity)) + " was carried before, in line " +
                 std::to_string(identified.node->Line()),
             L"id");
    }
    identified = {&entity, &type};
    if (m_rules)
        m_rules->Note(*number, type.lineage, entity);
}

const DocumentChecker::Class& DocumentChecker::ClassOf(std::wstring_view element)
{
    const auto [place, added] = m_classes.try_emplace(element);
    Class& type = place->second;
    if (!added)
        return type;
    ElementClass found = ClassOfElement(element);
    type.lineage = std::move(found.lineage);
    type.item = found.item;
    if (type.item != nullptr)
        type.sides = m_links.SidesOf(*type.item);
    return type;
}

// False, with nothing to check, when there are no children and none can be missing.
bool DocumentChecker::Push(const Node& node, const SchemaItem* item, const Family* family)
{
    const std::size_t begin = m_pending.size();
    node.AppendOrderedElements(m_pending);
    if (m_pending.size() == begin && (item == nullptr || item->elements.empty()))
        return false;
    m_frames.push_back({&node, item, family, begin, begin, m_pending.size(), 0, 0, 0});
    m_listed.clear();
    return true;
}

void DocumentChecker::Pop()
{
    const Frame frame = m_frames.back();
    if (frame.item != nullptr) {
        for (std::size_t index = 0; index < frame.item->elements.size(); ++index) {
            const SchemaItem& item = frame.item->elements[index];
            if (item.presence != ItemPresence::Optional && Applies(item) &&
                ((frame.seen | frame.misspelt) >> index & 1U) == 0)
                TellMissing(*frame.node, item, Code::MissingElement, "element");
        }
    }
    m_frames.pop_back();
    m_pending.resize(frame.begin);
    if (m_frames.size() == EntityDepth && m_frames.back().family != nullptr)
        NodeBuilder::EndReading(*frame.node);
}

void DocumentChecker::CheckChild(const Node& child)
{
    Frame& frame = m_frames.back();
    if (frame.family != nullptr) {
        NodeBuilder::BeginReading(child);
        m_entity = m_identifiers.Of(child);
        CheckEntity(child, *frame.family);
        if (m_frames.size() == EntityDepth)
            NodeBuilder::EndReading(child);
    } else if (frame.item == nullptr) {
        CheckUnknownContent(child);
    } else if (const SchemaItem* const item = FindElement(frame, child)) {
        CheckElement(child, *item);
    }
}

// Finds what an element is and tells when it is nothing, or there for a second time.
const SchemaItem* DocumentChecker::FindElement(Frame& frame, const Node& child)
{
    const std::vector<SchemaItem>& items = frame.item->elements;
    const std::wstring_view name = child.Id();
    bool otherVersion = false;
    for (std::size_t step = 0; step < items.size(); ++step) {
        std::size_t index = frame.likely + step;
        index = index < items.size() ? index : index - items.size();
        const SchemaItem& item = items[index];
        if (item.name != name && !item.anyName)
            continue;
        if (!Applies(item)) {
            otherVersion = true;
            continue;
        }
        frame.likely = item.repeats || index + 1 == items.size() ? index : index + 1;
        const std::uint64_t bit = std::uint64_t{1} << index;
        if ((frame.seen & bit) != 0 && !item.repeats) {
            Tell(Severity::Warning, Code::DuplicateElement, child,
                 "the element " + Quoted(name) + " stands twice; only the first is read");
            return nullptr;
        }
        frame.seen |= bit;
        return &item;
    }
    if (otherVersion) {
        Tell(Severity::Warning, Code::OtherVersion, child,
             "the element " + Quoted(name) + " is not read at the version of the document");
    } else {
        const std::wstring_view nearest = NearestWord(name, NamesOf(items, m_version));
        const SchemaItem* const item = ItemNamed(items, nearest, m_version);
        const bool isMissing = item != nullptr && First(*frame.node, nearest) == nullptr;
        if (isMissing)
            frame.misspelt |= std::uint64_t{1} << (item - items.data());
        Tell(SeverityOfUnknown(isMissing ? item : nullptr), Code::UnknownElement, child,
             "nothing reads the element " + Quoted(name) + Suggestion(nearest));
    }
    return nullptr;
}

void DocumentChecker::CheckElement(const Node& node, const SchemaItem& item)
{
    CheckAttributes(node, item);
    CheckText(node, item, TextOf(node), {});
    if (item.kind == ItemKind::Reference)
        CheckReference(node, &item);
    const Family* const family = m_frames.size() == 2 ? FamilyOf(item) : nullptr;
    if (family != nullptr && m_rules)
        m_rules->CheckFamily(family->className, node);
    if (m_frames.size() == 1 && m_rules)
        m_rules->CheckWorld(node);
    CheckDisabledValue(node, item);
    Push(node, &item, family);
}

// A group of a flag "Has..." and a number that is read only where the flag is true.
void DocumentChecker::CheckDisabledValue(const Node& node, const SchemaItem& item)
{
    if (item.elements.size() != 2 || item.elements[0].kind != ItemKind::Flag ||
        item.elements[1].kind != ItemKind::Number)
        return;
    const KARMPDeserializer* const flag = First(node, item.elements[0].name);
    const KARMPDeserializer* const number = First(node, item.elements[1].name);
    bool isSet = false;
    if (flag == nullptr || KARFailed(flag->GetValue(isSet)) || isSet == (number != nullptr))
        return;
    const std::string name = Quoted(item.elements[0].name);
    if (isSet)
        Tell(Severity::Error, Code::DisabledValue, node,
             "the element " + Quoted(item.elements[1].name) + " is missing, though " + name +
                 " says that there is a value");
    else
        TellAt(Severity::Warning, Code::DisabledValue, node, {number},
               "the value is not read: " + name + " says that there is none");
}

void DocumentChecker::CheckEntity(const Node& entity, const Family& family)
{
    const Class& type = ClassOf(entity.Id());
    if (type.lineage.empty()) {
        Tell(Severity::Error, Code::UnknownClass, entity,
             "no entity class belongs to the element " + Quoted(entity.Id()) +
                 SuggestionOfClass(entity.Id(), family));
        return;
    }
    if (!HasClass(type.lineage, family.className)) {
        Tell(Severity::Warning, Code::WrongRegistry, entity,
             "a " + type.lineage.front() + " stands in the list of another family");
    }
    if (m_rules)
        m_rules->Check(type.lineage, entity);
    if (m_hasForm)
        return;
    if (type.item != nullptr) {
        CheckElement(entity, *type.item);
        return;
    }
    if (!entity.HasAttribute(L"id"))
        Tell(Severity::Error, Code::MissingAttribute, entity, "the attribute \"id\" is missing");
    Push(entity, nullptr, nullptr);
}

std::string DocumentChecker::SuggestionOfClass(std::wstring_view element, const Family& family)
{
    std::vector<std::wstring_view> elements;
    for (const EntityClass& entityClass : EntityClasses())
        if (entityClass.IsA(family.className))
            elements.push_back(entityClass.item->name);
    return Suggestion(element, elements);
}

// Where the items are not known, an empty element with an identifier is a reference.
void DocumentChecker::CheckUnknownContent(const Node& node)
{
    if (!Push(node, nullptr, nullptr) && node.HasAttribute(L"id"))
        CheckReference(node, nullptr);
}

void DocumentChecker::CheckAttributes(const Node& node, const SchemaItem& item)
{
    std::uint64_t seen = 0;
    const std::vector<SchemaItem>& items = item.attributes;
    for (std::size_t index = 0; index < node.GetAttributeCount(); ++index) {
        const std::wstring_view name = node.GetAttributeId(index);
        const auto found =
            std::find_if(items.begin(), items.end(),
                         [name](const SchemaItem& entry) { return entry.name == name; });
        if (found == items.end()) {
            const std::wstring_view nearest = NearestWord(name, NamesOf(items, m_version));
            const SchemaItem* const entry = ItemNamed(items, nearest, m_version);
            const bool isMissing = entry != nullptr && !node.HasAttribute(nearest);
            if (isMissing)
                seen |= std::uint64_t{1} << (entry - items.data());
            Tell(SeverityOfUnknown(isMissing ? entry : nullptr), Code::UnknownAttribute, node,
                 "nothing reads the attribute " + Quoted(name) + Suggestion(nearest), name);
            continue;
        }
        seen |= std::uint64_t{1} << (found - items.begin());
        if (!Applies(*found)) {
            Tell(Severity::Warning, Code::OtherVersion, node,
                 "the attribute " + Quoted(name) + " is not read at the version of the document",
                 name);
        } else if (found->kind != ItemKind::Text) {
            karmp::ReadText text;
            node.GetAttribute(name, text);
            CheckText(node, *found, text.View(), name);
        }
    }
    for (std::size_t index = 0; index < items.size(); ++index) {
        const SchemaItem& entry = items[index];
        // Of the root, the parser tells.
        if (!m_frames.empty() && entry.presence != ItemPresence::Optional &&
            (seen >> index & 1U) == 0 && Applies(entry))
            TellMissing(node, entry, Code::MissingAttribute, "attribute");
    }
}

void DocumentChecker::CheckText(const Node& node, const SchemaItem& item, std::wstring_view text,
                                std::wstring_view attribute)
{
    std::optional<ValueFault> fault = FaultOf(item, text);
    // What reads as it stands is nothing to tell of where only the form counts.
    const bool isRead =
        fault && (fault->code == Code::DecimalComma || fault->code == Code::NotFinite);
    if (!fault || (!m_rules && isRead))
        return;
    RulePlace place = RulePlace().Text();
    place.attribute = attribute;
    TellAt(fault->severity, fault->code, node, place, std::move(fault->text));
}

void DocumentChecker::CheckReference(const Node& node, const SchemaItem* item)
{
    const std::optional<std::uint32_t> target = m_identifiers.Of(node);
    if (!target)
        return;
    const Identified identified =
        *target < m_identified.size() ? m_identified[*target] : Identified();
    if (identified.node == nullptr) {
        Tell(Severity::Error, Code::UnresolvedReference, node,
             "no entity carries the identifier " + Quoted(IdentifierOf(node)) +
                 SuggestionOfIdentifier(IdentifierOf(node)),
             L"id");
        return;
    }
    const Class& type = *identified.type;
    if (item != nullptr && !type.lineage.empty() && !HasClass(type.lineage, item->target)) {
        Tell(Severity::Error, Code::WrongClass, node,
             "the entity " + Quoted(IdentifierOf(node)) + " is a " + type.lineage.front() + "; a " +
                 std::string(item->target) + " was expected",
             L"id");
        const bool lasts =
            m_frames.size() <= EntityDepth || !DocumentNodes::IsRead(*m_frames[EntityDepth].node);
        m_wrongReferences.push_back({DocumentNodes::Number(node), lasts ? &node : nullptr});
        return;
    }
    CheckName(node, *identified.node);
    if (item != nullptr && !TellRepeated(node, *item, *target))
        CheckCounterpart(node, *target);
}

// The name of a reference is for people, whom another one than the target's misleads. Of a target
// that was renamed, one reference is told.
void DocumentChecker::CheckName(const Node& reference, const Node& target)
{
    if (!m_rules || !reference.HasAttribute(L"name") || !target.HasAttribute(L"name"))
        return;
    std::wstring name;
    std::wstring real;
    reference.GetAttribute(L"name", name);
    target.GetAttribute(L"name", real);
    if (name != real && m_misnamed.insert(&target).second)
        Tell(Severity::Warning, Code::OtherName, reference,
             "the entity " + Quoted(IdentifierOf(reference)) + " is called " + Quoted(real) +
                 ", not " + Quoted(name),
             L"name");
}

// True when the list that holds a reference has held one to the same target.
bool DocumentChecker::TellRepeated(const Node& node, const SchemaItem& item, std::uint32_t target)
{
    // A step may be run twice, and an attribute may hold a value twice.
    const bool isSet = item.repeats && item.name != L"Step" && item.name != L"Value";
    if (!isSet || m_listed.insert(target).second)
        return false;
    Tell(Severity::Warning, Code::RepeatedReference, node,
         "the list refers to the entity " + Quoted(IdentifierOf(node)) + " for a second time",
         L"id");
    return true;
}

std::string DocumentChecker::SuggestionOfIdentifier(const std::wstring& identifier)
{
    constexpr std::size_t most = 20; // searches of all identifiers
    if (m_messages.Full() || m_suggestions == most)
        return {};
    ++m_suggestions;
    std::vector<std::wstring> carried;
    for (const Identified& identified : m_identified)
        if (identified.node != nullptr)
            carried.push_back(IdentifierOf(*identified.node));
    return Suggestion(identifier, {carried.begin(), carried.end()});
}

// The reference stands in an entity, or in a list of the entity.
void DocumentChecker::CheckCounterpart(const Node& node, std::uint32_t target)
{
    if (m_frames.size() != EntityDepth + 1 && m_frames.size() != EntityDepth + 2)
        return;
    const Node& entity = *m_frames[EntityDepth].node;
    const Node& named = m_frames.size() == EntityDepth + 1 ? node : *m_frames.back().node;
    const auto isUnknown = [this](std::uint32_t number) {
        return number >= m_identified.size() || m_identified[number].node == nullptr;
    };
    if (m_links.IsOneSided(m_entity, ClassOf(entity.Id()).sides, named.Id(), target, isUnknown)) {
        Tell(Severity::Warning, Code::OneSidedLink, node,
             "the entity " + Quoted(IdentifierOf(node)) + " does not refer back", L"id");
    }
}

void DocumentChecker::TellMissing(const Node& node, const SchemaItem& item, Code code,
                                  std::string_view what)
{
    std::string text = "the ";
    text += what;
    text += ' ';
    text += Quoted(item.name);
    text += " is missing";
    Tell(item.presence == ItemPresence::Required ? Severity::Error : Severity::Warning, code, node,
         std::move(text));
}

void DocumentChecker::Tell(Severity severity, Code code, const Node& node, std::string text,
                           std::wstring_view attribute)
{
    RulePlace place;
    place.attribute = attribute;
    TellAt(severity, code, node, place, std::move(text));
}

// Of a node that is the last frame's or stands in it.
void DocumentChecker::TellAt(Severity severity, Code code, const Node& node, const RulePlace& place,
                             std::string text)
{
    if (m_messages.Full())
        return;
    Way way;
    for (const Frame& frame : m_frames)
        way.push_back(frame.node);
    if (way.empty() || way.back() != &node)
        way.push_back(&node);
    way.insert(way.end(), place.below.begin(), place.below.end());
    const Node& told = NodeOf(*way.back());
    std::size_t line = told.Line();
    std::size_t column = told.Column();
    if (!place.attribute.empty())
        told.FindAttribute(place.attribute, line, column);
    else if (place.atText)
        told.FindText(line, column);
    m_messages.Add(severity, code, std::move(text), PathText(way, place.attribute), line, column);
}

std::wstring DocumentChecker::UnusedIdentifier() const
{
    std::wstring identifier = L"none";
    while (m_identifiers.Know(identifier))
        identifier += L'_';
    return identifier;
}

void Document::Check(CheckLevel level)
{
    if (m_root == nullptr || level == CheckLevel::None)
        return;
    documents::Messages messages(m_messages, m_name, m_limits.diagnostics);
    try {
        m_wrongReferences.clear();
        const bool hasForm = FormScan(*m_source, level).Run();
        if (hasForm && level == CheckLevel::Form)
            return;
        DocumentChecker checker(*m_root, messages, level, hasForm);
        checker.Run();
        m_wrongReferences = checker.WrongReferences();
        m_unusedIdentifier = checker.UnusedIdentifier();
    } catch (const std::bad_alloc&) {
        messages.Error(Code::OutOfMemory, "memory ended while the document was checked");
    }
}

void Document::DropWrongReferences()
{
    NodeMemory& memory = m_source->Nodes();
    const ReadAttribute unused[] = {
        {NodeText::Name(L"id", memory), NodeText::Copy(m_unusedIdentifier, memory)}};
    std::vector<std::uint32_t> numbers;
    for (const WrongReference& reference : m_wrongReferences) {
        numbers.push_back(reference.record);
        if (reference.node != nullptr) {
            auto& node = const_cast<KARMPDocumentReader&>(*reference.node);
            NodeBuilder::AddAttributes(node, unused, memory);
        }
    }
    m_source->DropReferences(std::move(numbers), m_unusedIdentifier);
}

} // namespace karmp::documents
