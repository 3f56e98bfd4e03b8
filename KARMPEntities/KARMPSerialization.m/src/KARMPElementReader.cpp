#include "KARMPElementReader.h"

#include "KARMPEntity.h"
#include "KARMPNodeSource.h"

namespace karmp {

namespace {

constexpr std::wstring_view IdentifierName = L"id";

} // namespace

ElementReader::ElementReader(const KARMPDeserializer* node, std::wstring_view name, Where where)
{
    if (node != nullptr && node->Id() == name)
        m_node = node;
    else if (node != nullptr)
        node->GetElement(name, m_node);
    m_failed = !KARMPVerify(m_node != nullptr, where);
}

std::wstring_view ElementReader::Version() const
{
    return m_node != nullptr ? m_node->Version() : std::wstring_view();
}

bool ElementReader::Base(KARStatus status, Where where)
{
    if (Set(status, where))
        return true;
    m_failed = true;
    return false;
}

void ElementReader::Missing(Absent absent, Where where)
{
    // Without a node the failure was reported when the node was asked for.
    if (m_node == nullptr || absent == Absent::Keep)
        return;
    KARMPVerify(false, where);
    if (absent == Absent::ReportAndFail)
        m_failed = true;
}

bool ElementReader::ReadDoubles(const std::wstring_view* names, double* values, std::size_t count,
                                Absent absent, Where where)
{
    bool complete = true;
    for (std::size_t i = 0; i < count; ++i)
        complete = Value(names[i], values[i], absent, where) && complete;
    return complete;
}

bool ElementReader::Values(KARMath3x3Matrix& matrix, Absent absent, Where where)
{
    std::array<double, MatrixNames.size()> c;
    for (int i = 0; i < 9; ++i)
        c[static_cast<std::size_t>(i)] = matrix.GetColumn(i / 3)[i % 3];
    const bool complete = Values(MatrixNames, c, absent, where);
    matrix.SetColumns({c[0], c[1], c[2]}, {c[3], c[4], c[5]}, {c[6], c[7], c[8]});
    return complete;
}

bool ElementReader::HasIdentifier() const
{
    ReadText identifier;
    return m_node != nullptr && !KARFailed(m_node->GetAttribute(IdentifierName, identifier));
}

const QOBSharedHandle<KARMPEntity>* ElementReader::FindTarget(const KARMPEntityTable& entities,
                                                              Where where) const
{
    if (m_node != nullptr) {
        const RecordedElement recorded = NodeBuilder::Recorded(*m_node);
        if (entities.UsesNumbersOf(recorded.records))
            if (const auto* const found = FindNumbered(entities, recorded))
                return *found ? found : nullptr;
    }
    ReadText identifier;
    if (m_node == nullptr ||
        !KARMPVerify(!KARFailed(m_node->GetAttribute(IdentifierName, identifier)), where))
        return nullptr;
    const QOBSharedHandle<KARMPEntity>* entity = entities.Find(identifier);
    return entity != nullptr && *entity ? entity : nullptr;
}

} // namespace karmp
