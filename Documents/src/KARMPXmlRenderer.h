// Renders a tree of writer nodes as XML, straight into bytes.
#pragma once

#include "KARMPByteBuffer.h"
#include "KARMPDocumentWriter.h"
#include "KARMPMessages.h"
#include "KARMPTextEscapes.h"

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
        : m_out(bytes), m_limits(limits), m_messages(messages)
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
    bool Close();
    const std::string* NameBytes(std::wstring_view name, std::string_view what);
    bool Name(std::wstring_view name, std::string_view what);
    bool CheckName(std::wstring_view name, std::string_view what, std::string& bytes);
    bool EndTag(const Node& node);
    bool Attributes(const Node& node);
    bool FindDuplicateAttribute(const Node& node);
    void Text(std::wstring_view text, TextPlace place);
    void Value(const Node& node);
    void NewLine();
    bool Fail(Code code, std::string text);
    std::string Path() const;

    ByteBuffer m_out;
    const Limits& m_limits;
    Messages& m_messages;
    std::vector<Level> m_levels;
    std::array<KnownName, 256> m_names;
};

} // namespace karmp::documents
