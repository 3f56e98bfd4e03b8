#pragma once

#include "KAR3DRep.h"
#include "KARMathPoint.h"
#include "KARMathVector.h"

#include <array>
#include <cstdint>
#include <vector>

/// The indices of a triangle's vertices, counterclockwise seen from outside.
using KARTriangle = std::array<std::uint32_t, 3>;

/// A node that is a mesh of triangles.
class KAR_API KAR3DMeshRep final : public KAR3DRep
{
public:
    /// Makes a mesh, which is the caller's; null when a coordinate is not finite, a triangle names
    /// a vertex that does not exist, or there are normals but not one for each vertex. Nothing else
    /// is asked: a mesh may be empty, open, and have triangles without an area.
    static KAR3DMeshRep* CreateRep(std::vector<KARMathPoint> vertices,
                                   std::vector<KARTriangle> triangles,
                                   std::vector<KARMathVector> normals = {});

    /// Mesh, with its vertices and the triangles between them.
    KAR3DRepKind GetKind() const override { return KAR3DRepKind::Mesh; }
    const std::vector<KARMathPoint>& GetVertices() const { return m_vertices; }
    const std::vector<KARTriangle>& GetTriangles() const { return m_triangles; }
    /// The normal at each vertex, or none at all: flat triangles then.
    const std::vector<KARMathVector>& GetNormals() const { return m_normals; }

private:
    KAR3DMeshRep(std::vector<KARMathPoint> vertices, std::vector<KARTriangle> triangles,
                 std::vector<KARMathVector> normals);
    ~KAR3DMeshRep() override;
    KAR3DRep* CopyAlone() const override;

    std::vector<KARMathPoint> m_vertices;
    std::vector<KARTriangle> m_triangles;
    std::vector<KARMathVector> m_normals;
};
