#include "KARMPShapeStreams.h"

#include "KAR3DMeshRep.h"
#include "KAR3DPolylineRep.h"
#include "KAR3DRepWalk.h"
#include "KARBody.h"
#include "KARChecksum.h"
#include "KARIGMKObjectsLoad.h"
#include "KARIGMKObjectsSave.h"
#include "KARMPWorldDifference.h"
#include "KARSceneGraphBlocks.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <typeinfo>

namespace karmp::documents {

namespace {

// Parameters along a curve, and in each direction of a surface, at which shapes are compared.
constexpr int Samples = 9;

struct FreeBlock
{
    void operator()(void* block) const { std::free(block); }
};

class NumberCollector
{
public:
    explicit NumberCollector(ShapeNumbers& into) : m_into(into) {}

    void Node(const KAR3DRep& rep);
    void Object(const KARIGMKObject& object);

private:
    void Add(std::uint64_t value) { m_into.structure.push_back(value); }
    void Add(double number) { m_into.numbers.push_back(number); }
    template <class Triple>
    void AddTriple(const Triple& triple)
    {
        Add(triple.GetX());
        Add(triple.GetY());
        Add(triple.GetZ());
    }
    template <class Triple>
    void AddAll(const std::vector<Triple>& triples)
    {
        Add(std::uint64_t{triples.size()});
        for (const Triple& triple : triples)
            AddTriple(triple);
    }
    void Curve(const KARCurve& curve, double low, double high);
    void Surface(const KARSurface& surface);
    void Body(const KARBody& body);

    ShapeNumbers& m_into;
};

void NumberCollector::Node(const KAR3DRep& rep)
{
    Add(static_cast<std::uint64_t>(rep.GetKind()));
    Add(std::uint64_t{rep.GetColour() ? 1U : 0U});
    if (const auto& colour = rep.GetColour())
        for (const double share : {colour->red, colour->green, colour->blue, colour->opacity})
            Add(share);
    std::array<double, 12> coefficients{};
    rep.GetTransformation().GetCoef(coefficients.data());
    for (const double coefficient : coefficients)
        Add(coefficient);
    if (rep.GetKind() == KAR3DRepKind::Bag)
        Add(std::uint64_t{static_cast<const KAR3DBagRep&>(rep).GetChildren().size()});
    if (rep.GetKind() == KAR3DRepKind::Polyline)
        AddAll(static_cast<const KAR3DPolylineRep&>(rep).GetPoints());
    if (rep.GetKind() != KAR3DRepKind::Mesh)
        return;
    const auto& mesh = static_cast<const KAR3DMeshRep&>(rep);
    AddAll(mesh.GetVertices());
    AddAll(mesh.GetNormals());
    for (const KARTriangle& triangle : mesh.GetTriangles())
        for (const std::uint32_t index : triangle)
            Add(std::uint64_t{index});
}

void NumberCollector::Curve(const KARCurve& curve, double low, double high)
{
    Add(std::uint64_t{typeid(curve).hash_code()});
    Add(low);
    Add(high);
    for (int i = 0; i < Samples; ++i)
        AddTriple(curve.EvalPoint(low + (high - low) * i / (Samples - 1)));
}

void NumberCollector::Surface(const KARSurface& surface)
{
    Add(std::uint64_t{typeid(surface).hash_code()});
    const KARSurLimits limits = surface.GetLimits();
    for (const double limit : {limits.uLow, limits.uHigh, limits.vLow, limits.vHigh})
        Add(limit);
    const auto sample = [](double low, double high, int index) {
        return low + (high - low) * index / (Samples - 1);
    };
    for (int i = 0; i < Samples; ++i)
        for (int j = 0; j < Samples; ++j)
            AddTriple(surface.EvalPoint(sample(limits.uLow, limits.uHigh, j),
                                        sample(limits.vLow, limits.vHigh, i)));
}

void NumberCollector::Body(const KARBody& body)
{
    AddAll(body.GetVertices());
    Add(std::uint64_t{body.GetEdges().size()});
    for (const KARBodyEdge& edge : body.GetEdges()) {
        Curve(*edge.curve, edge.low, edge.high);
        Add(static_cast<std::uint64_t>(edge.start));
        Add(static_cast<std::uint64_t>(edge.end));
    }
    for (const KARBodyFace& face : body.GetFaces()) {
        Surface(*face.surface);
        Add(std::uint64_t{face.reversed ? 1U : 0U});
        for (const KARLoop& loop : face.loops) {
            Add(std::uint64_t{loop.size()});
            for (const KAROrientedEdge& oriented : loop)
                Add(static_cast<std::uint64_t>(oriented.edge) * 2 + (oriented.reversed ? 1U : 0U));
        }
    }
}

void NumberCollector::Object(const KARIGMKObject& object)
{
    if (const auto* const curve = dynamic_cast<const KARCurve*>(&object)) {
        double low = 0.0;
        double high = 0.0;
        curve->GetLimits(low, high);
        Curve(*curve, low, high);
    } else if (const auto* const surface = dynamic_cast<const KARSurface*>(&object)) {
        Surface(*surface);
    } else if (const auto* const body = dynamic_cast<const KARBody*>(&object)) {
        Body(*body);
    }
}

/// The one form in which what a stream holds is compared.
StreamBytes Canonical(const ShapeStream& stream)
{
    if (stream.scene != nullptr) {
        void* block = nullptr;
        std::size_t size = 0;
        KARWriteCgr(stream.scene.get(), block, size, KARSettingCgr(), nullptr, 0);
        const std::unique_ptr<void, FreeBlock> owner(block);
        const auto* const first = static_cast<const unsigned char*>(block);
        return {first, first + size};
    }
    KARGMKStream saved;
    KARIGMKObjectsSave(saved).Save(stream.stored.list, nullptr);
    return {saved.GetBytes().begin(), saved.GetBytes().end()};
}

std::string Counted(std::size_t count, const char* one, const char* several)
{
    return std::to_string(count) + ' ' + (count == 1 ? one : several);
}

std::string SceneText(const KAR3DRep& scene)
{
    std::size_t nodes = 0;
    std::size_t triangles = 0;
    KARForEach3DRep(scene, [&](const KAR3DRepPlace& place) {
        ++nodes;
        if (place.rep->GetKind() == KAR3DRepKind::Mesh)
            triangles += static_cast<const KAR3DMeshRep*>(place.rep)->GetTriangles().size();
    });
    return "a scene graph of " + Counted(nodes, "node", "nodes") + " with " +
           Counted(triangles, "triangle", "triangles");
}

std::string ObjectText(const KARIGMKObject& object)
{
    const auto* const body = dynamic_cast<const KARBody*>(&object);
    if (body == nullptr)
        return dynamic_cast<const KARCurve*>(&object) != nullptr ? "a curve" : "a surface";
    return "a body of " + Counted(body->GetFaces().size(), "face", "faces") + " and " +
           Counted(body->GetEdges().size(), "edge", "edges");
}

} // namespace

StoredShapes LoadShapes(const StreamBytes& bytes, std::optional<int> headerMode)
{
    StoredShapes loaded;
    KARGMKStream stream(bytes.data(), bytes.size());
    if (headerMode && KARFailed(stream.OpenReadStreamHeader(*headerMode)))
        return loaded;
    KARGeometricFactory* factory = nullptr;
    KARIGMKObjectsLoad(stream).Load(factory, loaded.list, 0);
    loaded.factory.reset(factory);
    return loaded;
}

ShapeStream ReadShapeStream(const StreamBytes& bytes)
{
    ShapeStream stream;
    stream.scene.reset(KARReadCgr(bytes.data(), bytes.size()));
    if (stream.scene == nullptr)
        stream.scene.reset(KARReadSceneGraph(bytes.data(), bytes.size()));
    if (stream.scene == nullptr)
        stream.stored = LoadShapes(bytes);
    if (stream.IsEmpty())
        stream.stored = LoadShapes(bytes, ShapeHeaderMode);
    return stream;
}

ShapeNumbers NumbersOf(const ShapeStream& stream)
{
    ShapeNumbers numbers;
    NumberCollector collector(numbers);
    if (stream.scene != nullptr)
        KARForEach3DRep(*stream.scene,
                        [&](const KAR3DRepPlace& place) { collector.Node(*place.rep); });
    for (int position = 1; position <= stream.stored.list.Size(); ++position)
        collector.Object(*stream.stored.list[position]);
    return numbers;
}

bool HoldSame(const ShapeStream& before, const ShapeStream& after)
{
    return !before.IsEmpty() && !after.IsEmpty() && Canonical(before) == Canonical(after);
}

std::string StreamText(const std::vector<unsigned char>& bytes)
{
    const std::string size = Counted(bytes.size(), "byte", "bytes");
    const ShapeStream stream = ReadShapeStream(bytes);
    if (stream.IsEmpty())
        return size;
    std::array<char, 8> sum{};
    const auto end =
        std::to_chars(sum.data(), sum.data() + sum.size(), kar::Checksum(bytes), 16).ptr;
    return (stream.scene != nullptr ? SceneText(*stream.scene)
                                    : ObjectText(*stream.stored.list[1])) +
           " (" + size + ", " + std::string(sum.data(), end) + ')';
}

} // namespace karmp::documents
