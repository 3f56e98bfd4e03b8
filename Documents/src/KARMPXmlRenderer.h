// Renders a tree of writer nodes as XML, straight into bytes.
#pragma once

#include "KARMPDocumentWriter.h"
#include "KARMPMessages.h"

#include <string>
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
    };

    static const Node* Child(const Node& node, std::size_t index);
    static bool IsRoot(const Node& node);
    static bool IsLeaf(const Node& node);
    static bool IsGroupOfNumbers(const Node& node);
    bool Open(const Node& node);
    void Close();
    bool Name(std::wstring_view name, std::string_view what);
    void ElementName(const Node& node);
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
};

} // namespace karmp::documents
