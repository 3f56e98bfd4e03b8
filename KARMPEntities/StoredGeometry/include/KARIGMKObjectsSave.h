#pragma once

#include "KARGMKStream.h"
#include "KARListPtrKARIGMKObject.h"
#include "KARStatus.h"

/// Saves stored objects to a stream.
class KAR_API KARIGMKObjectsSave
{
public:
    /// Saves to this stream, which must outlive the operator.
    explicit KARIGMKObjectsSave(KARGMKStream& stream) : m_stream(stream) {}

    /// Appends one block with the listed objects and all that they refer to, each object once.
    /// When `saved` is not null, all objects written are appended to it in their order.
    /// KARFailure, with nothing written, when the list is empty or holds null or an object of a
    /// class without a stored form; KAROutOfMemory when an allocation fails.
    KARStatus Save(const KARListPtrKARIGMKObject& objects, KARListPtrKARIGMKObject* saved);

private:
    KARGMKStream& m_stream;
};
