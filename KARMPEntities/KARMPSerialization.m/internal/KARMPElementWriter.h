#pragma once

#include "KARMPEnumerationTexts.h"
#include "KARMPFailedCheck.h"
#include "KARMPItemNames.h"
#include "KARMPLinkList.h"
#include "KARMPSerializer.h"
#include "KARMPVersions.h"
#include "KARMath3x3Matrix.h"
#include "KARMathPoint.h"
#include "KARMathVector.h"
#include "KARStatus.h"
#include "QOBSharedHandle.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

class KARMPEntity;

namespace karmp {

struct Item;

/// Writes the content of one element by the reporting rules of all writers: a null node and a
/// failed addition are reported with the source location of the caller, and writing goes on.
class ElementWriter
{
public:
    using Where = KARMPSourceLocation;

    /// Writes into an existing node. A null node is reported.
    explicit ElementWriter(KARMPSerializer* node, Where where = Where::current());
    /// Adds an element under a parent and writes into it. A null parent and a failed addition are
    /// reported.
    ElementWriter(KARMPSerializer* parent, std::wstring_view name, Where where = Where::current());

    /// False when there is no node to write into; then everything else does nothing and fails.
    explicit operator bool() const { return m_node != nullptr; }
    KARMPSerializer* Node() const { return m_node; }
    std::wstring_view Version() const;
    /// Failure when there is no node or when an addition by this writer failed.
    KARStatus Status() const { return m_failed ? KARFailure : KARSuccess; }
    /// Counts a failure of something that was written by other means.
    void Fail() { m_failed = true; }
    /// Goes back to an earlier status: what failed since does not count.
    void SetStatus(KARStatus earlier) { m_failed = KARFailed(earlier); }
    /// Takes the status of a base class's step: a failure is reported and counted.
    bool Base(KARStatus status, Where where = Where::current());

    bool Attribute(std::wstring_view name, std::wstring_view value, Where where = Where::current());
    bool Attribute(std::wstring_view name, double value, Where where = Where::current());
    bool Attribute(std::wstring_view name, int value, Where where = Where::current());
    bool Attribute(std::wstring_view name, std::same_as<bool> auto value,
                   Where where = Where::current())
    {
        return Added(m_node != nullptr ? m_node->AddAttribute(name, value) : KARFailure, where);
    }

    /// Adds child elements with values.
    bool Value(std::wstring_view name, std::wstring_view value, Where where = Where::current());
    bool Value(std::wstring_view name, double value, Where where = Where::current());
    bool Value(std::wstring_view name, int value, Where where = Where::current());
    bool Value(std::wstring_view name, std::same_as<bool> auto value,
               Where where = Where::current())
    {
        KARMPSerializer* child = nullptr;
        return Added(m_node != nullptr ? m_node->AddElement(name, child, value) : KARFailure,
                     where);
    }
    /// Adds a child element with an enumeration's word.
    template <class Enum>
    bool Word(std::wstring_view name, Enum value, Where where = Where::current())
    {
        return Value(name, KARMPEnumText(value), where);
    }

    /// Adds the child elements of a group of doubles; all are tried.
    bool Values(std::span<const std::wstring_view> names, const double* values, Where where);
    template <std::size_t N>
    bool Values(const Names<N>& names, const std::array<double, N>& values,
                Where where = Where::current())
    {
        return Values(names, values.data(), where);
    }
    template <class Triple>
    requires requires(const Triple& triple) { triple.GetX(); }
    bool Values(const Names<3>& names, const Triple& triple, Where where = Where::current())
    {
        return Values(names, {triple.GetX(), triple.GetY(), triple.GetZ()}, where);
    }
    bool Values(const KARMath3x3Matrix& matrix, Where where = Where::current());

    /// Adds a child element and gives a writer of it; a failed addition counts here too.
    ElementWriter Child(std::wstring_view name, Where where = Where::current());

    /// Told of what an item refers to, which matters to other writers only.
    void Note(const Item& /*item*/, const QOBSharedBase& /*target*/) const {}
    /// Adds a child element that refers to an entity by its identifier and, when names are written,
    /// its name. A null entity is reported and leaves the element without attributes.
    bool Reference(std::wstring_view name, const QOBSharedBase& entity,
                   Where where = Where::current());
    /// Adds a container with one reference for each entity that `get` gives by index from 0,
    /// nothing when `count` is below 1. Where `get` fails, the item's "id" and "name" are both the
    /// bool true, so that the number of items stays right.
    template <class T, class Get>
    bool References(std::wstring_view container, std::wstring_view item, int count, Get get,
                    Where where = Where::current())
    {
        if (count < 1)
            return true;
        ElementWriter list = Child(container, where);
        for (int index = 0; list && index < count; ++index) {
            QOBSharedHandle<T> entity;
            if (KARFailed(get(index, entity)))
                list.UnknownReference(item, where);
            else
                list.Reference(item, entity, where);
        }
        return !list.m_failed;
    }

    /// The same for the entities of a link list.
    template <class T>
    bool References(std::wstring_view container, std::wstring_view item,
                    const KARMPLinkList<T>& list, Where where = Where::current())
    {
        const auto get = [&list](int index, QOBSharedHandle<T>& entity) {
            return list.Get(index, entity);
        };
        return References<T>(container, item, list.Count(), get, where);
    }

    /// Writes "id" and, when `withName`, "name" of an entity as attributes of this element.
    bool ReferenceAttributes(const KARMPEntity* entity, bool withName,
                             Where where = Where::current());
    /// Adds a reference to a value, which must be one, with its name in any case.
    bool ValueReference(std::wstring_view name, const QOBSharedBase& value, Where where);
    /// Adds bytes as WriteStream does.
    bool Stream(std::wstring_view name, std::span<const unsigned char> bytes, Where where);
    /// Adds a reference to an entity that its getter failed to give.
    void UnknownReference(std::wstring_view item, Where where);

private:
    bool Added(KARStatus status, Where where);

    KARMPSerializer* m_node = nullptr;
    bool m_failed = false;
};

} // namespace karmp
