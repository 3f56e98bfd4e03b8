#pragma once

#include "KAR3DBagRep.h"
#include "KAR3DMeshRep.h"
#include "KAR3DPolylineRep.h"
#include "RepFormat.h"

namespace kar {

/// Writes the records of a scene graph.
class RepWriter : public BlockWriter
{
public:
    RepWriter(KARMathStream& stream, RepForm form) : BlockWriter(stream), m_form(form) {}

    /// Writes the record of one node, without those of the nodes below.
    void Node(const KAR3DRep& rep);

private:
    void Number(std::uint64_t number);
    void Size(std::size_t count);
    void Positions(const std::vector<KARMathPoint>& points);
    void Mesh(const KAR3DMeshRep& mesh);

    RepForm m_form;
};

} // namespace kar
