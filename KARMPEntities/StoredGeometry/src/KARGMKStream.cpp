#include "KARGMKStream.h"

KARGMKStream::KARGMKStream() = default;

KARGMKStream::KARGMKStream(std::size_t /*size*/, int type, int flag, KARBaseUnknown* implementation)
    : m_type(type), m_flag(flag), m_implementation(implementation)
{}

KARGMKStream::KARGMKStream(const void* bytes, std::size_t count, KARBaseUnknown* implementation)
    : KARMathStream(bytes, count), m_implementation(implementation)
{}

KARGMKStream::~KARGMKStream() = default;
