#pragma once

#include "KARBaseUnknown.h"
#include "KARMathStream.h"

#include <cstddef>

/// The stream that stored objects are saved to and loaded from.
class KAR_API KARGMKStream : public KARMathStream
{
public:
    /// The type of a stream of stored objects.
    static constexpr int ObjectStream = 11;

    /// An empty stream for saving, without an implementation object.
    KARGMKStream();
    /// An empty stream for saving. `size` is a hint that decides nothing, `type` and `flag` are
    /// kept, and the implementation object is neither used nor counted.
    KARGMKStream(std::size_t size, int type, int flag, KARBaseUnknown* implementation);
    /// A stream over a copy of these bytes, for loading.
    KARGMKStream(const void* bytes, std::size_t count, KARBaseUnknown* implementation = nullptr);
    ~KARGMKStream() override;

    /// The type that was given; ObjectStream when none was.
    int GetType() const { return m_type; }
    /// The flag that was given; 0 when none was.
    int GetFlag() const { return m_flag; }
    /// The implementation object that was given, or null.
    KARBaseUnknown* GetImplementation() const { return m_implementation; }

private:
    int m_type = ObjectStream;
    int m_flag = 0;
    KARBaseUnknown* m_implementation = nullptr;
};
