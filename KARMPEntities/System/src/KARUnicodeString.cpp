#include "KARUnicodeString.h"

#include "KARNumberFormat.h"
#include "KARTextConversion.h"

#include <optional>

namespace {

int Build(std::string& text, std::optional<std::string> printed)
{
    if (!printed)
        return 0;
    text = std::move(*printed);
    return 1;
}

// All conversions of a double scan alike, whatever letter they have.
bool ScansDouble(std::string_view format)
{
    return format.size() == 3 && format.substr(0, 2) == "%l" &&
           std::string_view("aefgAEFG").find(format[2]) != std::string_view::npos;
}

} // namespace

int KARUnicodeString::BuildFromNum(int number, const char* format)
{
    const std::optional<kar::NumberFormat> parsed = kar::ParseNumberFormat(format);
    const bool negative = number < 0;
    const auto bits = static_cast<unsigned int>(number);
    return parsed ? Build(m_text, kar::PrintInteger(*parsed, negative, negative ? 0U - bits : bits))
                  : 0;
}

int KARUnicodeString::BuildFromNum(unsigned int number, const char* format)
{
    const std::optional<kar::NumberFormat> parsed = kar::ParseNumberFormat(format);
    return parsed ? Build(m_text, kar::PrintInteger(*parsed, false, number)) : 0;
}

int KARUnicodeString::BuildFromNum(double number, const char* format)
{
    const std::optional<kar::NumberFormat> parsed = kar::ParseNumberFormat(format);
    return parsed ? Build(m_text, kar::PrintDouble(*parsed, number)) : 0;
}

int KARUnicodeString::BuildFromWChar(const wchar_t* text)
{
    m_text = text ? kar::ToUtf8(text) : std::string();
    return text ? 1 : 0;
}

int KARUnicodeString::BuildFromWChar(std::wstring_view text)
{
    m_text = kar::ToUtf8(text);
    return 1;
}

int KARUnicodeString::ConvertToNum(int* number, const char* format) const
{
    if (number == nullptr || std::string_view(OrEmpty(format)) != "%d")
        return 0;
    return kar::ScanInt(std::string_view(m_text), *number);
}

int KARUnicodeString::ConvertToNum(double* number, const char* format) const
{
    if (number == nullptr || !ScansDouble(OrEmpty(format)))
        return 0;
    return kar::ScanDouble(std::string_view(m_text), *number);
}

std::size_t KARUnicodeString::ConvertToWChar(wchar_t* buffer) const
{
    if (buffer == nullptr)
        return 0;
    const std::wstring wide = kar::ToWide(m_text);
    wide.copy(buffer, wide.size());
    buffer[wide.size()] = L'\0';
    return wide.size();
}

std::wstring KARUnicodeString::ConvertToWString() const
{
    return kar::ToWide(m_text);
}

std::size_t KARUnicodeString::GetLengthInChar() const
{
    return kar::WideLength(m_text);
}

int KARUnicodeString::ReplaceAll(const KARUnicodeString& search,
                                 const KARUnicodeString& replacement)
{
    if (search.m_text.empty())
        return 0;
    std::string result;
    int count = 0;
    std::size_t from = 0;
    for (;;) {
        const std::size_t found = m_text.find(search.m_text, from);
        result.append(m_text, from, found - from);
        if (found == std::string::npos)
            break;
        result += replacement.m_text;
        from = found + search.m_text.size();
        ++count;
    }
    // Only now, since either argument may be this very text.
    m_text = std::move(result);
    return count;
}
