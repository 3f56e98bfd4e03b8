// Renders a tree of writer nodes as XML, straight into bytes.
#pragma once

#include "KARMPDocumentWriter.h"
#include "KARMPMessages.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// One blank of indentation a level; an element of a few numbers stands on one line.
class XmlRenderer
{
public:
    XmlRenderer(std::string& bytes, const Limits& limits, Messages& messages)
        : m_bytes(bytes), m_limits(limits), m_messages(messages)
    {}

    /// Appends the form of a node: a document for a root, otherwise the element. False after an
    /// error, with some of it appended.
    bool Render(const KARMPDocumentWriter& node);

private:
    using Node = KARMPDocumentWriter;
    struct Level
    {
        const Node* node;
        std::size_t next;
        bool oneLine;
        /// Where the name stands in the bytes, for the end tag.
        std::size_t name;
        std::size_t nameLength;
    };
    /// A name that was checked and converted, known by the place of its characters: the tree does
    /// not change while it is rendered, and equal names mostly share theirs.
    struct KnownName
    {
        const wchar_t* place = nullptr;
        std::size_t length = 0;
        std::string bytes;
    };

    static const Node* Child(const Node& node, std::size_t index);
    static bool IsRoot(const Node& node);
    static bool IsLeaf(const Node& node);
    static bool IsGroupOfNumbers(const Node& node);
    bool Open(const Node& node);
    void Close();
    bool Name(std::wstring_view name, std::string_view what);
    bool CheckName(std::wstring_view name, std::string_view what, std::string& bytes);
    void EndTag(const Level& level);
    bool Attributes(const Node& node);
    bool FindDuplicateAttribute(const Node& node);
    template <class Kind>
    void Number(Kind value);
    void Value(const Node& node);
    void NewLine();
    bool Fail(Code code, std::string text);
    std::string Path() const;

    std::string& m_bytes;
    const Limits& m_limits;
    Messages& m_messages;
    std::vector<Level> m_levels;
    std::array<KnownName, 256> m_names;
};

} // namespace karmp::documents
