#pragma once

#include "KARMathTransformation.h"
#include "KARPlatformExport.h"
#include "KARStatus.h"

#include <cstdint>
#include <memory>
#include <optional>

class KAR3DBagRep;
class KAR3DRep;

namespace kar {
class RepLink;
/// Destroys a representation, for the pointers that own one.
struct DestroyRep
{
    /// Destroys it; null is allowed.
    void operator()(KAR3DRep* rep) const;
};
} // namespace kar

/// A node that its holder destroys.
template <class Rep>
using KAR3DRepOwner = std::unique_ptr<Rep, kar::DestroyRep>;

/// A colour and how much of what lies behind it is hidden, each from 0 to 1.
struct KARColour
{
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    double opacity = 1.0;

    friend constexpr bool operator==(const KARColour& a, const KARColour& b) = default;
};

/// What a node of a scene graph is.
enum class KAR3DRepKind : std::uint8_t { Bag = 1, Mesh = 2, Polyline = 3 };

/// A node of a scene graph: what a body looks like, or a part of it. A node in a bag is destroyed
/// with the bag; any other belongs to whoever made it, until Destroy. Lengths are the caller's.
class KAR_API KAR3DRep
{
public:
    KAR3DRep(const KAR3DRep&) = delete;
    KAR3DRep& operator=(const KAR3DRep&) = delete;

    /// What kind of representation this is.
    virtual KAR3DRepKind GetKind() const = 0;
    /// Makes a copy of the node and of all below it, which is in no bag and the caller's.
    KAR3DRep* Duplicate() const;
    /// Takes the node out of its bag and frees it with all below it.
    void Destroy();

    /// The bag that the node is in; null when it is in none.
    KAR3DBagRep* GetBag() const { return m_bag; }
    /// True for the node itself and for one that the other holds, at whatever depth.
    bool IsWithin(const KAR3DRep& other) const;

    /// From the node's own axes to those of its bag; new nodes have the identity.
    const KARMathTransformation& GetTransformation() const { return m_transformation; }
    /// KARFailure, with nothing stored, when a coefficient is not finite.
    KARStatus SetTransformation(const KARMathTransformation& transformation);
    /// The colour, without which the node has that of its bag.
    const std::optional<KARColour>& GetColour() const { return m_colour; }
    /// Stores a colour, or none. KARFailure, with nothing stored, when a share is not from 0 to 1.
    KARStatus SetColour(const std::optional<KARColour>& colour);

    /// Number of nodes that the process holds: 0 where everything was given back.
    static int GetAliveCount();

protected:
    KAR3DRep();
    virtual ~KAR3DRep();

private:
    friend class KAR3DBagRep;
    friend class kar::RepLink;

    /// A new node with what the class adds, without transformation and colour; a bag without nodes.
    virtual KAR3DRep* CopyAlone() const = 0;

    KAR3DBagRep* m_bag = nullptr;
    /// The first of the pointers that become null with this node.
    kar::RepLink* m_links = nullptr;
    KARMathTransformation m_transformation;
    std::optional<KARColour> m_colour;
};

inline void kar::DestroyRep::operator()(KAR3DRep* rep) const
{
    rep->Destroy();
}
