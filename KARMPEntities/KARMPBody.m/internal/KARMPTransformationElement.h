// A transformation in the element tree: "Translation" with the vector and "Rotation" with the
// matrix by columns.
#pragma once

#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMathTransformation.h"

namespace karmp {

/// Writes a transformation into an element.
inline void WriteTransformation(ElementWriter& element, const KARMathTransformation& transformation,
                                KARMPSourceLocation where = KARMPSourceLocation::current())
{
    if (ElementWriter translation = element.Child(L"Translation", where))
        translation.Values(VectorNames, transformation.GetVector(), where);
    if (ElementWriter rotation = element.Child(L"Rotation", where))
        rotation.Values(transformation.GetMatrix(), where);
}

/// Reads a transformation from an element. What is missing is reported: of the two parts a missing
/// one stays, of the vector a missing component is 0, of the matrix it stays.
inline void ReadTransformation(ElementReader& element, KARMathTransformation& transformation,
                               KARMPSourceLocation where = KARMPSourceLocation::current())
{
    if (ElementReader translation = element.Child(L"Translation", Absent::ReportAndKeep, where)) {
        KARMathVector vector;
        translation.Values(VectorNames, vector, Absent::ReportAndKeep, where);
        transformation.SetVector(vector);
    }
    if (ElementReader rotation = element.Child(L"Rotation", Absent::ReportAndKeep, where)) {
        KARMath3x3Matrix matrix = transformation.GetMatrix();
        rotation.Values(matrix, Absent::ReportAndKeep, where);
        transformation.SetMatrix(matrix);
    }
}

} // namespace karmp
