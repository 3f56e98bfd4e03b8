#include "KARMPXmlRenderer.h"

#include "KARMPDocumentNames.h"

#include <algorithm>
#include <cstdint>
#include <unordered_set>

namespace karmp::documents {

namespace {

using Type = KARMPSerializationVariable::Type;

// Deeper elements are not indented further, so that the text of a deep tree stays linear.
constexpr std::size_t DeepestIndentation = 100;
// An axis system is the largest group of numbers on one line.
constexpr std::size_t LargestGroup = 12;
// Up to this many attributes are compared by pairs.
constexpr std::size_t FewAttributes = 8;

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
    if (count == 0 || count > LargestGroup || node.GetType() != Type::None) {
        return false;
    }
    for (std::size_t index = 0; index < count; ++index) {
        const Node* const child = Child(node, index);
        const Type type = child->GetType();
        if ((type != Type::Double && type != Type::Int) || !IsLeaf(*child) ||
            child->GetAttributeCount() != 0) {
            return false;
        }
    }
    return true;
}

bool XmlRenderer::Render(const KARMPDocumentWriter& node)
{
    if (IsRoot(node)) {
        m_out.Put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    }
    if (!Open(node)) {
        return false;
    }
    while (!m_levels.empty()) {
        Level& level = m_levels.back();
        if (level.next == level.node->GetElementCount()) {
            if (!Close()) {
                return false;
            }
        } else {
            const Node* const child = Child(*level.node, level.next++);
            if (!level.oneLine) {
                NewLine();
            }
            if (!Open(*child)) {
                return false;
            }
        }
    }
    m_out.Put('\n');
    if (m_out.Flushed().size() > m_limits.bytes) {
        return Fail(Code::TooLarge, "the document is larger than the limit of " +
                                        std::to_string(m_limits.bytes) + " bytes");
    }
    return true;
}

// Writes a leaf whole; of any other element all up to its first child.
bool XmlRenderer::Open(const Node& node)
{
    m_levels.push_back({&node, 0, false});
    if (m_levels.size() > m_limits.depth) {
        return Fail(Code::TooDeep,
                    "an element stands deeper than the limit of " + std::to_string(m_limits.depth));
    }
    m_out.Put('<');
    if (IsRoot(node)) {
        if (m_levels.size() > 1) {
            return Fail(Code::InvalidName, "an element has no name");
        }
        m_out.Put(RootName);
        m_out.Put(" version=\"");
        Text(node.Version(), TextPlace::Attribute);
        m_out.Put('"');
    } else if (!Name(node.GetId(), "element")) {
        return false;
    }
    if (!Attributes(node)) {
        return false;
    }
    if (!IsLeaf(node)) {
        m_out.Put('>');
        Value(node);
        m_levels.back().oneLine = IsGroupOfNumbers(node);
        return true;
    }
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

bool XmlRenderer::Close()
{
    const Level level = m_levels.back();
    m_levels.pop_back();
    if (!level.oneLine) {
        NewLine();
    }
    return EndTag(*level.node);
}

// At the indentation of what stands under the innermost open element.
void XmlRenderer::NewLine()
{
    m_out.Put('\n');
    m_out.PutBlanks(std::min(m_levels.size(), DeepestIndentation));
}

bool XmlRenderer::EndTag(const Node& node)
{
    m_out.Put("</");
    if (IsRoot(node)) {
        m_out.Put(RootName);
    } else if (!Name(node.GetId(), "element")) {
        return false;
    }
    m_out.Put('>');
    return true;
}

bool XmlRenderer::Name(std::wstring_view name, std::string_view what)
{
    const std::string* const bytes = NameBytes(name, what);
    if (bytes != nullptr) {
        m_out.Put(*bytes);
    }
    return bytes != nullptr;
}

// The UTF-8 of a name, valid until the next call; null after an error.
const std::string* XmlRenderer::NameBytes(std::wstring_view name, std::string_view what)
{
    const auto place = reinterpret_cast<std::uintptr_t>(name.data());
    KnownName& known = m_names[(place >> 4U ^ place >> 12U) % m_names.size()];
    if (known.place != name.data() || known.length != name.size()) {
        known.place = nullptr;
        if (!CheckName(name, what, known.bytes)) {
            return nullptr;
        }
        known.place = name.data();
        known.length = name.size();
    }
    return &known.bytes;
}

bool XmlRenderer::CheckName(std::wstring_view name, std::string_view what, std::string& bytes)
{
    if (!IsXmlName(name)) {
        return Fail(Code::InvalidName,
                    "the " + std::string(what) + " name " + Quoted(name) + " is no XML name");
    }
    bytes.clear();
    AppendUtf8(bytes, name);
    if (bytes.size() > m_limits.nameLength) {
        return Fail(Code::NameTooLong, "the " + std::string(what) + " name " + Quoted(name) +
                                           " is longer than the limit of " +
                                           std::to_string(m_limits.nameLength) + " bytes");
    }
    return true;
}

bool XmlRenderer::Attributes(const Node& node)
{
    const std::size_t count = node.GetAttributeCount();
    for (std::size_t place = 0; place < count; ++place) {
        const int index = static_cast<int>(place);
        m_out.Put(' ');
        if (!Name(node.GetAttributeId(index), "attribute")) {
            return false;
        }
        m_out.Put("=\"");
        switch (node.GetAttributeType(index)) {
        case Type::Bool:
            m_out.Put(node.GetAttributeValueb(index) ? "true" : "false");
            break;
        case Type::Int:
            m_out.PutNumber(node.GetAttributeValuei(index));
            break;
        case Type::Double:
            m_out.PutNumber(node.GetAttributeValued(index));
            break;
        case Type::String:
            Text(node.GetAttributeValues(index), TextPlace::Attribute);
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
            for (std::size_t earlier = 0; earlier < index; ++earlier) {
                if (nameOf(earlier) == nameOf(index)) {
                    return fail(index);
                }
            }
        }
        return false;
    }
    std::unordered_set<std::wstring_view> names;
    names.reserve(count + 1);
    // The version is written by the root itself.
    if (IsRoot(node)) {
        names.insert(VersionName);
    }
    for (std::size_t index = 0; index < count; ++index) {
        if (!names.insert(nameOf(index)).second) {
            return fail(index);
        }
    }
    return false;
}

void XmlRenderer::Text(std::wstring_view text, TextPlace place)
{
    if (!m_out.PutWord(text)) {
        AppendEscaped(m_out.Flushed(), text, place);
    }
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
        m_out.PutNumber(node.GetValued());
        break;
    case Type::String:
        Text(node.GetValues(), TextPlace::Element);
        break;
    case Type::None:
        break;
    }
}

bool XmlRenderer::Fail(Code code, std::string text)
{
    m_messages.Error(code, std::move(text), Path());
    return false;
}

// The way from the root to the element that is being written.
std::string XmlRenderer::Path() const
{
    constexpr std::size_t longest = 64;
    std::string path;
    for (std::size_t place = 0; place < m_levels.size() && place < longest; ++place) {
        const Node& node = *m_levels[place].node;
        path += '/';
        if (IsRoot(node) && place == 0) {
            path += RootName;
            continue;
        }
        AppendUtf8(path, node.GetId());
        if (place == 0) {
            continue;
        }
        const Node& parent = *m_levels[place - 1].node;
        std::size_t number = 0;
        std::size_t total = 0;
        for (std::size_t index = 0; index < parent.GetElementCount(); ++index) {
            const Node* const sibling = Child(parent, index);
            total += sibling->GetId() == node.GetId() ? 1U : 0U;
            if (sibling == &node) {
                number = total;
            }
        }
        if (total > 1) {
            path += '[' + std::to_string(number) + ']';
        }
    }
    return m_levels.size() > longest ? path + "/..." : path;
}

} // namespace karmp::documents
