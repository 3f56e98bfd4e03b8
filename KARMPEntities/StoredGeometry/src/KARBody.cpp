#include "KARBody.h"

#include "GMKChecks.h"

namespace {

bool IsIndex(int index, std::size_t size)
{
    return index >= 0 && static_cast<std::size_t>(index) < size;
}

} // namespace

KARBody::KARBody() = default;

KARBody::~KARBody()
{
    for (const KARBodyEdge& edge : m_edges)
        edge.curve->Release();
    for (const KARBodyFace& face : m_faces)
        face.surface->Release();
}

KARBody* KARBody::Create()
{
    return new KARBody;
}

int KARBody::AddVertex(const KARMathPoint& point)
{
    if (!kar::IsFinite(point))
        return -1;
    m_vertices.push_back(point);
    return static_cast<int>(m_vertices.size()) - 1;
}

int KARBody::AddEdge(const KARBodyEdge& edge)
{
    if (edge.curve == nullptr || !kar::IsRange(edge.low, edge.high) ||
        !IsIndex(edge.start, m_vertices.size()) || !IsIndex(edge.end, m_vertices.size()))
        return -1;
    m_edges.push_back(edge);
    edge.curve->AddRef();
    return static_cast<int>(m_edges.size()) - 1;
}

int KARBody::AddFace(const KARBodyFace& face)
{
    if (face.surface == nullptr)
        return -1;
    for (const KARLoop& loop : face.loops)
        if (!IsLoop(loop))
            return -1;
    m_faces.push_back(face);
    face.surface->AddRef();
    return static_cast<int>(m_faces.size()) - 1;
}

bool KARBody::IsLoop(const KARLoop& loop) const
{
    if (loop.empty())
        return false;
    for (const KAROrientedEdge& oriented : loop)
        if (!IsIndex(oriented.edge, m_edges.size()))
            return false;
    const auto end = [this](const KAROrientedEdge& oriented, bool last) {
        const KARBodyEdge& edge = m_edges[static_cast<std::size_t>(oriented.edge)];
        return oriented.reversed == last ? edge.start : edge.end;
    };
    for (std::size_t i = 0; i < loop.size(); ++i)
        if (end(loop[i], true) != end(loop[(i + 1) % loop.size()], false))
            return false;
    return true;
}

bool KARBody::IsClosed() const
{
    std::vector<int> forward(m_edges.size(), 0);
    std::vector<int> backward(m_edges.size(), 0);
    for (const KARBodyFace& face : m_faces) {
        for (const KARLoop& loop : face.loops) {
            for (const KAROrientedEdge& oriented : loop) {
                // A reversed face runs round its loops the other way.
                auto& uses = oriented.reversed == face.reversed ? forward : backward;
                ++uses[static_cast<std::size_t>(oriented.edge)];
            }
        }
    }
    for (std::size_t i = 0; i < m_edges.size(); ++i)
        if (forward[i] != 1 || backward[i] != 1)
            return false;
    return !m_faces.empty();
}

void KARBody::GetReferences(std::vector<const KARIGMKObject*>& references) const
{
    for (const KARBodyEdge& edge : m_edges)
        references.push_back(edge.curve);
    for (const KARBodyFace& face : m_faces)
        references.push_back(face.surface);
}
