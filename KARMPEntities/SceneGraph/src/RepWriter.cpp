#include "RepWriter.h"

namespace kar {

void RepWriter::Number(std::uint64_t number)
{
    for (; number >= 0x80U; number >>= 7U)
        Byte(static_cast<std::uint8_t>(number | 0x80U));
    Byte(static_cast<std::uint8_t>(number));
}

void RepWriter::Size(std::size_t count)
{
    if (m_form == RepForm::Compact)
        Number(count);
    else
        Count(count);
}

void RepWriter::Positions(const std::vector<KARMathPoint>& points)
{
    Size(points.size());
    for (const KARMathPoint& point : points)
        Point(point);
}

void RepWriter::Mesh(const KAR3DMeshRep& mesh)
{
    Positions(mesh.GetVertices());
    for (const KARMathVector& normal : mesh.GetNormals())
        Vector(normal);
    Size(mesh.GetTriangles().size());
    std::int64_t before = 0;
    for (const KARTriangle& triangle : mesh.GetTriangles()) {
        for (const std::uint32_t index : triangle) {
            if (m_form == RepForm::Plain) {
                Index(index);
                continue;
            }
            // Small differences of either sign become small numbers.
            const std::int64_t difference = index - before;
            Number(difference < 0 ? static_cast<std::uint64_t>(-difference) * 2 - 1
                                  : static_cast<std::uint64_t>(difference) * 2);
            before = index;
        }
    }
}

void RepWriter::Node(const KAR3DRep& rep)
{
    const bool isMoved = rep.GetTransformation() != KARMathTransformation();
    const auto* mesh =
        rep.GetKind() == KAR3DRepKind::Mesh ? static_cast<const KAR3DMeshRep*>(&rep) : nullptr;
    const bool hasNormals = mesh != nullptr && !mesh->GetNormals().empty();
    Byte(static_cast<std::uint8_t>(rep.GetKind()));
    Byte(static_cast<std::uint8_t>((isMoved ? TransformationPart : 0) |
                                   (rep.GetColour() ? ColourPart : 0) |
                                   (hasNormals ? NormalsPart : 0)));
    if (isMoved)
        Transformation(rep.GetTransformation());
    if (const std::optional<KARColour>& colour = rep.GetColour())
        for (const double share : {colour->red, colour->green, colour->blue, colour->opacity})
            Real(share);
    switch (rep.GetKind()) {
    case KAR3DRepKind::Bag:
        Size(static_cast<const KAR3DBagRep&>(rep).GetChildren().size());
        break;
    case KAR3DRepKind::Mesh:
        Mesh(*mesh);
        break;
    case KAR3DRepKind::Polyline:
        Positions(static_cast<const KAR3DPolylineRep&>(rep).GetPoints());
        break;
    }
}

} // namespace kar
