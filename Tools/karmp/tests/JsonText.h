// Whether a text is JSON, strictly.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace karmp::tool {

/// Reads JSON and forgets it.
class JsonReader
{
public:
    /// True when the text is one value of JSON in UTF-8.
    static bool IsJson(std::string_view text)
    {
        JsonReader reader(text);
        return reader.Value(0) && (reader.Blanks(), reader.m_next == text.size());
    }

private:
    explicit JsonReader(std::string_view text) : m_text(text) {}

    char Peek() const { return m_next < m_text.size() ? m_text[m_next] : '\0'; }
    void Blanks()
    {
        while (Peek() == ' ' || Peek() == '\n' || Peek() == '\t' || Peek() == '\r')
            ++m_next;
    }
    bool Take(std::string_view word)
    {
        if (m_text.substr(m_next, word.size()) != word)
            return false;
        m_next += word.size();
        return true;
    }
    bool Value(int depth)
    {
        Blanks();
        if (depth > 100)
            return false;
        if (Peek() == '{')
            return List('}', depth, true);
        if (Peek() == '[')
            return List(']', depth, false);
        if (Peek() == '"')
            return String();
        return Take("true") || Take("false") || Take("null") || Number();
    }
    bool List(char end, int depth, bool isObject)
    {
        ++m_next;
        Blanks();
        if (Peek() == end)
            return Take({&end, 1});
        do {
            Blanks();
            if (isObject && !(Peek() == '"' && String() && (Blanks(), Take(":"))))
                return false;
            if (!Value(depth + 1))
                return false;
            Blanks();
        } while (Take(","));
        return Take({&end, 1});
    }
    bool Number()
    {
        const std::size_t begin = m_next;
        Take("-");
        const bool isZero = Peek() == '0';
        const std::size_t digits = Digits();
        if (digits == 0 || (isZero && digits > 1))
            return false;
        if (Take(".") && Digits() == 0)
            return false;
        if (Take("e") || Take("E")) {
            if (!Take("+"))
                Take("-");
            if (Digits() == 0)
                return false;
        }
        return m_next > begin;
    }
    std::size_t Digits()
    {
        const std::size_t begin = m_next;
        while (Peek() >= '0' && Peek() <= '9')
            ++m_next;
        return m_next - begin;
    }
    bool String()
    {
        for (++m_next; m_next < m_text.size();) {
            const auto byte = static_cast<unsigned char>(Peek());
            if (byte == '"')
                return Take("\"");
            if (byte < 0x20 || !(byte == '\\' ? Escape() : Character(byte)))
                return false;
        }
        return false;
    }
    bool Escape()
    {
        constexpr std::string_view single = "\"\\/bfnrt";
        ++m_next;
        if (single.find(Peek()) != std::string_view::npos && Peek() != '\0')
            return ++m_next != 0;
        if (!Take("u"))
            return false;
        for (int digit = 0; digit < 4; ++digit, ++m_next)
            if (std::string_view("0123456789abcdefABCDEF").find(Peek()) == std::string_view::npos)
                return false;
        return true;
    }
    bool Character(unsigned char first)
    {
        const int following = first < 0x80 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
        if (first >= 0x80 && (first < 0xC2 || first > 0xF4))
            return false;
        ++m_next;
        for (int i = 0; i < following; ++i, ++m_next)
            if ((static_cast<unsigned char>(Peek()) & 0xC0U) != 0x80U)
                return false;
        return true;
    }

    std::string_view m_text;
    std::size_t m_next = 0;
};

} // namespace karmp::tool
