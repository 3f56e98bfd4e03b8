#pragma once

#include "KARMPWorldFamilies.h"

#include <algorithm>
#include <vector>

namespace karmp {

/// Chooses a function by the first of some families that a class is derived from, and remembers
/// the choice for the classes that it met, which are few.
template <class List, class Function>
class FunctionOfFamily
{
public:
    /// `For<T>::Call` of the class's family T; null for a class of no family.
    template <template <class> class For>
    Function Of(const QOBClassInfo& info)
    {
        const auto known =
            std::find_if(m_classes.begin(), m_classes.end(),
                         [&info](const Class& entry) { return entry.info == &info; });
        return known != m_classes.end()
                   ? known->function
                   : m_classes.emplace_back(Class{&info, ChooseFor<For>(info)}).function;
    }

    /// The same by the family list alone; it allocates nothing.
    template <template <class> class For>
    static Function ChooseFor(const QOBClassInfo& info)
    {
        Function function = nullptr;
        List::AnyOf([&](auto family) {
            using T = typename decltype(family)::Type;
            if (!info.isDerivedFrom(T::ClassInfo()))
                return false;
            function = &For<T>::Call;
            return true;
        });
        return function;
    }

private:
    struct Class
    {
        const QOBClassInfo* info;
        Function function;
    };

    std::vector<Class> m_classes;
};

} // namespace karmp
