#pragma once

#include "KAR3DRepPointer.h"
#include "KARMPShape.h"

#include <vector>

/// What a body looks like: a node of a scene graph. The shape has a bag that owns the nodes that it
/// is given; one that somebody else destroys is none from then on.
class KARMP_API KARMP3DRep : public KARMPShape
{
    KARMP_ENTITY(KARMP3DRep, KARMPShape)

public:
    /// Writes the bodies and the representation as a block of the scene graph. Without a
    /// representation a failed check, and 0. With the environment variable "DONT_SERIALIZE_REP" the
    /// block is left out, with "DUMP_SCENEGRAPH_ONLY" it is written, and read, in its plain form;
    /// both are read when the library is loaded.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the bodies and the representation. A block that is missing or no base-64 is a failed
    /// check and a failure, one without a scene graph a failure.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Takes a node over and destroys the former one, unless it is the same. Null leaves none.
    /// Always 0.
    virtual KARStatus Set3DRep(KAR3DRep* rep);
    /// The node, which stays the shape's; null without one.
    virtual KAR3DRep* Get3DRep() const { return m_rep.Get(); }
    /// The same for a second node, which documents do not keep.
    virtual KARStatus SetMasterRep(KAR3DRep* rep);
    virtual KAR3DRep* GetMasterRep() const { return m_masterRep.Get(); }

protected:
    KARMP3DRep();
    /// A copy has a bag of its own with copies of all nodes, and no bodies.
    KARMP3DRep(const KARMP3DRep& source, CopyMode mode);
    ~KARMP3DRep() override;

private:
    using Node = KAR3DRepPointer<KAR3DRep>;

    KARStatus Replace(Node& field, KAR3DRep* rep);
    void CopyNode(const Node& source, const KAR3DBagRep* sourceBag, Node& field);
    bool IsRepWritten() const;
    KARStatus GetBlock(std::vector<unsigned char>& bytes) const;
    KARStatus SetBlock(const std::vector<unsigned char>& bytes);

    Node m_rep;
    Node m_masterRep;
    KAR3DRepPointer<KAR3DBagRep> m_bag;
};
