#pragma once

#include "KARMPEntity.h"
#include "KAROmxArray.h"
#include "KARUnicodeString.h"
#include "_SEQUENCE_octet.h"

#include <concepts>

class KARMPSupport;
class KARMPValue;

namespace karmp {
struct AttributeAccess;

/// What a value of an attribute can hold: a flag, a number, a text.
template <class T>
concept AttributeDatum =
    std::same_as<T, unsigned char> || std::same_as<T, double> || std::same_as<T, KARUnicodeString>;
} // namespace karmp

/// Named data of an entity that a solver reads or writes: values, bytes, and children of its own
/// kind. Its name in paths is its GetID.
///
/// Every operation returns 0 where nothing else is said. An Add of what is listed already
/// returns 1; a null handle is a failed check and a failure. An index outside a list gives a null
/// handle and a failure, without a report.
class KARMP_API KARMPAttribute : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPAttribute, KARMPEntity)

public:
    /// Writes type, path and values into the element of the kind, and, when "DUMP_OCTET_AS_UTF8" is
    /// set, the bytes as a text, which no reader restores. A null serializer is a failed check and
    /// a failure. An output is not written, with 0, unless "MOT_DUMP_OUTPUTS" is set.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same, in the same manner.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Appends a child. One that is not of this attribute's kind - parameter, state or output - is
    /// a failure without a report.
    KARStatus AddChild(const QOBSharedHandle<KARMPAttribute>& child);
    /// Appends a value.
    KARStatus AddValue(const QOBSharedHandle<KARMPValue>& value) { return m_values.Add(value); }
    /// Appends a tie to another entity.
    KARStatus AddSupport(const QOBSharedHandle<KARMPSupport>& support)
    {
        return m_supports.Add(support);
    }
    /// Lengths of the lists.
    int GetChildrenCount() const;
    int GetValueCount() const { return m_values.Count(); }
    int GetSupportsCount() const { return m_supports.Count(); }

    /// Gives the child at an index from 0.
    KARStatus GetChild(int index, QOBSharedHandle<KARMPAttribute>& child) const;
    /// Gives the first child whose GetID is the name, byte for byte; a null handle and a failure,
    /// without a report, when there is none.
    KARStatus GetChild(const KARString& name, QOBSharedHandle<KARMPAttribute>& child) const;
    /// Appends the children, each followed by all of its descendants; 1 when there are none. An
    /// attribute that is its own descendant is a failed check and a failure, which ends the walk.
    KARStatus GetAllChildren(QOBSharedVector<KARMPAttribute>& children) const;
    /// Gives the value at an index from 0.
    KARStatus GetValue(int index, QOBSharedHandle<KARMPValue>& value) const
    {
        return m_values.Get(index, value);
    }
    /// Gives what the value at an index holds: a flag of a KARMPBoolean, a number of a
    /// KARMPConstant, a text of a KARMPString. A value of another class throws QOBEInvalidCast; an
    /// index outside the values, and a value that does not give it, is a failed check and a
    /// failure.
    template <karmp::AttributeDatum T>
    KARStatus GetValue(int index, T& value) const;
    /// Gives the tie at an index from 0.
    KARStatus GetSupport(int index, QOBSharedHandle<KARMPSupport>& support) const
    {
        return m_supports.Get(index, support);
    }
    /// Gives the entity that the tie at an index leads to; a null handle and a failure, without a
    /// report, also for a tie without one.
    KARStatus GetSupportTarget(int index, QOBSharedHandle<KARMPEntity>& target) const;

    /// The word that tells a bulk update what the attribute holds: "octet", "double", "int",
    /// "string", "enum" or "bool".
    KARString GetType() const { return m_type; }
    KARStatus SetType(const KARString& type);
    /// Texts that tell where the attribute belongs; the library only keeps them.
    const KAROmxArray<KARString>& GetPath() const { return m_path; }
    KARStatus SetPath(const KAROmxArray<KARString>& path);
    /// The path as one text with "." between its elements.
    KARString GetPathAsStr() const;
    /// Bytes of the solver.
    const _SEQUENCE_octet& GetOctetSequence() const { return m_octets; }
    KARStatus SetOctetSequence(const _SEQUENCE_octet& octets);

protected:
    /// Drops children, values and supports.
    void ClearContainers() override;
    /// True for an output whose writing and reading is not asked for at this moment.
    bool IsLeftOut() const;

    KARMPAttribute();
    /// A copy takes type, path and bytes; it has no children, values and supports.
    KARMPAttribute(const KARMPAttribute& source, CopyMode mode);
    ~KARMPAttribute() override;

private:
    friend struct karmp::AttributeAccess;

    KARMPAttributeList<KARMPParameter> m_childParameters;
    KARMPAttributeList<KARMPState> m_childStates;
    KARMPAttributeList<KARMPOutput> m_childOutputs;
    KARMPLinkList<KARMPValue> m_values;
    KARString m_type;
    KAROmxArray<KARString> m_path;
    _SEQUENCE_octet m_octets;
    KARMPLinkList<KARMPSupport> m_supports;
};
