#pragma once

#include <pugixml.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// The elements that are open where the XML parser found a fault, from what it had read until then.
class OpenElements
{
public:
    struct Element
    {
        std::string name;
        /// The offset of the name in the start tag.
        std::size_t offset;
    };

    /// `text` is what the parser has read and changed, `fault` the offset of the fault.
    OpenElements(const pugi::xml_document& parsed, std::string_view text, std::size_t fault);

    /// The root first.
    const std::vector<Element>& Open() const { return m_open; }
    /// The name of the end tag at the fault that closes none of them; empty when there is none.
    const std::string& Met() const { return m_met; }

private:
    std::size_t Descend(const pugi::xml_document& parsed);
    std::string NameAt(std::size_t offset) const;
    bool LooksClosed(const pugi::xml_node& element) const;
    void Close(const std::string& name);

    std::string_view m_text;
    std::vector<Element> m_open;
    std::string m_met;
    bool m_lastLooksClosed = false;
};

} // namespace karmp::documents
