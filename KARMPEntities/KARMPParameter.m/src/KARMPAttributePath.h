// Paths of attributes: one text after the other, in an array or between the dots of one text.
#pragma once

#include "KAROmxArray.h"
#include "KARString.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace karmp {

/// The elements of a path that is an array.
class ArrayPath
{
public:
    explicit ArrayPath(const KAROmxArray<KARString>& elements) : m_elements(elements) {}

    /// Gives the next element; false behind the last one.
    bool Next(std::string_view& element)
    {
        if (m_position >= m_elements.Size())
            return false;
        element = m_elements.GetR(++m_position).Text();
        return true;
    }

private:
    const KAROmxArray<KARString>& m_elements;
    int m_position = 0;
};

/// The elements of a path that is a text, between its dots. An empty text is an empty path; two
/// dots in a row have an empty element between them.
class TextPath
{
public:
    explicit TextPath(std::string_view text) : m_text(text), m_isAtEnd(text.empty()) {}

    /// Gives the next element; false behind the last one.
    bool Next(std::string_view& element)
    {
        if (m_isAtEnd)
            return false;
        const std::size_t end = std::min(m_text.find('.'), m_text.size());
        element = m_text.substr(0, end);
        m_isAtEnd = end == m_text.size();
        m_text.remove_prefix(m_isAtEnd ? end : end + 1);
        return true;
    }

private:
    std::string_view m_text;
    bool m_isAtEnd;
};

/// The elements of a path text as an array.
inline KAROmxArray<KARString> SplitPath(std::string_view text)
{
    KAROmxArray<KARString> elements;
    TextPath path(text);
    for (std::string_view element; path.Next(element);)
        elements.Append(KARString(element));
    return elements;
}

} // namespace karmp
