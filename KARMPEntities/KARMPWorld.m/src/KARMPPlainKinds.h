#pragma once

#include "KARMPDuplicates.h"
#include "KARMPRegistry.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <typeinfo>
#include <utility>
#include <vector>

namespace karmp {

/// Finds the kinds by what the objects are, which are of few classes.
class PlainKinds
{
public:
    /// The kind of an object, made by a function from its class's record when the class is first
    /// met; null when the class is not plain.
    template <class Make>
    const PlainKind* Of(const QOBSharedObject& object, Make make)
    {
        const std::type_info& type = typeid(object);
        Class& met = m_met[Hash(type)];
        if (met.type != &type)
            met = Known(object, type, make);
        return met.kind;
    }

private:
    struct Class
    {
        const std::type_info* type;
        const PlainKind* kind;
    };
    static constexpr unsigned HashBits = 6;

    static std::size_t Hash(const std::type_info& type)
    {
        return reinterpret_cast<std::uintptr_t>(&type) * 0x9E3779B97F4A7C15U >> (64U - HashBits);
    }
    template <class Make>
    Class Known(const QOBSharedObject& object, const std::type_info& type, Make make)
    {
        for (const Class& known : m_known)
            if (known.type == &type)
                return known;
        const QOBClassInfo& info = object.getClassInfo();
        const std::type_info* const plain = info.getOperations().copiedClass;
        if (plain == nullptr || *plain != type)
            return m_known.emplace_back(Class{&type, nullptr});
        m_kinds.push_back(std::make_unique<const PlainKind>(make(info)));
        return m_known.emplace_back(Class{&type, m_kinds.back().get()});
    }

    std::array<Class, std::size_t{1} << HashBits> m_met{};
    std::vector<Class> m_known;
    std::vector<std::unique_ptr<const PlainKind>> m_kinds;
};

} // namespace karmp
