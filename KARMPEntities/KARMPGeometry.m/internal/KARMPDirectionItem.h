// Directions as items of a content list: they are made unit vectors when they are read.
#pragma once

#include "KARMPContentAccess.h"
#include "KARMPDirectionOnRead.h"

template <>
struct karmp::ItemConversion<KARMathDirection>
{
    static void Put(const KARMathDirection& from, ItemValue& to)
    {
        ItemConversion<KARMathVector>::Put(from, to);
    }
    static KARMathDirection Take(const ItemValue& from)
    {
        return DirectionOnRead(from.numbers[0], from.numbers[1], from.numbers[2]);
    }
};
