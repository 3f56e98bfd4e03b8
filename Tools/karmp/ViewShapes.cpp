#include "ViewShapes.h"

#include "KAR3DMeshRep.h"
#include "KAR3DPolylineRep.h"
#include "KAR3DRepWalk.h"
#include "KARBody.h"
#include "KARMP3DRep.h"
#include "KARMPShapeBody.h"
#include "ViewGeometry.h"
#include "ViewStored.h"

#include <algorithm>

namespace karmp::tool {

namespace {

void Append(const std::vector<KARMathPoint>& points, const KARMathTransformation& transformation,
            std::vector<double>& numbers)
{
    numbers.reserve(3 * points.size());
    for (const KARMathPoint& point : points) {
        const KARMathPoint placed = transformation * point;
        numbers.insert(numbers.end(), {placed.GetX(), placed.GetY(), placed.GetZ()});
    }
}

// Normals turn with the cofactors of the matrix, so that a scaled mesh keeps them across.
void AppendNormals(const std::vector<KARMathVector>& normals, const KARMath3x3Matrix& matrix,
                   std::vector<double>& numbers)
{
    const KARMathVector& x = matrix.GetFirstColumn();
    const KARMathVector& y = matrix.GetSecondColumn();
    const KARMathVector& z = matrix.GetThirdColumn();
    for (const KARMathVector& normal : normals) {
        KARMathVector turned =
            y.Cross(z) * normal.GetX() + z.Cross(x) * normal.GetY() + x.Cross(y) * normal.GetZ();
        turned.Normalize();
        numbers.insert(numbers.end(), {turned.GetX(), turned.GetY(), turned.GetZ()});
    }
}

ViewPiece DrawMesh(const KAR3DMeshRep& mesh, const KARMathTransformation& transformation)
{
    ViewPiece piece;
    Append(mesh.GetVertices(), transformation, piece.points);
    AppendNormals(mesh.GetNormals(), transformation.GetMatrix(), piece.normals);
    for (const KARTriangle& triangle : mesh.GetTriangles())
        piece.triangles.insert(piece.triangles.end(), triangle.begin(), triangle.end());
    return piece;
}

bool AreDrawable(const std::vector<double>& numbers)
{
    return std::all_of(
        numbers.begin(), numbers.end(), [](double number) { return IsDrawable(number); });
}

} // namespace

std::vector<ViewPiece> DrawRepresentation(const KAR3DRep& rep)
{
    std::vector<ViewPiece> pieces;
    KARForEach3DRep(rep, [&](const KAR3DRepPlace& place) {
        ViewPiece piece;
        if (const auto* const mesh = dynamic_cast<const KAR3DMeshRep*>(place.rep);
            mesh != nullptr && !mesh->GetTriangles().empty())
            piece = DrawMesh(*mesh, place.transformation);
        else if (const auto* const chain = dynamic_cast<const KAR3DPolylineRep*>(place.rep))
            Append(chain->GetPoints(), place.transformation, piece.points);
        if (piece.points.empty() || !AreDrawable(piece.points) || !AreDrawable(piece.normals))
            return;
        if (place.colour != nullptr)
            piece.colour = {place.colour->red, place.colour->green, place.colour->blue,
                            place.colour->opacity};
        pieces.push_back(std::move(piece));
    });
    return pieces;
}

std::vector<ViewPiece> DrawShape(const KARMPShape& shape)
{
    if (const auto* const representation = dynamic_cast<const KARMP3DRep*>(&shape);
        representation != nullptr && representation->Get3DRep() != nullptr)
        return DrawRepresentation(*representation->Get3DRep());
    ViewDrawing faces;
    if (const auto* const solid = dynamic_cast<const KARMPShapeBody*>(&shape))
        DrawStoredSurface(solid->GetBody(), faces);
    if (faces.triangles.empty() || !AreDrawable(faces.numbers))
        return {};
    ViewPiece piece;
    piece.points = std::move(faces.numbers);
    piece.triangles = std::move(faces.triangles);
    return {std::move(piece)};
}

ViewBox BoxAround(const std::vector<ViewPiece>& pieces)
{
    ViewBox box;
    for (const ViewPiece& piece : pieces)
        for (std::size_t i = 0; i + 2 < piece.points.size(); i += 3)
            box.Add({piece.points[i], piece.points[i + 1], piece.points[i + 2]});
    return box;
}

} // namespace karmp::tool
