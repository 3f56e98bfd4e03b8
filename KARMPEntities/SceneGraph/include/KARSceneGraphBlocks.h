// Scene graphs as blocks of memory, in two forms: the one of documents, in which counts and indices
// take few bytes, and a plain one of fixed widths. Both keep all that a scene graph holds, and
// begin with mark, version, length and checksum.
#pragma once

#include "KAR3DRep.h"

#include <cstddef>

/// What a writer is set to. The number is kept in the block and decides nothing.
enum KARSettingCgr : int {};

/// Nodes that stand one within the other, and nodes altogether, of one block.
inline constexpr int KARMaximumRepDepth = 256;
inline constexpr int KARMaximumRepCount = 1'000'000;

/// Gives the block of a node and of all below it, to be freed with `free`, and its size in bytes.
/// KARFailure, with a null block and the size 0, when the node is null, the graph is deeper or has
/// more nodes than the maximum, options are given or the mode is not 0; KAROutOfMemory, likewise,
/// when an allocation fails.
KAR_API KARStatus KARWriteCgr(const KAR3DRep* rep, void*& block, std::size_t& size,
                              KARSettingCgr setting, const void* options, int mode);
/// Makes the nodes of a block; the first is the caller's. Null for anything but a whole block of
/// this form that holds what its writer writes, and when an allocation fails. No number in the
/// block decides an allocation.
KAR_API KAR3DRep* KARReadCgr(const void* block, std::size_t size);

/// As KARWriteCgr, in the plain form.
KAR_API KARStatus KARWriteSceneGraph(const KAR3DRep* rep, void*& block, std::size_t& size,
                                     KARSettingCgr setting);
/// As KARReadCgr, from the plain form.
KAR_API KAR3DRep* KARReadSceneGraph(const void* block, std::size_t size);
