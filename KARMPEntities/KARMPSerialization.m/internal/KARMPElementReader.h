#pragma once

#include "KARMPDeserializer.h"
#include "KARMPElementRecords.h"
#include "KARMPElementWriter.h"
#include "KARMPEntityTable.h"

#include <string_view>

namespace karmp {

/// The entry of a table, which uses the numbers of an element's document, that the element refers
/// to; null when it was not entered with a number.
inline const QOBSharedHandle<KARMPEntity>* FindNumbered(const KARMPEntityTable& entities,
                                                        const RecordedElement& element)
{
    const AttributeRecord* const identifier = IdentifierOf(element);
    return identifier != nullptr && identifier->IsPlain() ? entities.Find(identifier->identifier)
                                                          : nullptr;
}

/// What happens when an item is missing or does not convert.
enum class Absent {
    Keep,          ///< Nothing happens.
    ReportAndKeep, ///< A failed check; the value stays.
    ReportAndZero, ///< A failed check; the value becomes its type's default.
    ReportAndFail  ///< A failed check that counts in the reader's status; the value stays.
};

/// A handle on an entity as a T, null for null. Throws QOBEInvalidCast when the entity is not a T.
template <class T>
QOBSharedHandle<T> HandleAs(const QOBSharedHandle<KARMPEntity>& entity)
{
    // A test of the class record is faster than a cast.
    const QOBSharedObject* const referent = entity._getReferent();
    if (referent != nullptr && referent->getClassInfo().isDerivedFrom(T::ClassInfo()))
        return QOBSharedHandle<T>::unchecked(entity);
    return QOBSharedHandle<T>(entity);
}

/// Reads the content of one element by the reporting rules of all readers: what is missing or does
/// not convert is reported with the source location of the caller as its policy says, and reading
/// goes on.
class ElementReader
{
public:
    using Where = KARMPSourceLocation;

    /// Reads a node. A null node is reported.
    explicit ElementReader(const KARMPDeserializer* node, Where where = Where::current())
        : m_node(node), m_failed(!KARMPVerify(node != nullptr, where))
    {}
    /// Reads a class's own element: the node itself when it has the name, otherwise the node's
    /// child of that name. A null node and a missing child are reported.
    ElementReader(const KARMPDeserializer* node, std::wstring_view name,
                  Where where = Where::current());

    /// False when there is no node to read; then everything else does nothing and fails.
    explicit operator bool() const { return m_node != nullptr; }
    const KARMPDeserializer* Node() const { return m_node; }
    std::wstring_view Version() const;
    /// Failure when there is no node or when something that counts failed.
    KARStatus Status() const { return m_failed ? KARFailure : KARSuccess; }
    /// Counts a failure of something that was read by other means.
    void Fail() { m_failed = true; }
    /// Goes back to an earlier status: what failed since does not count.
    void SetStatus(KARStatus earlier) { m_failed = KARFailed(earlier); }
    /// Takes the status of a base class's step: a failure is reported and counted.
    bool Base(KARStatus status, Where where = Where::current());
    /// Reports a negative status of a setter; it does not count. Returns true when there was none.
    static bool Set(KARStatus status, Where where = Where::current())
    {
        return KARMPVerify(!KARFailed(status), where);
    }

    template <class T>
    bool Attribute(std::wstring_view name, T& value, Absent absent, Where where = Where::current())
    {
        return Settle(m_node != nullptr ? m_node->GetAttribute(name, value) : KARFailure, value,
                      absent, where);
    }
    /// Reads the value of a child element.
    template <class T>
    bool Value(std::wstring_view name, T& value, Absent absent, Where where = Where::current())
    {
        const KARMPDeserializer* child = nullptr;
        return Settle(m_node != nullptr ? m_node->GetElement(name, child, value) : KARFailure,
                      value, absent, where);
    }
    /// Reads a child element that holds an enumeration's word; a word outside the table gives row
    /// 0.
    template <class Enum>
    bool Word(std::wstring_view name, Enum& value, Absent absent, Where where = Where::current())
    {
        std::wstring_view word;
        if (!Value(name, word, absent, where))
            return false;
        value = KARMPEnumValue<Enum>(word);
        return true;
    }

    /// Reads the child elements of a group of doubles into the array; true when all are there.
    template <std::size_t N>
    bool Values(const Names<N>& names, std::array<double, N>& values, Absent absent,
                Where where = Where::current())
    {
        return ReadDoubles(names.data(), values.data(), N, absent, where);
    }
    template <class Triple>
    requires requires(Triple& triple) { triple.SetX(triple.GetX()); }
    bool Values(const Names<3>& names, Triple& triple, Absent absent,
                Where where = Where::current())
    {
        std::array<double, 3> values{triple.GetX(), triple.GetY(), triple.GetZ()};
        const bool complete = Values(names, values, absent, where);
        triple = Triple(values[0], values[1], values[2]);
        return complete;
    }
    bool Values(KARMath3x3Matrix& matrix, Absent absent, Where where = Where::current());

    /// True when there is a child element of the name.
    bool Has(std::wstring_view name) const { return m_node != nullptr && m_node->HasElement(name); }
    /// A reader of a child element; an empty one when there is none, which counts and is reported
    /// as the policy says.
    ElementReader Child(std::wstring_view name, Absent absent, Where where = Where::current())
    {
        ElementReader reader;
        if (m_node != nullptr)
            m_node->GetElement(name, reader.m_node);
        if (reader.m_node == nullptr) {
            reader.m_failed = true;
            Missing(absent, where);
        }
        return reader;
    }
    /// Calls `read` with a reader of each child of the name, in order; null children are skipped.
    template <class Read>
    void Each(std::wstring_view name, Read read) const
    {
        if (m_node == nullptr)
            return;
        for (const KARMPDeserializer* item : m_node->ElementsNamed(name))
            if (item != nullptr)
                read(ElementReader(item));
    }

    /// True when this element has the "id" of a reference.
    bool HasIdentifier() const;
    /// The entry of the table that this element refers to by its "id", null when the table has none
    /// or a null one. A missing "id" is reported.
    const QOBSharedHandle<KARMPEntity>* FindTarget(const KARMPEntityTable& entities,
                                                   Where where) const;
    /// The same as a handle on a T. A missing "id" is reported. Throws QOBEInvalidCast when the
    /// entity is not a T.
    template <class T>
    QOBSharedHandle<T> Target(const KARMPEntityTable& entities,
                              Where where = Where::current()) const
    {
        const QOBSharedHandle<KARMPEntity>* entity = FindTarget(entities, where);
        return entity != nullptr ? HandleAs<T>(*entity) : QOBSharedHandle<T>();
    }
    /// Reads an optional reference: calls `set` with its target; a failure of `set` is reported.
    /// Nothing happens when the element is missing or its target is unknown.
    template <class T, class Set>
    void Reference(std::wstring_view name, const KARMPEntityTable& entities, Set set,
                   Where where = Where::current())
    {
        if (const ElementReader child = Child(name, Absent::Keep, where)) {
            if (const auto target = child.template Target<T>(entities, where))
                ElementReader::Set(set(target), where);
        }
    }
    /// Reads the references of a container in the same manner, one call of `add` each.
    template <class T, class Add>
    void References(std::wstring_view container, std::wstring_view item,
                    const KARMPEntityTable& entities, Add add, Where where = Where::current())
    {
        Child(container, Absent::Keep, where)
            .Each(
                item,
                [&](const ElementReader& child) {
                    if (const auto target = child.template Target<T>(entities, where))
                        Set(add(target), where);
                });
    }

private:
    ElementReader() = default;

    template <class T>
    bool Settle(KARStatus status, T& value, Absent absent, Where where)
    {
        if (!KARFailed(status))
            return true;
        Missing(absent, where);
        if constexpr (std::is_copy_assignable_v<T>) {
            if (absent == Absent::ReportAndZero)
                value = T();
        }
        return false;
    }
    void Missing(Absent absent, Where where);
    bool ReadDoubles(const std::wstring_view* names, double* values, std::size_t count,
                     Absent absent, Where where);
    const KARMPDeserializer* m_node = nullptr;
    bool m_failed = false;
};

} // namespace karmp
