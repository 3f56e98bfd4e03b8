// The children of attributes as lists of their kind.
#pragma once

#include "KARMPAttribute.h"
#include "KARMPOutput.h"
#include "KARMPParameter.h"
#include "KARMPState.h"

#include <unordered_set>
#include <vector>

namespace karmp {

/// Reaches the lists of children, which are not public.
struct AttributeAccess
{
    static const auto& ChildrenOf(const KARMPParameter& attribute)
    {
        return static_cast<const KARMPAttribute&>(attribute).m_childParameters;
    }
    static const auto& ChildrenOf(const KARMPState& attribute)
    {
        return static_cast<const KARMPAttribute&>(attribute).m_childStates;
    }
    static const auto& ChildrenOf(const KARMPOutput& attribute)
    {
        return static_cast<const KARMPAttribute&>(attribute).m_childOutputs;
    }
    /// What `visit` returns for the children of an attribute of one of the three kinds; `otherwise`
    /// for any other attribute.
    template <class Visit, class Result>
    static Result WithChildren(const KARMPAttribute& attribute, Result otherwise, Visit visit)
    {
        if (const auto* parameter = dynamic_cast<const KARMPParameter*>(&attribute))
            return visit(ChildrenOf(*parameter));
        if (const auto* state = dynamic_cast<const KARMPState*>(&attribute))
            return visit(ChildrenOf(*state));
        if (const auto* output = dynamic_cast<const KARMPOutput*>(&attribute))
            return visit(ChildrenOf(*output));
        return otherwise;
    }
};

/// Appends the attributes of a list, each followed by all of its descendants; KARUnchanged for an
/// empty list.
template <class T, class Entry>
KARStatus AppendAll(const KARMPAttributeList<T>& list, QOBSharedVector<Entry>& all,
                    KARMPSourceLocation where = KARMPSourceLocation::current())
{
    struct Level
    {
        const KARMPAttributeList<T>* list;
        int next;
    };
    if (list.Count() == 0)
        return KARUnchanged;
    std::vector<Level> path{{&list, 0}};
    std::unordered_set<const KARMPAttributeList<T>*> onPath{&list};
    while (!path.empty()) {
        Level& level = path.back();
        if (level.next == level.list->Count()) {
            onPath.erase(level.list);
            path.pop_back();
            continue;
        }
        const QOBSharedHandle<T> attribute = level.list->At(level.next++);
        const KARMPAttributeList<T>& children = AttributeAccess::ChildrenOf(*attribute);
        if (children.Count() > 0) {
            if (!KARMPVerify(onPath.insert(&children).second, where))
                return KARFailure;
            path.push_back({&children, 0});
        }
        all.push_back(attribute);
    }
    return KARSuccess;
}

} // namespace karmp
