#include "KARMPElementWriter.h"

#include "KARMPEntity.h"
#include "KARMPSerializationServices.h"
#include "KARMPStreamElement.h"
#include "KARMPValue.h"

namespace karmp {

namespace {

constexpr std::wstring_view Id = L"id";
constexpr std::wstring_view Name = L"name";

} // namespace

ElementWriter::ElementWriter(KARMPSerializer* node, Where where)
    : m_node(node), m_failed(!KARMPVerify(node != nullptr, where))
{}

ElementWriter::ElementWriter(KARMPSerializer* parent, std::wstring_view name, Where where)
{
    if (!KARMPVerify(parent != nullptr, where))
        m_failed = true;
    else
        Added(parent->AddElement(name, m_node), where);
}

std::wstring_view ElementWriter::Version() const
{
    return m_node != nullptr ? m_node->Version() : std::wstring_view();
}

bool ElementWriter::Base(KARStatus status, Where where)
{
    return Added(status, where);
}

bool ElementWriter::Added(KARStatus status, Where where)
{
    if (!KARFailed(status))
        return true;
    // Without a node the failure was reported when the node was asked for.
    const bool reported = m_node == nullptr && m_failed;
    m_failed = true;
    return reported ? false : KARMPVerify(false, where);
}

bool ElementWriter::Attribute(std::wstring_view name, std::wstring_view value, Where where)
{
    return Added(m_node != nullptr ? m_node->AddAttribute(name, value) : KARFailure, where);
}

bool ElementWriter::Attribute(std::wstring_view name, double value, Where where)
{
    return Added(m_node != nullptr ? m_node->AddAttribute(name, value) : KARFailure, where);
}

bool ElementWriter::Attribute(std::wstring_view name, int value, Where where)
{
    return Added(m_node != nullptr ? m_node->AddAttribute(name, value) : KARFailure, where);
}

bool ElementWriter::Value(std::wstring_view name, std::wstring_view value, Where where)
{
    KARMPSerializer* child = nullptr;
    return Added(m_node != nullptr ? m_node->AddElement(name, child, value) : KARFailure, where);
}

bool ElementWriter::Value(std::wstring_view name, double value, Where where)
{
    KARMPSerializer* child = nullptr;
    return Added(m_node != nullptr ? m_node->AddElement(name, child, value) : KARFailure, where);
}

bool ElementWriter::Value(std::wstring_view name, int value, Where where)
{
    KARMPSerializer* child = nullptr;
    return Added(m_node != nullptr ? m_node->AddElement(name, child, value) : KARFailure, where);
}

bool ElementWriter::Values(std::span<const std::wstring_view> names, const double* values,
                           Where where)
{
    bool added = true;
    for (std::size_t i = 0; i < names.size(); ++i)
        added = Value(names[i], values[i], where) && added;
    return added;
}

bool ElementWriter::Values(const KARMath3x3Matrix& matrix, Where where)
{
    std::array<double, MatrixNames.size()> coefficients;
    for (int i = 0; i < 9; ++i)
        coefficients[static_cast<std::size_t>(i)] = matrix.GetColumn(i / 3)[i % 3];
    return Values(MatrixNames, coefficients, where);
}

ElementWriter ElementWriter::Child(std::wstring_view name, Where where)
{
    ElementWriter child(*this);
    child.m_node = nullptr;
    if (m_node != nullptr) {
        child.m_failed = false;
        m_failed = !child.Added(m_node->AddElement(name, child.m_node), where) || m_failed;
    }
    return child;
}

bool ElementWriter::Reference(std::wstring_view name, const QOBSharedBase& entity, Where where)
{
    ElementWriter child = Child(name, where);
    if (!child)
        return false;
    if (!child.Added(entity ? KARSuccess : KARFailure, where))
        return false;
    // Every reference is to an entity; the static type may be incomplete at the caller.
    const auto* target = static_cast<const KARMPEntity*>(entity._getReferent());
    return child.ReferenceAttributes(target, KARMPSerializer::SerializeName(), where);
}

bool ElementWriter::ReferenceAttributes(const KARMPEntity* entity, bool withName, Where where)
{
    const kar::SharedText* identifier = nullptr;
    if (!KARFailed(EntityAccess::Identifier(*entity, identifier)))
        Attribute(Id, kar::SharedText::Wide(*identifier).View(), where);
    if (withName)
        Attribute(Name, kar::SharedText::Wide(entity->getStoredName()).View(), where);
    return !m_failed;
}

bool ElementWriter::ValueReference(std::wstring_view name, const QOBSharedBase& value, Where where)
{
    return Base(
        KARMPSerializationServices::Serialize(m_node, QOBSharedHandle<KARMPValue>(value), name),
        where);
}

bool ElementWriter::Stream(std::wstring_view name, std::span<const unsigned char> bytes,
                           Where where)
{
    return WriteStream(*this, name, bytes, where);
}

void ElementWriter::UnknownReference(std::wstring_view item, Where where)
{
    ElementWriter child = Child(item, where);
    child.Attribute(Id, true, where);
    child.Attribute(Name, true, where);
}

} // namespace karmp
