// The part of a mechanism around some bodies as a world of its own.
#pragma once

#include "KARMPBody.h"
#include "KARMPDocumentsExport.h"

#include <string>
#include <vector>

class KARMPWorld;

namespace karmp::documents {

/// What is taken along.
struct ExtractionOptions
{
    /// Further bodies are taken along up to this many joints away from the given ones; constraints
    /// between bodies count as joints, and so do connectors when they are taken along.
    int reach = 0;
    /// The further families that are taken along, by the names of their elements: L"Connectors",
    /// L"Sensors". Shapes, joints, constraints, geometries and variables come with the bodies,
    /// values with the entities that use them, steps with their analysis case, and supports with
    /// their attribute.
    std::vector<std::wstring> families;
};

/// A link of the source that the extract does not have.
struct CutLink
{
    /// The entity of the source that holds the link, and the one that it leads to. One of the two
    /// is not in the extract.
    QOBSharedHandle<KARMPEntity> holder;
    QOBSharedHandle<KARMPEntity> target;
    /// The item of the holder by its path, as ItemInfo tells it.
    std::wstring item;
};

/// An extract.
struct Extraction
{
    /// The new world, under a basic world of its own as its entities are. Null when it cannot be
    /// made.
    QOBSharedHandle<KARMPWorld> world;
    /// A link that both ends know is told once, at the end that the extract has.
    std::vector<CutLink> cutLinks;
    /// What the extract holds otherwise than the source: the item of the source's entity that could
    /// not be carried over. Empty unless a class refuses what it holds itself.
    std::vector<CutLink> lostItems;
    /// Entities of the further families that stay behind because they refer to no other, so that
    /// nothing tells which bodies they are about.
    std::vector<QOBSharedHandle<KARMPEntity>> unrelated;
};

/// Extracts the part of a world around some of its bodies. The entities keep their identifiers and
/// all that they hold, but for links to entities that are not in the extract.
///
/// A joint or constraint comes along when all bodies that it is about do, and when it is about
/// variables alone, when all of those do. An entity of a further family comes along when all
/// entities that it refers to do, values apart. The globals and the ground body of the source are
/// those of the extract when they come along. A body in a plane takes the sketch and the body that
/// carries the sketch along, in place of the global body that of the extract.
KARMP_DOCUMENTS_API Extraction ExtractWorld(const KARMPWorld& world,
                                            const std::vector<QOBSharedHandle<KARMPBody>>& bodies,
                                            const ExtractionOptions& options = {});

} // namespace karmp::documents
