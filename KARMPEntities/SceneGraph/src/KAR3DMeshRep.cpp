#include "KAR3DMeshRep.h"

#include "KARFinite.h"

#include <algorithm>
#include <utility>

KAR3DMeshRep::KAR3DMeshRep(std::vector<KARMathPoint> vertices, std::vector<KARTriangle> triangles,
                           std::vector<KARMathVector> normals)
    : m_vertices(std::move(vertices)),
      m_triangles(std::move(triangles)),
      m_normals(std::move(normals))
{}

KAR3DMeshRep::~KAR3DMeshRep() = default;

KAR3DMeshRep* KAR3DMeshRep::CreateRep(std::vector<KARMathPoint> vertices,
                                      std::vector<KARTriangle> triangles,
                                      std::vector<KARMathVector> normals)
{
    const auto namesVertices = [&vertices](const KARTriangle& triangle) {
        return *std::max_element(triangle.begin(), triangle.end()) < vertices.size();
    };
    if (!kar::AllFinite(vertices) || !kar::AllFinite(normals) ||
        !(normals.empty() || normals.size() == vertices.size()) ||
        !std::all_of(triangles.begin(), triangles.end(), namesVertices))
        return nullptr;
    return new KAR3DMeshRep(std::move(vertices), std::move(triangles), std::move(normals));
}

KAR3DRep* KAR3DMeshRep::CopyAlone() const
{
    return new KAR3DMeshRep(m_vertices, m_triangles, m_normals);
}
