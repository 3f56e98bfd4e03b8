#include "RepReader.h"

#include "KAR3DBagRep.h"
#include "KAR3DMeshRep.h"
#include "KAR3DPolylineRep.h"

#include <limits>
#include <utility>

namespace kar {

namespace {

constexpr std::size_t PointBytes = 3 * sizeof(double);

} // namespace

// One number has one form, so that a block that was read is written as the same bytes.
std::uint64_t RepReader::Number()
{
    constexpr unsigned Groups = 5;
    std::uint64_t number = 0;
    for (unsigned group = 0; group < Groups; ++group) {
        const std::uint8_t byte = Byte();
        number |= static_cast<std::uint64_t>(byte & 0x7FU) << (7U * group);
        if ((byte & 0x80U) == 0) {
            if (byte == 0 && group > 0)
                Fail();
            return Failed() ? 0 : number;
        }
    }
    Fail();
    return 0;
}

std::size_t RepReader::Size(std::size_t bytesPerItem)
{
    return m_form == RepForm::Compact ? Checked(Number(), bytesPerItem) : Count(bytesPerItem);
}

std::vector<KARMathPoint> RepReader::Positions()
{
    std::vector<KARMathPoint> points(Size(PointBytes));
    for (KARMathPoint& point : points)
        point = Point();
    return points;
}

KAR3DRep* RepReader::Mesh(bool hasNormals)
{
    std::vector<KARMathPoint> vertices = Positions();
    if (hasNormals && vertices.empty())
        Fail();
    std::vector<KARMathVector> normals(hasNormals ? Checked(vertices.size(), PointBytes) : 0);
    for (KARMathVector& normal : normals)
        normal = Vector();
    std::vector<KARTriangle> triangles(Size(m_form == RepForm::Compact ? 3 : sizeof(KARTriangle)));
    std::int64_t before = 0;
    for (KARTriangle& triangle : triangles) {
        for (std::uint32_t& index : triangle) {
            if (m_form == RepForm::Plain) {
                index = Index();
                continue;
            }
            const std::uint64_t number = Number();
            const auto half = static_cast<std::int64_t>(number / 2);
            before += number % 2 != 0 ? -half - 1 : half;
            if (before < 0 || before > std::numeric_limits<std::uint32_t>::max()) {
                Fail();
                before = 0;
            }
            index = static_cast<std::uint32_t>(before);
        }
    }
    return Failed() ? nullptr
                    : KAR3DMeshRep::CreateRep(std::move(vertices), std::move(triangles),
                                              std::move(normals));
}

ReadRep RepReader::Node()
{
    const auto kind = static_cast<KAR3DRepKind>(Byte());
    const std::uint8_t parts = Byte();
    if (parts > (TransformationPart | ColourPart | NormalsPart) ||
        ((parts & NormalsPart) != 0 && kind != KAR3DRepKind::Mesh))
        Fail();
    const bool isMoved = (parts & TransformationPart) != 0;
    const KARMathTransformation transformation =
        isMoved ? Transformation() : KARMathTransformation();
    // The writer leaves the identity out.
    if (isMoved && transformation == KARMathTransformation())
        Fail();
    std::optional<KARColour> colour;
    if ((parts & ColourPart) != 0) {
        colour.emplace();
        for (double* share : {&colour->red, &colour->green, &colour->blue, &colour->opacity})
            *share = Real();
    }
    ReadRep read;
    switch (Failed() ? KAR3DRepKind() : kind) {
    case KAR3DRepKind::Bag:
        read.children = Size(SmallestRepRecord);
        read.rep.reset(KAR3DBagRep::CreateRep());
        break;
    case KAR3DRepKind::Mesh:
        read.rep.reset(Mesh((parts & NormalsPart) != 0));
        break;
    case KAR3DRepKind::Polyline:
        read.rep.reset(KAR3DPolylineRep::CreateRep(Positions()));
        break;
    }
    // A node that failed halfway may have been made all the same.
    if (Failed() || read.rep == nullptr || KARFailed(read.rep->SetTransformation(transformation)) ||
        KARFailed(read.rep->SetColour(colour))) {
        Fail();
        return {};
    }
    return read;
}

} // namespace kar
