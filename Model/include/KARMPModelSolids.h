// Boxes and cylinders that bodies are made of: what they weigh, and what they look like.
#pragma once

#include "KAR3DRep.h"
#include "KARMPModelExport.h"
#include "KARMPModelOptions.h"

#include <array>
#include <cstddef>
#include <span>

namespace karmp::model {

class Model;

/// A solid piece of a body, a box along the body's axes or a cylinder along one of them, in m.
struct Solid
{
    std::array<double, 3> center;
    /// Of the box around it, none below 0.
    std::array<double, 3> edges;
    /// Of a cylinder: 0, 1 or 2; -1 for a box.
    int axis = -1;
    KARColour colour = {};
};

/// A cylinder along an axis of the body, 0, 1 or 2.
KARMP_MODEL_API Solid Drum(const std::array<double, 3>& center, int axis, double radius,
                           double length, const KARColour& colour = {});
/// What solids weigh together at a density in kg/m3, for a Body; nothing without one.
KARMP_MODEL_API BodyOptions MassOf(std::span<const Solid> solids, double density);

/// How many triangles the bodies of a model are drawn with, in meshes.
KARMP_MODEL_API std::size_t TriangleCountOf(const Model& model);

} // namespace karmp::model
