#pragma once

#include "KAR3DRep.h"
#include "KARMathPoint.h"
#include "RepFormat.h"

#include <vector>

namespace kar {

/// A node that was read, and for a bag the number of nodes that follow as its children.
struct ReadRep
{
    KAR3DRepOwner<KAR3DRep> rep;
    std::size_t children = 0;
};

/// Reads the records of a scene graph.
class RepReader : public BlockReader
{
public:
    RepReader(KARMathStream& stream, RepForm form) : BlockReader(stream), m_form(form) {}

    /// Reads the record of one node; without a node after a failure.
    ReadRep Node();

private:
    std::uint64_t Number();
    std::size_t Size(std::size_t bytesPerItem);
    std::vector<KARMathPoint> Positions();
    KAR3DRep* Mesh(bool hasNormals);

    RepForm m_form;
};

} // namespace kar
