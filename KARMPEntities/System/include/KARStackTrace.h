#pragma once

#include "KARPlatformExport.h"
#include "KARStatus.h"

#include <cstddef>

/// The stack trace of the calling thread, for reports of failed checks. Where the platform has no
/// means for it, the trace is empty.
class KAR_API KARStackTrace
{
public:
    /// Most frames a trace holds.
    static constexpr int MaxDepth = 256;

    /// Takes the trace, frame 0 being the function that calls this.
    void GetTrace();
    /// Gives the number of frames, 0 before GetTrace.
    int GetDepth() const { return m_depth; }
    /// Writes what is known of a frame (function, file, address) and a terminator into a buffer of
    /// `size` bytes, cut to fit. KARFailure, with an empty text, when the frame is not there, the
    /// buffer is null or has no byte.
    KARStatus Read(int frame, char* buffer, std::size_t size) const;

private:
    void* m_frames[MaxDepth] = {};
    int m_depth = 0;
};
