#pragma once

#include "KARMPByteBuffer.h"
#include "KARMPDocumentWriter.h"
#include "KARMPMessages.h"
#include "KARMPTextEscapes.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace karmp::documents {

/// Renders a tree of writer nodes as XML, directly into bytes. Each level is indented by one blank;
/// an element of a few numbers is on one line.
class XmlRenderer
{
public:
    /// A number that is not finite is a warning among `numbers`, unless that is null.
    XmlRenderer(std::string& bytes, const Limits& limits, Messages& messages,
                Messages* numbers = nullptr)
        : m_out(bytes), m_limits(limits), m_messages(messages), m_numbers(numbers)
    {}

    using Node = KARMPDocumentWriter;

    /// Appends the form of a node: a document for a root, otherwise the element. False after an
    /// error, with some of it appended.
    bool Render(const Node& node);

    /// Renders a tree that is still written up to the end of the children of a node, which may be
    /// freed then, and gives the node's depth below the root. Empty after an error, which Finish
    /// reports, or when content before the children may still change.
    std::optional<std::size_t> RenderChildren(const Node& root, const Node& node);
    /// Lets the text of a further child of a node be appended to Out: false when what is before it
    /// may still change, or after an error.
    bool BeginChild(const Node& root, const Node& node);
    /// The text so far.
    ByteBuffer& Out() { return m_out; }
    /// The depth of such a child below the root.
    std::size_t ChildDepth() const { return m_levels.size(); }
    /// Such a child of a name was appended.
    void EndChild(std::wstring_view name);
    /// The path of the last one.
    std::string ChildPath(std::wstring_view name) const;
    /// Warns of a number at a path that is not finite; `title` is that of its entity.
    void TellOfNumber(bool isNan, const std::string& title, std::string path);
    /// Appends the rest of the tree. False after an error, with some of it appended.
    bool Finish(const Node& root);

private:
    /// An open element: which child comes next, how many attributes have been written and where
    /// they end.
    struct Level
    {
        const Node* node;
        std::size_t next;
        std::size_t attributes;
        std::size_t attributesEnd;
        bool oneLine;
    };
    /// The children of an open element that may have been freed, and their number by name.
    struct Gone
    {
        std::size_t count = 0;
        std::vector<std::pair<std::wstring, std::size_t>> names;

        void Add(std::wstring_view name);
        std::size_t CountOf(std::wstring_view name) const;
    };
    struct Failure
    {
        Code code;
        std::string text;
    };
    /// A name that was checked and converted, in the forms in which it is written. Equal names
    /// usually share their characters' address, but another name may be stored there later.
    struct KnownName
    {
        std::string_view Bytes() const { return std::string_view(endTag).substr(2, length); }

        std::wstring name;
        std::size_t length = 0;
        std::string endTag;
        std::string attribute;
    };

    static const Node* Child(const Node& node, std::size_t index);
    static bool IsRoot(const Node& node);
    static bool IsLeaf(const Node& node);
    static bool IsGroupOfNumbers(const Node& node);
    bool Begin(const Node& node);
    bool RenderDownTo(std::size_t count);
    bool End();
    std::vector<const Node*> NodesToOpen(const Node& root, const Node& node) const;
    bool OpenAll(const std::vector<const Node*>& way);
    void Count(std::size_t depth);
    bool Open(const Node& node);
    bool OpenElement(const Node& node);
    bool PutLeaf(const Node& node);
    bool Start(const Node& node);
    bool Close();
    bool InsertAttributes(const Level& level);
    KnownName& EntryOf(std::wstring_view name);
    const KnownName* Known(std::wstring_view name, std::string_view what);
    bool CheckName(std::wstring_view name, std::string_view what, KnownName& known);
    bool EndTag(const Node& node);
    bool Attributes(const Node& node, std::size_t first);
    bool FindDuplicateAttribute(const Node& node);
    void Text(std::wstring_view text, TextContext context);
    void Value(const Node& node);
    void Number(double number, const Node& node, std::wstring_view attribute);
    void LocateNumber(double number, const Node& node, std::wstring_view attribute);
    std::string EntityTitle() const;
    void NewLine();
    bool Fail(Code code, std::string text);
    bool Report();
    std::string Path() const;

    ByteBuffer m_out;
    const Limits& m_limits;
    Messages& m_messages;
    Messages* m_numbers;
    std::vector<Level> m_levels;
    std::vector<Gone> m_gone;
    std::optional<Failure> m_failure;
    std::array<KnownName, 256> m_names;
};

} // namespace karmp::documents
