#include "QOBUUID.h"

#include <algorithm>

namespace {

char Lowered(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

} // namespace

QOBUUID::QOBUUID(const char* text) : m_text(text != nullptr ? text : "") {}

QOBUUID::~QOBUUID() = default;

bool operator==(const QOBUUID& left, const QOBUUID& right) noexcept
{
    if (&left == &right)
        return true;
    return std::equal(left.m_text.begin(), left.m_text.end(), right.m_text.begin(),
                      right.m_text.end(), [](char a, char b) { return Lowered(a) == Lowered(b); });
}
