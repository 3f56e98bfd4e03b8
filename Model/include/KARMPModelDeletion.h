// What deletions of a model take and tell.
#pragma once

#include "KARMPModelRef.h"

#include <string>
#include <vector>

class KARMPEntity;

namespace karmp::model {

/// A reference from one entity to another one.
struct Dependent
{
    Ref<KARMPEntity> entity;
    /// The item by which the entity refers, by its path.
    std::string item;
    Ref<KARMPEntity> target;
};

/// What a deletion did, or would do.
struct Deletion
{
    /// False when it was refused; nothing was done then.
    bool succeeded = false;
    /// The entities and what went with them. The references are false afterwards, but for their
    /// handles.
    RefList<KARMPEntity> gone;
    /// The references to them of entities that stay, which were dropped.
    std::vector<Dependent> unlinked;
    /// Those of them whose entities lack something now: a joint with one body, a motor without a
    /// variable.
    std::vector<Dependent> leftShort;

    /// Whether the entities were deleted.
    explicit operator bool() const { return succeeded; }
};

/// How entities are deleted.
struct DeleteOptions
{
    /// Tells what would be done, and does nothing.
    bool preview = false;
    /// Entities that would be left short go as well, and so on.
    bool withShort = false;
};

} // namespace karmp::model
