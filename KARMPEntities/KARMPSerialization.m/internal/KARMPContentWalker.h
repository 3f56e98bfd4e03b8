// What writing and reading by content lists share: the order of the steps and the items that apply.
#pragma once

#include "KARMPContentWalk.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace karmp {

/// Tells which items documents of a version have. It remembers the answer for the last limits by
/// the addresses of their texts, since items in a row mostly have the same ones.
class VersionGate
{
public:
    explicit VersionGate(std::wstring_view version) : m_version(version) {}

    std::wstring_view Version() const { return m_version; }
    bool Passes(const Item& item)
    {
        if (!item.isGated)
            return true;
        if (item.since.data() != m_since || item.until.data() != m_until) {
            m_since = item.since.data();
            m_until = item.until.data();
            m_passes = item.ExistsAt(m_version);
        }
        return m_passes;
    }

private:
    std::wstring_view m_version;
    const wchar_t* m_since = nullptr;
    const wchar_t* m_until = nullptr;
    bool m_passes = true;
};

/// The base of a walker that writes or reads the items of an owner in their order. `Element` writes
/// or reads the content of an element. Walker has Applies(item, element), which tells whether an
/// item is walked, and WalkItem(item, inner, element).
template <class Walker, class Element>
class ContentWalker
{
public:
    explicit ContentWalker(std::wstring_view version) : m_gate(version) {}

    void Walk(std::span<const Item> items, Element& element, bool baseFailed)
    {
        auto& walker = static_cast<Walker&>(*this);
        const Item* const end = items.data() + items.size();
        for (const Item* item = items.data(); item != end; item += 1U + item->inner) {
            if ((baseFailed && !item->evenIfBaseFails) || !walker.Applies(*item, element))
                continue;
            const KARStatus before = element.Status();
            walker.WalkItem(*item, {item + 1, item->inner}, element);
            if (item->isUncounted)
                element.SetStatus(before);
        }
    }

protected:
    /// Walks the items within a group's element.
    void WalkInner(const Item& item, std::span<const Item> inner, Element& child, Element& element)
    {
        Walk(inner, child, false);
        Count(item, child, element);
    }
    /// Counts failures within an item's element in the element around it where the item says so.
    static void Count(const Item& item, const Element& child, Element& element)
    {
        if (item.countsWithin && KARFailed(child.Status()))
            element.Fail();
    }

    VersionGate m_gate;
};

/// Walks the content of an owner by the statuses of its family: `elementOf` names the class's
/// element, `base(node)` walks the base unless `hasBase` is false, `walk(element, baseFailed)` the
/// items.
template <class Element, class Node, class Base, class Walk>
KARStatus WalkContent(const Content& content, const ContentStatuses& statuses, const void* owner,
                      Node* node, std::wstring_view (Content::*elementOf)(const void*) const,
                      bool hasBase, Base base, Walk walk)
{
    if (content.leftOut != nullptr && content.leftOut(owner))
        return KARSuccess;
    if (node == nullptr) {
        KARMPVerify(statuses.silentNull, content.where);
        return statuses.nullNode;
    }
    Element element = content.element.empty()
                          ? Element(node, content.where)
                          : Element(node, (content.*elementOf)(owner), content.where);
    if (!element)
        return statuses.missingElement;

    KARStatus passed = KARSuccess;
    bool baseFailed = false;
    if (hasBase && !statuses.baseLast) {
        passed = base(element.Node());
        baseFailed = !statuses.passesBase && !element.Base(passed, content.where);
        if (baseFailed && !statuses.goesOn)
            return statuses.failedBase;
    }
    walk(element, baseFailed);
    if (hasBase && statuses.baseLast)
        passed = base(element.Node());
    if (statuses.itemsCount && KARFailed(element.Status())) {
        if (statuses.reportedAgain)
            KARMPVerify(false, content.where);
        return statuses.counted;
    }
    return statuses.passesBase ? passed : KARSuccess;
}

} // namespace karmp
