#include "KARMPIdentifiers.h"

#include "KARMPTextEscapes.h"

namespace karmp::documents {

namespace {

// The form of a text that needs decoding has an escape or a character beyond ASCII, so that it
// differs from every text that needs none.
std::string FormOf(std::wstring_view text)
{
    std::string form;
    AppendEscaped(form, text, TextContext::Attribute);
    return form;
}

} // namespace

std::optional<std::uint32_t> Identifiers::Of(const KARMPDeserializer& node,
                                             std::wstring_view attribute)
{
    karmp::ReadText text;
    if (!node.HasAttribute(attribute) || KARFailed(node.GetAttribute(attribute, text)))
        return {};
    if (text.IsAscii())
        return m_numbers.try_emplace(text.Ascii(), Count()).first->second;
    const std::string form = FormOf(text.View());
    const auto known = m_numbers.find(form);
    if (known != m_numbers.end())
        return known->second;
    return m_numbers.try_emplace(m_texts.emplace_back(form), Count()).first->second;
}

bool Identifiers::Know(std::wstring_view identifier) const
{
    return m_numbers.find(FormOf(identifier)) != m_numbers.end();
}

} // namespace karmp::documents
