// What two worlds differ in, whatever the order and the identifiers of their entities.
#pragma once

#include "KARMPDocumentsExport.h"
#include "KARMPEntity.h"
#include "KARMPItems.h"

#include <cstdint>
#include <string>
#include <vector>

class KARMPWorld;

namespace karmp::documents {

/// What became of an entity, of one of its items, or of a setting of the world.
enum class DifferenceKind : std::uint8_t {
    Setting,    ///< A setting of the world has another value.
    Removed,    ///< The entity stands in the first world alone.
    Added,      ///< The entity stands in the second world alone.
    Renamed,    ///< The entity has another name.
    Moved,      ///< The body stands elsewhere: its item "Position" has another value.
    Changed,    ///< An item has another value, or refers to another entity.
    LinkLost,   ///< The entity is no longer linked to the target.
    LinkGained, ///< The entity is linked to the target as well.
    Reordered   ///< A list whose order means something holds the same entities in another order.
};

/// The word of a kind: "setting", "removed", "added", "renamed", "moved", "changed", "link-lost",
/// "link-gained", "reordered".
KARMP_DOCUMENTS_API const char* DifferenceText(DifferenceKind kind);

/// One difference. What a kind has no use for is empty.
struct Difference
{
    DifferenceKind kind = DifferenceKind::Changed;
    /// The entity in both worlds; null in the world that lacks it, and both for a setting.
    QOBSharedHandle<KARMPEntity> before;
    QOBSharedHandle<KARMPEntity> after;
    /// The item by its path, as ItemInfo tells it; "name", "class" for an entity that became one of
    /// another class, the name of a setting, and for what a class writes by code the path in its
    /// element, the entries of a list counted from 1:
    /// "CurveSegments/CurveSegment[2]/curveLowLimit".
    std::wstring item;
    /// What the item's numbers measure.
    KARMPPhysicalQuantity::Enum quantity = KARMPPhysicalQuantity::NoPhysicalQuantity;
    /// The values in both worlds, entities for references and lists of references; none where there
    /// is no value. Of what a class writes by code that one side alone has, a text.
    Value oldValue;
    Value newValue;
    /// The target of a link that was lost, in the first world, or gained, in the second one; of a
    /// word that belongs to an entry of a list, the entry in the first world.
    QOBSharedHandle<KARMPEntity> target;
};

/// What a stream of bytes holds: "a scene graph of 3 nodes with 12 triangles (840 bytes, 1e9b809d)"
/// with its size and checksum, or the number of bytes of one that holds no shape.
KARMP_DOCUMENTS_API std::string StreamText(const std::vector<unsigned char>& bytes);

/// How worlds are compared.
struct DifferenceOptions
{
    /// Numbers are equal when they differ by no more than this share of the greater magnitude; of
    /// numbers that belong together, as those of a vector, the greatest magnitude of all counts.
    double tolerance = 0.0;
    /// Numbers are equal when they differ by no more than this.
    double floor = 0.0;
    /// Equal identifiers tell what corresponds. Without it names and links alone do.
    bool byIdentifier = true;
};

/// Compares two worlds: the settings, then the entities family by family in the order of documents,
/// those of the first world before those that the second one adds.
///
/// Entities correspond by identifier, unless two entities of a world carry it; the others by class
/// and name, where those are equal by what they are linked to, then by content. Where less than
/// half of the entities correspond by identifier, an entity with another name corresponds when its
/// class and its links tell so.
///
/// The order of lists means nothing but for those whose item says so, and identifiers are not
/// compared. A link that both ends know is told once, at the end that holds it alone or in order;
/// the links of an added or removed entity are told by it alone. A NaN is equal to a NaN.
///
/// Entities without an identifier are given one, as by saving. The cost is about linear in the
/// number of entities and links.
KARMP_DOCUMENTS_API std::vector<Difference> FindDifferences(const KARMPWorld& before,
                                                            const KARMPWorld& after,
                                                            const DifferenceOptions& options = {});

} // namespace karmp::documents
