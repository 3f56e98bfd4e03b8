#pragma once

#include "KARGMKStream.h"
#include "KARGeometricFactory.h"
#include "KARListPtrKARIGMKObject.h"
#include "KARStatus.h"

/// Loads stored objects from a stream.
class KAR_API KARIGMKObjectsLoad
{
public:
    /// Loads from this stream, which must outlive the operator.
    explicit KARIGMKObjectsLoad(KARGMKStream& stream) : m_stream(stream) {}

    /// Reads the block that makes up the rest of the stream and appends the objects that were
    /// listed when it was saved. The factory owns what was loaded; where it is null, a new one is
    /// given with one reference for the caller, who takes references on the objects that are
    /// to outlive it and releases it. The one mode is 0. KARFailure, with factory and list
    /// untouched and nothing left behind, when the stream is cut off, damaged, of an unknown
    /// version or holds what no factory would make; KAROutOfMemory when an allocation fails.
    KARStatus Load(KARGeometricFactory*& factory, KARListPtrKARIGMKObject& objects, int mode);

private:
    KARGMKStream& m_stream;
};
