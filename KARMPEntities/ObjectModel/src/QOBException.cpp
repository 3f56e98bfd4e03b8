#include "QOBException.h"

#include <utility>

namespace {

// Messages of the object model are ASCII; anything else shows as a question mark in what().
std::string Narrow(const std::wstring& message)
{
    std::string text;
    text.reserve(message.size());
    for (const wchar_t character : message)
        text.push_back(character > 0 && character < 0x80 ? static_cast<char>(character) : '?');
    return text;
}

} // namespace

QOBException::QOBException(const wchar_t* message, const char* path, int line)
    : m_message(message != nullptr ? message : L""),
      m_text(Narrow(m_message)),
      m_path(path != nullptr ? path : ""),
      m_line(line)
{}

QOBException::QOBException(const QOBException&) = default;
QOBException::QOBException(QOBException&&) noexcept = default;
QOBException::~QOBException() = default;

QOBERuntimeError::QOBERuntimeError(const QOBERuntimeError&) = default;
QOBERuntimeError::QOBERuntimeError(QOBERuntimeError&&) noexcept = default;
QOBERuntimeError::~QOBERuntimeError() = default;

QOBEInvalidCast::QOBEInvalidCast(const QOBEInvalidCast&) = default;
QOBEInvalidCast::QOBEInvalidCast(QOBEInvalidCast&&) noexcept = default;
QOBEInvalidCast::~QOBEInvalidCast() = default;
