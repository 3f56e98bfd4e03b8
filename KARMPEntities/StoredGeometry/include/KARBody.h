#pragma once

#include "KARCurve.h"
#include "KARSurface.h"

#include <vector>

/// An edge as a loop runs through it.
struct KAROrientedEdge
{
    /// Index of the edge.
    int edge = 0;
    /// True when the loop runs from the edge's end to its start.
    bool reversed = false;
};

/// A closed chain of edges.
using KARLoop = std::vector<KAROrientedEdge>;

/// A piece of a curve between two vertices.
struct KARBodyEdge
{
    /// The curve, on which the body holds a reference.
    KARCurve* curve = nullptr;
    /// The parameters at the start and at the end.
    double low = 0.0;
    double high = 0.0;
    /// Indices of the vertices.
    int start = 0;
    int end = 0;
};

/// A piece of a surface within loops; without loops the whole surface.
struct KARBodyFace
{
    /// The surface, on which the body holds a reference.
    KARSurface* surface = nullptr;
    /// True when the face's outside is the back of the surface.
    bool reversed = false;
    std::vector<KARLoop> loops;
};

/// A topological body: vertices, edges on curves between them, faces on surfaces within loops of
/// edges.
class KAR_API KARBody final : public KARIGMKObject
{
    KAR_STORED_CLASS(KARBody, KARIGMKObject)

    /// Makes an empty body with one reference.
    static KARBody* Create();

    /// Adds a vertex and gives its index; -1 when a coordinate is not finite.
    int AddVertex(const KARMathPoint& point);
    /// Adds an edge and gives its index; -1 when the curve is null, a limit is not finite, low is
    /// not below high, or a vertex does not exist. That the curve meets its vertices is not
    /// checked.
    int AddEdge(const KARBodyEdge& edge);
    /// Adds a face and gives its index; -1 when the surface is null, a loop is empty, an edge does
    /// not exist, or the edges of a loop do not run from vertex to vertex back to the first.
    int AddFace(const KARBodyFace& face);

    /// The vertices.
    const std::vector<KARMathPoint>& GetVertices() const { return m_vertices; }
    /// The edges.
    const std::vector<KARBodyEdge>& GetEdges() const { return m_edges; }
    /// The faces.
    const std::vector<KARBodyFace>& GetFaces() const { return m_faces; }
    /// True when there are faces and loops run through each edge exactly once in each sense.
    bool IsClosed() const;

    void GetReferences(std::vector<const KARIGMKObject*>& references) const override;
    bool Store(kar::GMKWriter& writer) const override;

private:
    KARBody();
    ~KARBody() override;
    bool IsLoop(const KARLoop& loop) const;

    std::vector<KARMathPoint> m_vertices;
    std::vector<KARBodyEdge> m_edges;
    std::vector<KARBodyFace> m_faces;
};
