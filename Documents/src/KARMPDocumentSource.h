// What the nodes of a document refer to: its bytes and the memory that the nodes stand in.
#pragma once

#include "KARMPNodeMemory.h"
#include "KARMPSourceText.h"

#include <string>

namespace karmp::documents {

class DocumentSource final : public NodeMemory
{
public:
    /// The bytes, which a parser may change once their lines are found.
    std::string& Text() { return m_text; }
    /// Finds the lines of at most 4 GiB less one.
    void FindLines() { m_lines = SourceText(m_text); }
    const SourceText& Lines() const { return m_lines; }

private:
    std::string m_text;
    SourceText m_lines;
};

} // namespace karmp::documents
