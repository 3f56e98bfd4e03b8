#include "QOBClassInfo.h"

#include <cstdlib>
#include <memory>

#if __has_include(<cxxabi.h>)
#    include <cxxabi.h>
#endif

namespace {

std::string ReadableName(const std::type_info& type)
{
#if __has_include(<cxxabi.h>)
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    if (status == 0 && name != nullptr)
        return name.get();
#endif
    return type.name();
}

// The record is made from the type of a pointer to the class, so the name ends in a star; some
// compilers put the word class in front.
std::string PlainName(const std::type_info& pointerType)
{
    std::string name = ReadableName(pointerType);
    if (const auto end = name.find_last_not_of(" *"); end != std::string::npos)
        name.erase(end + 1);
    for (const std::string_view prefix : {"class ", "struct "})
        if (name.compare(0, prefix.size(), prefix) == 0)
            name.erase(0, prefix.size());
    return name;
}

} // namespace

QOBClassInfo::QOBClassInfo(const std::type_info& pointerType, std::uint64_t size,
                           QOBCreateFunction create, const QOBClassInfo* parent,
                           const QOBClassInfo* secondParent, QOBClassOperations operations)
    : m_name(PlainName(pointerType)),
      m_size(size),
      m_create(create),
      m_parent(parent),
      m_secondParent(secondParent),
      m_operations(operations)
{}

QOBClassInfo::~QOBClassInfo() = default;

bool QOBClassInfo::isDerivedFrom(const QOBClassInfo& info) const noexcept
{
    for (const QOBClassInfo* record = this; record != nullptr; record = record->m_parent) {
        if (record == &info)
            return true;
        if (record->m_secondParent != nullptr && record->m_secondParent->isDerivedFrom(info))
            return true;
    }
    return false;
}
