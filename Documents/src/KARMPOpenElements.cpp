#include "KARMPOpenElements.h"

#include "KARMPTextEscapes.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace karmp::documents {

namespace {

bool EndsName(char byte)
{
    return byte == '\0' || byte == '>' || byte == '/' || byte == '=' || byte == '<' ||
           Blanks.find(byte) != std::string_view::npos;
}

} // namespace

// The parser puts nulls in place of what ends a name, a value or a text; end tags stay as they are
// but for the "<" behind a text.
OpenElements::OpenElements(const pugi::xml_document& parsed, std::string_view text,
                           std::size_t fault)
    : m_text(text)
{
    const std::size_t end = std::min(fault + 2, text.size());
    for (std::size_t at = Descend(parsed); at < end && m_met.empty(); ++at) {
        const bool isBehindBracket = at > 0 && (text[at - 1] == '<' || text[at - 1] == '\0');
        if (!isBehindBracket)
            continue;
        if (text.substr(at).starts_with("!--"))
            at = std::min(text.find("-->", at), end);
        else if (text[at] == '?')
            at = std::min(text.find("?>", at), end);
        else if (text[at] == '/' && at + 1 < text.size() && !EndsName(text[at + 1]))
            Close(NameAt(at + 1));
    }
    if (m_met.empty() && m_lastLooksClosed && !m_open.empty())
        m_open.pop_back();
}

// Goes down along the last elements, of which some are closed, and gives the offset behind what the
// parser has read of the last one.
std::size_t OpenElements::Descend(const pugi::xml_document& parsed)
{
    const auto offsetOf = [this](const char* place) {
        const auto offset = static_cast<std::size_t>(place - m_text.data());
        return std::less_equal<const char*>()(m_text.data(), place) && offset <= m_text.size()
                   ? offset
                   : m_text.size();
    };
    const auto behind = [&](const char* place) { return offsetOf(place) + std::strlen(place); };
    pugi::xml_node last;
    for (pugi::xml_node child = parsed.last_child(); child.type() == pugi::node_element;
         child = child.last_child()) {
        last = child;
        const std::size_t offset = offsetOf(child.name());
        if (offset < m_text.size())
            m_open.push_back({NameAt(offset), offset});
    }
    if (!last)
        return m_text.size();
    std::size_t end = behind(last.name());
    if (const pugi::xml_attribute attribute = last.last_attribute())
        end = std::max(end, std::min(behind(attribute.value()), m_text.size() - 1));
    m_lastLooksClosed = LooksClosed(last);
    const char* const text = last.last_child() ? last.last_child().value() : last.value();
    if (*text != '\0') {
        m_lastLooksClosed = false;
        end = behind(text);
    }
    return end + (*text != '\0' ? 1 : 0);
}

std::string OpenElements::NameAt(std::size_t offset) const
{
    constexpr std::size_t longest = 100;
    const std::string_view rest = m_text.substr(offset, longest);
    return std::string(rest.begin(), std::find_if(rest.begin(), rest.end(), EndsName));
}

// "<A/>" without attributes has become "<A", null, ">"; with attributes the slash is still there.
bool OpenElements::LooksClosed(const pugi::xml_node& element) const
{
    if (element.first_child())
        return false;
    const pugi::xml_attribute attribute = element.last_attribute();
    const char* const last = attribute ? attribute.value() : element.name();
    const char* place = last + std::strlen(last) + 1;
    const char* const end = m_text.data() + m_text.size();
    if (!std::less<const char*>()(place, end) ||
        !std::less_equal<const char*>()(m_text.data(), place))
        return false;
    while (attribute && place != end && Blanks.find(*place) != std::string_view::npos)
        ++place;
    return place != end && *place == (attribute ? '/' : '>');
}

void OpenElements::Close(const std::string& name)
{
    if (m_lastLooksClosed && !m_open.empty() && m_open.back().name != name)
        m_open.pop_back();
    m_lastLooksClosed = false;
    if (!m_open.empty() && m_open.back().name == name)
        m_open.pop_back();
    else
        m_met = name;
}

} // namespace karmp::documents
