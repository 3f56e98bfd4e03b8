// Drag lines as items of a content list: origin, then direction.
#pragma once

#include "KARMPContentWalk.h"
#include "KARMPDirectionOnRead.h"
#include "KARMathLine.h"
#include "KARMathLine2D.h"

/// The direction is made a unit vector when it is read.
template <>
struct karmp::ItemConversion<KARMathLine>
{
    static void Put(const KARMathLine& from, ItemValue& to)
    {
        from.GetOrigin().GetCoord(to.numbers[0], to.numbers[1], to.numbers[2]);
        from.GetDirection().GetCoord(to.numbers[3], to.numbers[4], to.numbers[5]);
    }
    static KARMathLine Take(const ItemValue& from)
    {
        const auto& c = from.numbers;
        return {{c[0], c[1], c[2]}, DirectionOnRead(c[3], c[4], c[5])};
    }
};
/// The direction is taken as it is read.
template <>
struct karmp::ItemConversion<KARMathLine2D>
{
    static void Put(const KARMathLine2D& from, ItemValue& to)
    {
        from.GetOrigin().GetCoord(to.numbers[0], to.numbers[1]);
        from.GetDirection().GetCoord(to.numbers[2], to.numbers[3]);
    }
    static KARMathLine2D Take(const ItemValue& from)
    {
        const auto& c = from.numbers;
        return {{c[0], c[1]}, {c[2], c[3]}};
    }
};
