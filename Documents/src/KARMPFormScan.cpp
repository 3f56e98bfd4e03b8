#include "KARMPFormScan.h"

#include "KARMPDocumentLinks.h"
#include "KARMPDocumentSource.h"
#include "KARMPSchemaClasses.h"
#include "KARMPTextEscapes.h"
#include "KARMPValueFaults.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace karmp::documents {

namespace {

constexpr std::uint32_t None = 0xFFFFFFFFU;
/// The level of an entity's element; its items are one below.
constexpr unsigned EntityLevel = EntityDepth;

bool Equals(std::wstring_view wide, std::string_view text)
{
    return std::equal(
        wide.begin(), wide.end(), text.begin(), text.end(),
        [](wchar_t left, char right) { return left == static_cast<wchar_t>(right); });
}

const char* SkipDigits(const char* text)
{
    while (*text >= '0' && *text <= '9')
        ++text;
    return text;
}

// True for few digits with a point and a small exponent, which are neither infinite nor rounded to
// 0. Other texts may be good numbers too.
bool IsUsualNumber(const char* text)
{
    if (*text >= '0' && *text <= '9' && text[1] == '\0')
        return true;
    constexpr std::ptrdiff_t mostDigits = 100;
    const char* const begin = text + (*text == '-' ? 1 : 0);
    const char* end = SkipDigits(begin);
    std::ptrdiff_t digits = end - begin;
    if (*end == '.') {
        const char* const fraction = end + 1;
        end = SkipDigits(fraction);
        digits += end - fraction;
    }
    if (*end == 'e' && digits > 0) {
        const char* const exponent = end + 1 + (end[1] == '-' || end[1] == '+' ? 1 : 0);
        end = SkipDigits(exponent);
        if (end == exponent || end - exponent > 2)
            return false;
    }
    return *end == '\0' && digits > 0 && digits <= mostDigits;
}

bool IsUsualInteger(const char* text)
{
    constexpr std::ptrdiff_t mostDigits = 9;
    const char* const begin = text + (*text == '-' ? 1 : 0);
    const char* const end = SkipDigits(begin);
    return *end == '\0' && end != begin && end - begin <= mostDigits;
}

// True for texts that are nothing to tell of. Others may be so too.
bool IsUsual(const SchemaItem& item, const char* bytes)
{
    if (item.kind == ItemKind::Number)
        return IsUsualNumber(bytes);
    if (item.kind == ItemKind::Integer)
        return IsUsualInteger(bytes);
    const std::string_view text = bytes;
    const auto isText = [text](std::string_view form) { return form == text; };
    switch (item.kind) {
    case ItemKind::Flag:
        return std::any_of(TrueForms.begin(), TrueForms.end(), isText) ||
               std::any_of(FalseForms.begin(), FalseForms.end(), isText);
    case ItemKind::Word:
        return std::any_of(item.words.begin(), item.words.end(),
                           [text](std::wstring_view word) { return Equals(word, text); });
    case ItemKind::Group:
    case ItemKind::Reference:
        return text.find_first_not_of(Blanks) == std::string_view::npos;
    default:
        return item.kind != ItemKind::Code;
    }
}

} // namespace

bool FormScan::Class::IsA(std::string_view className) const
{
    return std::find(lineage.begin(), lineage.end(), className) != lineage.end();
}

FormScan::FormScan(DocumentSource& source, CheckLevel level)
    : m_source(source),
      m_records(source.Records()),
      m_isFormAlone(level == CheckLevel::Form),
      m_version(source.Version().View())
{
    m_nameName = m_records.names.Find(L"name");
    m_classes.resize(m_records.names.Count());
    m_root.item = &RootItem();
    MakeLevel(m_root);
}

bool FormScan::Run()
{
    if (!Identify() || !CheckElement(0, m_root, nullptr, 0))
        return false;
    return CheckBacks();
}

std::vector<FormScan::Form> FormScan::FormsOf(const std::vector<SchemaItem>& items,
                                              std::uint64_t& needed) const
{
    std::vector<Form> forms(items.size());
    for (std::size_t index = 0; index < items.size(); ++index) {
        forms[index].item = &items[index];
        forms[index].name = m_records.names.Find(items[index].name);
        forms[index].applies = items[index].Applies(m_version);
        forms[index].isNumber =
            items[index].kind == ItemKind::Number && items[index].attributes.empty();
        forms[index].isText = items[index].kind == ItemKind::Text;
        forms[index].isLast = items[index].repeats || index + 1 == items.size();
        if (forms[index].applies && items[index].presence != ItemPresence::Optional)
            needed |= std::uint64_t{1} << index;
    }
    return forms;
}

void FormScan::MakeLevel(Form& form) const
{
    const SchemaItem& item = *form.item;
    form.isMade = true;
    form.isInSet = item.repeats && item.name != L"Step" && item.name != L"Value";
    form.attributes = FormsOf(item.attributes, form.neededAttributes);
    form.elements = FormsOf(item.elements, form.neededElements);
    form.areNumbers = !form.elements.empty() &&
                      std::all_of(
                          form.elements.begin(), form.elements.end(),
                          [](const Form& element) {
                              return element.isNumber && element.applies && !element.item->anyName;
                          });
    form.isReference =
        item.kind == ItemKind::Reference && item.elements.empty() &&
        std::all_of(form.attributes.begin(), form.attributes.end(),
                    [](const Form& attribute) { return attribute.isText && attribute.applies; });
    form.isOptionalNumber = item.elements.size() == 2 && item.elements[0].kind == ItemKind::Flag &&
                            item.elements[1].kind == ItemKind::Number;
}

// Of the elements of a class.
void FormScan::MakeSides(Form& form) const
{
    for (Form& element : form.elements) {
        const SchemaItem* const reference = ReferenceOf(*element.item);
        element.isSide = reference != nullptr;
        if (!element.isSide)
            continue;
        for (const std::wstring_view name : OtherSides(reference->otherSide)) {
            element.needsBack = true;
            element.backNames.push_back(m_records.names.Find(name));
        }
    }
}

FormScan::Class& FormScan::ClassOf(std::uint32_t element)
{
    std::unique_ptr<Class>& type = m_classes[element];
    if (!type) {
        ElementClass found = ClassOfElement(m_records.names[element].View());
        type = std::make_unique<Class>();
        type->lineage = std::move(found.lineage);
        type->form.item = found.item;
        if (found.item != nullptr) {
            MakeLevel(type->form);
            MakeSides(type->form);
        }
    }
    return *type;
}

// False when an entity has no identifier or another entity's, or belongs to no class.
bool FormScan::Identify()
{
    std::size_t count = 0;
    const auto forEachList = [this](auto visit) {
        const std::uint32_t worldName = m_records.names.Find(L"World");
        for (std::uint32_t world = 1; world < End(0); world = End(world))
            for (std::uint32_t list = world + 1; list < End(world); list = End(list))
                if (RecordOf(world).Name() == worldName && IsFamily(RecordOf(list).Name()))
                    for (std::uint32_t entity = list + 1; entity < End(list); entity = End(entity))
                        if (!visit(entity))
                            return false;
        return true;
    };
    forEachList([&count](std::uint32_t) { return ++count != 0; });
    m_entities.reserve(count);
    m_numbers.assign(m_records.identifiers, None);
    return forEachList([this](std::uint32_t entity) { return Enter(entity); });
}

bool FormScan::IsFamily(std::uint32_t name) const
{
    const std::wstring_view text = m_records.names[name].View();
    return std::any_of(Families().begin(), Families().end(),
                       [text](const Family& family) { return family.element == text; });
}

FormScan::Attributes FormScan::AttributesOf(std::uint32_t number) const
{
    Attributes found;
    for (std::uint32_t index = RecordOf(number).attributes;
         index != RecordOf(number + 1).attributes; ++index) {
        const AttributeRecord& attribute = m_records.attributes[index];
        if (attribute.identifier != NoIdentifier)
            found.identifier = &attribute;
        else if (attribute.Name() == m_nameName)
            found.name = &attribute;
    }
    return found;
}

bool FormScan::Enter(std::uint32_t entity)
{
    const Attributes attributes = AttributesOf(entity);
    const Class& type = ClassOf(RecordOf(entity).Name());
    if (attributes.identifier == nullptr || !attributes.identifier->IsPlain() ||
        type.form.item == nullptr || type.lineage.empty())
        return false;
    std::uint32_t& number = m_numbers[attributes.identifier->identifier];
    if (number != None)
        return false;
    number = static_cast<std::uint32_t>(m_entities.size());
    m_entities.push_back(
        {attributes.name != nullptr ? m_source.At(attributes.name->value) : nullptr, &type, 0});
    m_source.Progress().Step();
    return true;
}

FormScan::Form* FormScan::FindForm(std::vector<Form>& forms, std::uint32_t name,
                                   std::size_t& likely)
{
    for (std::size_t step = 0; step < forms.size(); ++step) {
        const std::size_t index =
            likely + step < forms.size() ? likely + step : likely + step - forms.size();
        Form& form = forms[index];
        if ((form.name != name && !form.item->anyName) || !form.applies)
            continue;
        likely = form.isLast ? index : index + 1;
        return &form;
    }
    return nullptr;
}

// `side` is the item of the entity that the element belongs to, null outside of such ones.
bool FormScan::CheckElement(std::uint32_t number, Form& form, const Form* side, unsigned level)
{
    if (!form.isMade)
        MakeLevel(form);
    if (IsUsualReference(number, form))
        return CheckReference(number, form, side);
    const ElementRecord& record = RecordOf(number);
    const bool isReference = form.item->kind == ItemKind::Reference;
    if (!CheckAttributes(number, form, level) || !CheckText(record, form) ||
        (isReference && !CheckReference(number, form, side)))
        return false;
    if (record.end == number + 1)
        return form.neededElements == 0;
    if (AreUsualNumbers(number, form))
        return true;
    const bool isList = level == EntityLevel - 1 && FamilyOf(*form.item) != nullptr;
    return isList ? CheckEntities(number, *FamilyOf(*form.item))
                  : CheckChildren(number, form, side, level);
}

// True for a number without attributes, as most elements are.
bool FormScan::IsUsualNumber(std::uint32_t number, const Form& form) const
{
    const ElementRecord& record = RecordOf(number);
    return form.isNumber && record.end == number + 1 &&
           (&record)[1].attributes == record.attributes && record.Kind() == TextKind::Plain &&
           documents::IsUsualNumber(m_source.At(record.text));
}

// True for a reference with all its attributes in their order and nothing else.
bool FormScan::IsUsualReference(std::uint32_t number, const Form& form) const
{
    const ElementRecord* const record = &RecordOf(number);
    const auto first = m_records.attributes.begin() + record->attributes;
    return form.isReference && record->end == number + 1 && record->Kind() == TextKind::Plain &&
           record->text == NoOffset &&
           record[1].attributes == record->attributes + form.attributes.size() &&
           std::equal(form.attributes.begin(), form.attributes.end(), first,
                      [](const Form& item, const AttributeRecord& attribute) {
                          return item.name == attribute.Name();
                      });
}

// True for the numbers of a group, all of them in their order.
bool FormScan::AreUsualNumbers(std::uint32_t number, const Form& form) const
{
    const ElementRecord* record = &RecordOf(number);
    const std::size_t count = form.elements.size();
    if (!form.areNumbers || record->end != number + 1 + count ||
        record[1].attributes != record[1 + count].attributes)
        return false;
    return std::all_of(form.elements.begin(), form.elements.end(), [&](const Form& element) {
        ++record;
        return record->Name() == element.name && record->Kind() == TextKind::Plain &&
               documents::IsUsualNumber(m_source.At(record->text));
    });
}

// Of the root, the parser tells.
bool FormScan::CheckAttributes(std::uint32_t number, Form& form, unsigned level) const
{
    std::uint64_t seen = 0;
    std::size_t likely = 0;
    for (std::uint32_t index = RecordOf(number).attributes;
         index != RecordOf(number + 1).attributes; ++index) {
        const AttributeRecord& attribute = m_records.attributes[index];
        const Form* const found = FindForm(form.attributes, attribute.Name(), likely);
        if (found == nullptr)
            return false;
        const std::uint64_t bit = std::uint64_t{1} << (found - form.attributes.data());
        if ((seen & bit) != 0 ||
            (!found->isText && !CheckText(m_source.At(attribute.value), attribute.IsPlain(), *found,
                                          TextContext::Attribute)))
            return false;
        seen |= bit;
    }
    return level == 0 || (form.neededAttributes & ~seen) == 0;
}

bool FormScan::CheckText(const ElementRecord& record, const Form& form) const
{
    switch (record.Kind()) {
    case TextKind::None:
        return CheckText("", true, form, TextContext::Element);
    case TextKind::Pieces:
        return form.item->kind == ItemKind::Text;
    default:
        return CheckText(m_source.At(record.text), record.Kind() == TextKind::Plain, form,
                         TextContext::Element);
    }
}

bool FormScan::CheckText(const char* text, bool isPlain, const Form& form,
                         TextContext context) const
{
    if (form.isText || (isPlain && form.usual != nullptr && std::strcmp(text, form.usual) == 0))
        return true;
    if (isPlain && IsUsual(*form.item, text)) {
        form.usual = text;
        return true;
    }
    std::wstring decoded;
    AppendDecoded(decoded, text, context);
    const std::optional<ValueFault> fault = FaultOf(*form.item, decoded);
    return !fault ||
           (m_isFormAlone && (fault->code == Code::DecimalComma || fault->code == Code::NotFinite));
}

bool FormScan::CheckChildren(std::uint32_t number, Form& form, const Form* side, unsigned level)
{
    std::uint64_t seen = 0;
    std::size_t likely = 0;
    const std::size_t listed = m_listed.size();
    std::uint32_t flag = None;
    for (std::uint32_t child = number + 1; child != End(number); child = End(child)) {
        Form* const found = FindForm(form.elements, RecordOf(child).Name(), likely);
        if (found == nullptr)
            return false;
        const std::uint64_t bit = std::uint64_t{1} << (found - form.elements.data());
        if ((seen & bit) != 0 && !found->item->repeats)
            return false;
        seen |= bit;
        if (level == EntityLevel)
            side = found->isSide ? found : nullptr;
        if (!IsUsualNumber(child, *found) &&
            !CheckElement(child, *found, level <= EntityLevel + 1 ? side : nullptr, level + 1))
            return false;
        if (bit == 1)
            flag = child;
    }
    if ((form.neededElements & ~seen) != 0 || !CheckRepeated(listed))
        return false;
    if (!form.isOptionalNumber || flag == None)
        return true;
    if (RecordOf(flag).Kind() != TextKind::Plain)
        return false;
    const std::string_view text = m_source.At(RecordOf(flag).text);
    const bool isSet = std::find(TrueForms.begin(), TrueForms.end(), text) != TrueForms.end();
    return isSet == ((seen & 2U) != 0);
}

// True when all entities from `first` on in the list are different ones.
bool FormScan::CheckRepeated(std::size_t first)
{
    if (m_listed.size() == first)
        return true;
    const auto begin = m_listed.begin() + static_cast<std::ptrdiff_t>(first);
    std::sort(begin, m_listed.end());
    const bool areNew = std::adjacent_find(begin, m_listed.end()) == m_listed.end();
    m_listed.resize(first);
    return areNew;
}

bool FormScan::CheckEntities(std::uint32_t list, const Family& family)
{
    for (std::uint32_t entity = list + 1; entity != End(list); entity = End(entity)) {
        Class& type = ClassOf(RecordOf(entity).Name());
        if (type.family != &family && !type.IsA(family.className))
            return false;
        type.family = &family;
        m_entities[m_owner].links = static_cast<std::uint32_t>(m_links.size());
        if (!CheckElement(entity, type.form, nullptr, EntityLevel))
            return false;
        ++m_owner;
        m_source.Progress().Step();
    }
    return true;
}

bool FormScan::CheckReference(std::uint32_t number, Form& form, const Form* side)
{
    const Attributes attributes = AttributesOf(number);
    if (attributes.identifier == nullptr)
        return true;
    if (!attributes.identifier->IsPlain())
        return false;
    const std::uint32_t target = m_numbers[attributes.identifier->identifier];
    if (target == None)
        return false;
    const Entity& entity = m_entities[target];
    const bool isNamed = attributes.name != nullptr && entity.name != nullptr;
    if (!IsTarget(*entity.type, form) ||
        (!m_isFormAlone && isNamed &&
         std::strcmp(m_source.At(attributes.name->value), entity.name) != 0))
        return false;
    if (form.isInSet)
        m_listed.push_back(target);
    if (side != nullptr) {
        m_links.push_back({target, side->name});
        if (side->needsBack)
            m_backs.push_back({m_owner, target, side});
    }
    return true;
}

bool FormScan::IsTarget(const Class& type, Form& form)
{
    const auto known = std::find_if(form.targets.begin(), form.targets.end(),
                                    [&type](const Class* target) { return target == &type; });
    if (known != form.targets.end())
        return true;
    if (!type.IsA(form.item->target))
        return false;
    form.targets.push_back(&type);
    return true;
}

// The links of an entity; many of them are sorted.
std::span<FormScan::Link> FormScan::LinksOf(std::uint32_t entity)
{
    const std::size_t begin = m_entities[entity].links;
    const std::size_t end =
        entity + 1 < m_entities.size() ? m_entities[entity + 1].links : m_links.size();
    return {m_links.data() + begin, end - begin};
}

// True when all links that must be returned are.
bool FormScan::CheckBacks()
{
    constexpr std::size_t fewLinks = 16;
    for (std::uint32_t entity = 0; entity < m_entities.size(); ++entity)
        if (LinksOf(entity).size() > fewLinks)
            std::sort(LinksOf(entity).begin(), LinksOf(entity).end());
    return std::all_of(m_backs.begin(), m_backs.end(), [this](const Back& back) {
        const std::span<const Link> links = LinksOf(back.target);
        auto link = links.begin();
        if (links.size() > fewLinks)
            link = std::lower_bound(links.begin(), links.end(), Link{back.owner, 0});
        const auto& names = back.side->backNames;
        for (; link != links.end(); ++link) {
            if (link->target == back.owner &&
                std::find(names.begin(), names.end(), link->name) != names.end())
                return true;
            if (links.size() > fewLinks && link->target != back.owner)
                return false;
        }
        return false;
    });
}

} // namespace karmp::documents
