#include "KARMPXmlRenderer.h"

#include "KARMPDocumentNames.h"
#include "KARMPListedEntities.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_set>
#include <utility>

namespace karmp::documents {

namespace {

using Type = KARMPSerializationVariable::Type;

// Deeper elements are not indented further, so that the text of a deep tree stays linear.
constexpr std::size_t DeepestIndentation = 100;
constexpr std::array<char, 1 + DeepestIndentation> LineStart = [] {
    std::array<char, 1 + DeepestIndentation> line{};
    line.fill(' ');
    line.front() = '\n';
    return line;
}();
// An axis system is the largest group of numbers on one line.
constexpr std::size_t LargestGroup = 12;
// Up to this many attributes are compared by pairs.
constexpr std::size_t FewAttributes = 8;
// The elements above that of an entity: the root, the world and the list of a family.
constexpr std::size_t EntityDepth = 3;

} // namespace

const XmlRenderer::Node* XmlRenderer::Child(const Node& node, std::size_t index)
{
    return static_cast<const Node*>(node.GetElement(static_cast<int>(index)));
}

bool XmlRenderer::IsRoot(const Node& node)
{
    return node.GetId().empty();
}

bool XmlRenderer::IsLeaf(const Node& node)
{
    return node.GetElementCount() == 0;
}

bool XmlRenderer::IsGroupOfNumbers(const Node& node)
{
    const std::size_t count = node.GetElementCount();
    if (count == 0 || count > LargestGroup || node.GetType() != Type::None)
        return false;
    for (std::size_t index = 0; index < count; ++index) {
        const Node* const child = Child(node, index);
        const Type type = child->GetType();
        if ((type != Type::Double && type != Type::Int) || !IsLeaf(*child) ||
            child->GetAttributeCount() != 0)
            return false;
    }
    return true;
}

bool XmlRenderer::Render(const Node& node)
{
    const bool rendered = Begin(node) && RenderDownTo(0) && End();
    return rendered || Report();
}

std::optional<std::size_t> XmlRenderer::RenderChildren(const Node& root, const Node& node)
{
    if (m_failure)
        return std::nullopt;
    const auto isNode = [&node](const Level& level) { return level.node == &node; };
    auto found = std::find_if(m_levels.begin(), m_levels.end(), isNode);
    if (found == m_levels.end()) {
        if (IsLeaf(node))
            return std::nullopt;
        const std::vector<const Node*> nodes = NodesToOpen(root, node);
        if (nodes.empty() || !OpenAll(nodes))
            return std::nullopt;
        found = m_levels.end() - 1;
    }
    const auto depth = static_cast<std::size_t>(found - m_levels.begin());
    if (!RenderDownTo(depth + 1))
        return std::nullopt;
    Count(depth);
    return depth;
}

bool XmlRenderer::BeginChild(const Node& root, const Node& node)
{
    if (m_failure)
        return false;
    if (m_levels.empty() || m_levels.back().node != &node) {
        const std::vector<const Node*> nodes = NodesToOpen(root, node);
        if (nodes.empty() || !OpenAll(nodes))
            return false;
    }
    const Level& level = m_levels.back();
    return !level.oneLine && level.next == node.GetElementCount();
}

void XmlRenderer::EndChild(std::wstring_view name)
{
    m_gone.resize(m_levels.size());
    m_gone.back().Add(name);
}

std::string XmlRenderer::ChildPath(std::wstring_view name) const
{
    std::string path = Path() + '/';
    AppendUtf8(path, name);
    const std::size_t number = m_gone.back().CountOf(name);
    return number > 1 ? path + '[' + std::to_string(number) + ']' : path;
}

bool XmlRenderer::Finish(const Node& root)
{
    if (!m_failure && (!m_levels.empty() || Begin(root)) && RenderDownTo(0) && End())
        return true;
    // The first failure in document order is reported: an element that was still open may have got
    // a wrong attribute since.
    for (const Level& level : std::exchange(m_levels, {})) {
        m_levels.push_back(level);
        if (!Start(*level.node))
            break;
    }
    return Report();
}

bool XmlRenderer::Begin(const Node& node)
{
    if (IsRoot(node))
        m_out.Put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    return Open(node);
}

// Writes the content of the open elements until `count` of them are open and the innermost one has
// no more children.
bool XmlRenderer::RenderDownTo(std::size_t count)
{
    while (!m_levels.empty()) {
        Level& level = m_levels.back();
        if (level.next == level.node->GetElementCount()) {
            if (m_levels.size() == count)
                return true;
            if (!Close())
                return false;
        } else {
            const Node* const child = Child(*level.node, level.next++);
            if (!level.oneLine)
                NewLine();
            if (!Open(*child))
                return false;
        }
    }
    return true;
}

bool XmlRenderer::End()
{
    m_out.Put('\n');
    m_out.Trim();
    if (m_out.Size() > m_limits.bytes) {
        return Fail(Code::TooLarge, "the document is larger than the limit of " +
                                        std::to_string(m_limits.bytes) + " bytes");
    }
    return true;
}

// The elements to open before the children of `node` can be written, from the outermost one; none
// when content before `node` may still change, or when it is not known yet whether its children are
// written on one line.
std::vector<const XmlRenderer::Node*> XmlRenderer::NodesToOpen(const Node& root,
                                                               const Node& node) const
{
    if (IsGroupOfNumbers(node))
        return {};
    std::vector<const Node*> nodes;
    const Node* last = &root;
    std::size_t rendered = 0;
    if (m_levels.empty()) {
        nodes.push_back(&root);
    } else {
        last = m_levels.back().node;
        rendered = m_levels.back().next;
    }
    while (last != &node) {
        if (last->GetElementCount() <= rendered)
            return {};
        last = Child(*last, rendered);
        rendered = 0;
        nodes.push_back(last);
    }
    return nodes;
}

bool XmlRenderer::OpenAll(const std::vector<const Node*>& nodes)
{
    for (const Node* const node : nodes) {
        bool opened = false;
        if (m_levels.empty()) {
            opened = Begin(*node);
        } else {
            ++m_levels.back().next;
            NewLine();
            opened = OpenElement(*node);
        }
        if (!opened)
            return false;
    }
    return true;
}

// Counts the written children of an open element by name: the children may have been freed when a
// message numbers them.
void XmlRenderer::Count(std::size_t depth)
{
    m_gone.resize(depth + 1);
    Gone& gone = m_gone[depth];
    const Level& level = m_levels[depth];
    for (; gone.count < level.next; ++gone.count)
        gone.Add(Child(*level.node, gone.count)->GetId());
}

void XmlRenderer::Gone::Add(std::wstring_view name)
{
    const auto known = std::find_if(names.rbegin(), names.rend(),
                                    [name](const auto& entry) { return entry.first == name; });
    if (known != names.rend())
        ++known->second;
    else
        names.emplace_back(name, 1);
}

std::size_t XmlRenderer::Gone::CountOf(std::wstring_view name) const
{
    const auto known = std::find_if(names.begin(), names.end(),
                                    [name](const auto& entry) { return entry.first == name; });
    return known != names.end() ? known->second : 0;
}

// Writes an element that holds only a value and has a known name, as most do; false for any other.
bool XmlRenderer::PutLeaf(const Node& node)
{
    if (!IsLeaf(node) || node.GetAttributeCount() != 0 || node.GetType() == Type::None ||
        m_levels.size() >= m_limits.depth)
        return false;
    const std::wstring_view id = node.GetId();
    const KnownName& name = EntryOf(id);
    if (id.empty() || name.name != id)
        return false;
    m_out.Put('<');
    m_out.Put(name.Bytes());
    m_out.Put('>');
    Value(node);
    m_out.Put(name.endTag);
    return true;
}

// Writes a leaf as a whole, any other element up to its first child.
bool XmlRenderer::Open(const Node& node)
{
    if (PutLeaf(node))
        return true;
    if (!IsLeaf(node))
        return OpenElement(node);
    m_levels.push_back({&node, 0, 0, 0, false});
    if (!Start(node))
        return false;
    bool closed = true;
    if (node.GetType() == Type::None) {
        m_out.Put("/>");
    } else {
        m_out.Put('>');
        Value(node);
        closed = EndTag(node);
    }
    m_levels.pop_back();
    return closed;
}

bool XmlRenderer::OpenElement(const Node& node)
{
    m_levels.push_back({&node, 0, 0, 0, false});
    if (!Start(node))
        return false;
    Level& level = m_levels.back();
    level.attributes = node.GetAttributeCount();
    level.attributesEnd = m_out.Size();
    level.oneLine = IsGroupOfNumbers(node);
    m_out.Put('>');
    Value(node);
    return true;
}

// Writes the start tag of the innermost element without its closing ">".
bool XmlRenderer::Start(const Node& node)
{
    if (m_levels.size() > m_limits.depth) {
        return Fail(Code::TooDeep,
                    "an element stands deeper than the limit of " + std::to_string(m_limits.depth));
    }
    m_out.Put('<');
    if (IsRoot(node)) {
        if (m_levels.size() > 1)
            return Fail(Code::InvalidName, "an element has no name");
        m_out.Put(RootName);
        m_out.Put(" version=\"");
        Text(node.Version(), TextContext::Attribute);
        m_out.Put('"');
    } else if (const KnownName* const name = Known(node.GetId(), "element")) {
        m_out.Put(name->Bytes());
    } else {
        return false;
    }
    return Attributes(node, 0);
}

bool XmlRenderer::Close()
{
    const Level level = m_levels.back();
    if (level.node->GetAttributeCount() != level.attributes && !InsertAttributes(level))
        return false;
    m_levels.pop_back();
    m_gone.resize(std::min(m_gone.size(), m_levels.size()));
    if (!level.oneLine)
        NewLine();
    return EndTag(*level.node);
}

// Moves the attributes that were added after an element's start tag was written to the others.
bool XmlRenderer::InsertAttributes(const Level& level)
{
    const std::size_t before = m_out.Size();
    if (!Attributes(*level.node, level.attributes))
        return false;
    std::rotate(m_out.At(level.attributesEnd), m_out.At(before), m_out.At(m_out.Size()));
    return true;
}

// Begins a line at the indentation of the children of the innermost open element.
void XmlRenderer::NewLine()
{
    constexpr std::string_view line(LineStart.data(), LineStart.size());
    m_out.Put(line.substr(0, 1 + std::min(m_levels.size(), DeepestIndentation)));
}

bool XmlRenderer::EndTag(const Node& node)
{
    if (IsRoot(node)) {
        m_out.Put("</");
        m_out.Put(RootName);
        m_out.Put('>');
        return true;
    }
    const KnownName* const name = Known(node.GetId(), "element");
    if (name != nullptr)
        m_out.Put(name->endTag);
    return name != nullptr;
}

// The entry of a name, which may hold another name.
XmlRenderer::KnownName& XmlRenderer::EntryOf(std::wstring_view name)
{
    const auto address = reinterpret_cast<std::uintptr_t>(name.data());
    return m_names[(address >> 4U ^ address >> 12U) % m_names.size()];
}

// A name in its forms, valid until the next call; null after an error.
const XmlRenderer::KnownName* XmlRenderer::Known(std::wstring_view name, std::string_view what)
{
    KnownName& known = EntryOf(name);
    if (known.name == name && !name.empty())
        return &known;
    known.name.clear();
    return CheckName(name, what, known) ? &known : nullptr;
}

bool XmlRenderer::CheckName(std::wstring_view name, std::string_view what, KnownName& known)
{
    if (!IsXmlName(name)) {
        return Fail(Code::InvalidName,
                    "the " + std::string(what) + " name " + Quoted(name) + " is no XML name");
    }
    std::string bytes;
    AppendUtf8(bytes, name);
    if (bytes.size() > m_limits.nameLength) {
        return Fail(Code::NameTooLong, "the " + std::string(what) + " name " + Quoted(name) +
                                           " is longer than the limit of " +
                                           std::to_string(m_limits.nameLength) + " bytes");
    }
    known.length = bytes.size();
    known.endTag = "</" + bytes + '>';
    known.attribute = ' ' + bytes + "=\"";
    known.name = name;
    return true;
}

bool XmlRenderer::Attributes(const Node& node, std::size_t first)
{
    const std::size_t count = node.GetAttributeCount();
    for (std::size_t number = first; number < count; ++number) {
        const int index = static_cast<int>(number);
        const KnownName* const name = Known(node.GetAttributeId(index), "attribute");
        if (name == nullptr)
            return false;
        m_out.Put(name->attribute);
        switch (node.GetAttributeType(index)) {
        case Type::Bool:
            m_out.Put(node.GetAttributeValueb(index) ? "true" : "false");
            break;
        case Type::Int:
            m_out.PutNumber(node.GetAttributeValuei(index));
            break;
        case Type::Double:
            Number(node.GetAttributeValued(index), node, node.GetAttributeId(index));
            break;
        case Type::String:
            Text(node.GetAttributeValues(index), TextContext::Attribute);
            break;
        case Type::None:
            break;
        }
        m_out.Put('"');
    }
    return !FindDuplicateAttribute(node);
}

bool XmlRenderer::FindDuplicateAttribute(const Node& node)
{
    const std::size_t count = node.GetAttributeCount();
    const auto nameOf = [&node](std::size_t index) {
        return node.GetAttributeId(static_cast<int>(index));
    };
    const auto fail = [this, &nameOf](std::size_t index) {
        Fail(Code::DuplicateAttribute, "the attribute " + Quoted(nameOf(index)) + " stands twice");
        return true;
    };
    if (!IsRoot(node) && count <= FewAttributes) {
        for (std::size_t index = 1; index < count; ++index) {
            for (std::size_t former = 0; former < index; ++former)
                if (nameOf(former) == nameOf(index))
                    return fail(index);
        }
        return false;
    }
    std::unordered_set<std::wstring_view> names;
    names.reserve(count + 1);
    // The version is written by the root itself.
    if (IsRoot(node))
        names.insert(VersionName);
    for (std::size_t index = 0; index < count; ++index)
        if (!names.insert(nameOf(index)).second)
            return fail(index);
    return false;
}

void XmlRenderer::Text(std::wstring_view text, TextContext context)
{
    if (!m_out.PutPlain(text))
        m_out.AppendBy([&](std::string& bytes) { AppendEscaped(bytes, text, context); });
}

void XmlRenderer::Value(const Node& node)
{
    switch (node.GetType()) {
    case Type::Bool:
        m_out.Put(node.GetValueb() ? "true" : "false");
        break;
    case Type::Int:
        m_out.PutNumber(node.GetValuei());
        break;
    case Type::Double:
        Number(node.GetValued(), node, {});
        break;
    case Type::String:
        Text(node.GetValues(), TextContext::Element);
        break;
    case Type::None:
        break;
    }
}

void XmlRenderer::Number(double number, const Node& node, std::wstring_view attribute)
{
    m_out.PutNumber(number);
    if (m_numbers != nullptr && !std::isfinite(number) && !m_numbers->Full())
        LocateNumber(number, node, attribute);
}

void XmlRenderer::LocateNumber(double number, const Node& node, std::wstring_view attribute)
{
    const bool isLeaf = m_levels.empty() || m_levels.back().node != &node;
    if (isLeaf)
        m_levels.push_back({&node, 0, 0, 0, false});
    std::string path = Path();
    const std::string title = EntityTitle();
    if (isLeaf)
        m_levels.pop_back();
    if (!attribute.empty()) {
        path += "/@";
        AppendUtf8(path, attribute);
    }
    TellOfNumber(std::isnan(number), title, std::move(path));
}

// The last name of the path is what holds the number.
void XmlRenderer::TellOfNumber(bool isNan, const std::string& title, std::string path)
{
    if (m_numbers->Full())
        return;
    std::string name = path.substr(path.find_last_of("/@") + 1);
    name.resize(std::min(name.size(), name.find('[')));
    m_numbers->Warning(Code::NotFinite,
                       title + ": \"" + name + (isNan ? "\" is no number" : "\" is infinite"),
                       std::move(path));
}

// The entity that is being written, or the world around the lists of entities.
std::string XmlRenderer::EntityTitle() const
{
    if (m_levels.size() <= EntityDepth)
        return "World";
    const Node& node = *m_levels[EntityDepth].node;
    const auto attribute = [&node](std::wstring_view name) {
        for (int index = 0; index < static_cast<int>(node.GetAttributeCount()); ++index)
            if (node.GetAttributeId(index) == name)
                return node.GetAttributeValues(index);
        return std::wstring_view();
    };
    const std::wstring_view identifier = attribute(L"id");
    return identifier.empty() ? "World" : TitleOf(node.GetId(), attribute(L"name"), identifier);
}

bool XmlRenderer::Fail(Code code, std::string text)
{
    m_failure = {code, std::move(text)};
    return false;
}

bool XmlRenderer::Report()
{
    m_messages.Error(m_failure->code, m_failure->text, Path());
    return false;
}

// The path of the element that is being written.
std::string XmlRenderer::Path() const
{
    constexpr std::size_t longest = 64;
    std::string path;
    for (std::size_t depth = 0; depth < m_levels.size() && depth < longest; ++depth) {
        const Node& node = *m_levels[depth].node;
        path += '/';
        if (IsRoot(node) && depth == 0) {
            path += RootName;
            continue;
        }
        AppendUtf8(path, node.GetId());
        if (depth == 0)
            continue;
        const Node& parent = *m_levels[depth - 1].node;
        std::size_t number = 0;
        std::size_t total = 0;
        std::size_t index = 0;
        if (depth <= m_gone.size()) {
            const Gone& gone = m_gone[depth - 1];
            index = gone.count;
            total = gone.CountOf(node.GetId());
        }
        for (; index < parent.GetElementCount(); ++index) {
            const Node* const sibling = Child(parent, index);
            total += sibling->GetId() == node.GetId() ? 1U : 0U;
            if (sibling == &node)
                number = total;
        }
        if (total > 1)
            path += '[' + std::to_string(number) + ']';
    }
    return m_levels.size() > longest ? path + "/..." : path;
}

} // namespace karmp::documents
