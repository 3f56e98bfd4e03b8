// The record of a body, writer and reader side by side.
#include "GMKReader.h"
#include "GMKWriter.h"
#include "KARBody.h"

using kar::GMKReader;
using kar::GMKWriter;
using kar::StoredKind;

namespace {

constexpr std::size_t EdgeBytes = 28;
constexpr std::size_t FaceBytes = 9;
constexpr std::size_t LoopBytes = 4;
constexpr std::size_t OrientedEdgeBytes = 5;

void WriteLoop(GMKWriter& writer, const KARLoop& loop)
{
    writer.Count(loop.size());
    for (const KAROrientedEdge& oriented : loop) {
        writer.Integer(oriented.edge);
        writer.Flag(oriented.reversed);
    }
}

KARLoop ReadLoop(GMKReader& reader)
{
    KARLoop loop(reader.Count(OrientedEdgeBytes));
    for (KAROrientedEdge& oriented : loop) {
        oriented.edge = reader.Integer();
        oriented.reversed = reader.Flag();
    }
    return loop;
}

KARBodyEdge ReadEdge(GMKReader& reader)
{
    KARBodyEdge edge;
    edge.curve = reader.Reference<KARCurve>();
    edge.low = reader.Real();
    edge.high = reader.Real();
    edge.start = reader.Integer();
    edge.end = reader.Integer();
    return edge;
}

KARBodyFace ReadFace(GMKReader& reader)
{
    KARBodyFace face;
    face.surface = reader.Reference<KARSurface>();
    face.reversed = reader.Flag();
    const std::size_t loops = reader.Count(LoopBytes);
    for (std::size_t i = 0; i < loops && !reader.Failed(); ++i)
        face.loops.push_back(ReadLoop(reader));
    return face;
}

void FillBody(GMKReader& reader, KARBody& body)
{
    for (const KARMathPoint& vertex : reader.Points())
        if (body.AddVertex(vertex) < 0)
            reader.Fail();
    const std::size_t edges = reader.Count(EdgeBytes);
    for (std::size_t i = 0; i < edges && !reader.Failed(); ++i)
        if (body.AddEdge(ReadEdge(reader)) < 0)
            reader.Fail();
    const std::size_t faces = reader.Count(FaceBytes);
    for (std::size_t i = 0; i < faces && !reader.Failed(); ++i)
        if (body.AddFace(ReadFace(reader)) < 0)
            reader.Fail();
}

} // namespace

bool KARBody::Store(GMKWriter& writer) const
{
    writer.Kind(StoredKind::Body);
    writer.Points(m_vertices);
    writer.Count(m_edges.size());
    for (const KARBodyEdge& edge : m_edges) {
        writer.Reference(edge.curve);
        writer.Real(edge.low);
        writer.Real(edge.high);
        writer.Integer(edge.start);
        writer.Integer(edge.end);
    }
    writer.Count(m_faces.size());
    for (const KARBodyFace& face : m_faces) {
        writer.Reference(face.surface);
        writer.Flag(face.reversed);
        writer.Count(face.loops.size());
        for (const KARLoop& loop : face.loops)
            WriteLoop(writer, loop);
    }
    return true;
}

KARIGMKObject* kar::ReadBody(GMKReader& reader)
{
    KARBody* body = KARBody::Create();
    try {
        FillBody(reader, *body);
    } catch (...) {
        body->Release();
        throw;
    }
    if (reader.Failed()) {
        body->Release();
        return nullptr;
    }
    return body;
}
