// How a constraint writes and reads its class element: the base's content, then options.
#pragma once

#include "KARMPConstraint.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"

namespace karmp {

/// Writes a class element with nothing but the base's content.
inline KARStatus WriteConstraint(const KARMPConstraint& constraint, KARMPSerializer* serializer,
                                 std::wstring_view name,
                                 KARMPSourceLocation where = KARMPSourceLocation::current())
{
    ElementWriter element(serializer, name, where);
    if (element)
        element.Base(constraint.KARMPConstraint::Serialize(element.Node()), where);
    return element.Status();
}

/// Reads a class element with nothing but the base's content.
inline KARStatus ReadConstraint(KARMPConstraint& constraint, const KARMPDeserializer* deserializer,
                                const KARMPEntityTable& entities, ItemName name,
                                KARMPSourceLocation where = KARMPSourceLocation::current())
{
    ElementReader element(deserializer, name, where);
    if (element)
        element.Base(constraint.KARMPConstraint::Deserialize(element.Node(), entities), where);
    return element.Status();
}

/// Writes a class element whose options `write` adds after the base's content. A failure among them
/// is reported once more at the end.
template <class Write>
KARStatus WriteConstraint(const KARMPConstraint& constraint, KARMPSerializer* serializer,
                          std::wstring_view name, Write write,
                          KARMPSourceLocation where = KARMPSourceLocation::current())
{
    ElementWriter element(serializer, name, where);
    if (!element || !element.Base(constraint.KARMPConstraint::Serialize(element.Node()), where))
        return KARFailure;
    write(element);
    KARMPVerify(!KARFailed(element.Status()), where);
    return element.Status();
}

/// Reads a class element whose options `read` takes after the base's content. A failure among them
/// is reported once more at the end.
template <class Read>
KARStatus ReadConstraint(KARMPConstraint& constraint, const KARMPDeserializer* deserializer,
                         const KARMPEntityTable& entities, ItemName name, Read read,
                         KARMPSourceLocation where = KARMPSourceLocation::current())
{
    ElementReader element(deserializer, name, where);
    if (!element ||
        !element.Base(constraint.KARMPConstraint::Deserialize(element.Node(), entities), where))
        return KARFailure;
    read(element);
    KARMPVerify(!KARFailed(element.Status()), where);
    return element.Status();
}

/// Reads an option into its field.
template <class Enum>
void ReadOption(ElementReader& element, ItemName name, Enum& field,
                KARMPSourceLocation where = KARMPSourceLocation::current())
{
    element.Word(name, field, Absent::ReportAndFail, where);
}

/// Reads an option and passes it to its setter, so that a loader that is attached is told; a
/// failure of the setter counts.
template <class Constraint, class Enum>
void ReadOption(ElementReader& element, ItemName name, Constraint& constraint,
                KARStatus (Constraint::*set)(Enum),
                KARMPSourceLocation where = KARMPSourceLocation::current())
{
    Enum value{};
    if (element.Word(name, value, Absent::ReportAndFail, where))
        element.Base((constraint.*set)(value), where);
}

} // namespace karmp
