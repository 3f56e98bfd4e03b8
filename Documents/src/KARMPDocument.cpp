#include "KARMPDocumentParser.h"
#include "KARMPDocumentReader.h"
#include "KARMPDocumentSource.h"
#include "KARMPVersions.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace karmp::documents {

Document::Document(std::string name, const Limits& limits)
    : m_source(std::make_unique<DocumentSource>()),
      m_name(std::move(name)),
      m_version(CurrentVersion),
      m_limits(limits)
{
    constexpr std::size_t largest = std::numeric_limits<std::uint32_t>::max();
    m_limits.bytes = std::min(m_limits.bytes, largest);
}

Document::Document(Document&& other) noexcept
    : m_source(std::move(other.m_source)),
      m_root(std::exchange(other.m_root, nullptr)),
      m_name(std::move(other.m_name)),
      m_version(std::move(other.m_version)),
      m_limits(other.m_limits),
      m_messages(std::move(other.m_messages)),
      m_wrongReferences(std::move(other.m_wrongReferences)),
      m_unusedIdentifier(std::move(other.m_unusedIdentifier))
{}

Document& Document::operator=(Document&& other) noexcept
{
    if (this != &other) {
        m_root = std::exchange(other.m_root, nullptr);
        m_source = std::move(other.m_source);
        m_name = std::move(other.m_name);
        m_version = std::move(other.m_version);
        m_limits = other.m_limits;
        m_messages = std::move(other.m_messages);
        m_wrongReferences = std::move(other.m_wrongReferences);
        m_unusedIdentifier = std::move(other.m_unusedIdentifier);
    }
    return *this;
}

// The source owns the arenas of the nodes and of all their parts.
Document::~Document() = default;

Document Document::ReadFile(const std::filesystem::path& path, const Limits& limits)
{
    return DocumentParser::ReadFile(path, limits);
}

Document Document::ReadText(std::string text, std::string name, const Limits& limits)
{
    return DocumentParser::ReadText(std::move(text), std::move(name), limits);
}

} // namespace karmp::documents
