// Stored objects and damaged streams of them for the tests of curves and surfaces.
#pragma once

#include "KARBase64.h"
#include "KARChecksum.h"
#include "KARGMKStream.h"
#include "KARGeometricFactory.h"
#include "KARIGMKObjectsSave.h"
#include "KARLineCurve.h"
#include "KARListPtrKARIGMKObject.h"
#include "KARPlaneSurface.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

struct ReleaseStored
{
    void operator()(KARBaseUnknown* object) const { object->Release(); }
};
using StoredFactory = std::unique_ptr<KARGeometricFactory, ReleaseStored>;

inline KARLineCurve* MakeLine(KARGeometricFactory& factory)
{
    return factory.Make<KARLineCurve>(KARMathLine({1, 2, 0}, {0, 2, 0}), -1.0, 4.0);
}
inline KARPlaneSurface* MakePlane(KARGeometricFactory& factory)
{
    return factory.Make<KARPlaneSurface>(KARMathPoint(0, 0, 1), KARMathVector(1, 0, 0),
                                         KARMathVector(0, 1, 0), KARSurLimits{-1, 1, -2, 2});
}

using StreamBytes = std::vector<unsigned char>;

/// The bytes of an object's stream.
inline StreamBytes StreamOf(KARBaseUnknown* object)
{
    KARGMKStream stream;
    KARListPtrKARIGMKObject list;
    list.Append(object);
    KARIGMKObjectsSave(stream).Save(list, nullptr);
    return {stream.GetBytes().begin(), stream.GetBytes().end()};
}

/// A stream with a valid checksum that announces 2^31 - 1 objects.
inline StreamBytes AnnouncingStream(StreamBytes stream)
{
    const auto put = [&stream](std::size_t offset, std::uint32_t value) {
        for (std::size_t byte = 0; byte < 4; ++byte)
            stream[offset + byte] = static_cast<unsigned char>(value >> (8U * byte));
    };
    put(20, 0x7fffffffU);
    // Of the payload, which follows the header.
    put(16, kar::Checksum(std::span(stream).subspan(20)));
    return stream;
}

/// Texts that stand for no stored object: no text, no base-64, a stream that is cut off after each
/// byte, that has a flipped bit in each, ten bytes, and streams that announce a gigabyte.
inline std::vector<std::wstring> DamagedStreams(const StreamBytes& whole)
{
    std::vector<std::wstring> texts{L"", L"====", L"\u0141AAA"};
    for (std::size_t count = 1; count < whole.size(); ++count)
        texts.push_back(kar::Base64EncodeWide(std::span(whole).first(count)));
    for (std::size_t index = 0; index < whole.size(); ++index) {
        StreamBytes flipped = whole;
        flipped[index] = static_cast<unsigned char>(flipped[index] ^ 0x10U);
        texts.push_back(kar::Base64EncodeWide(flipped));
    }
    StreamBytes length = whole;
    length[11] = 0x40; // of the payload
    texts.push_back(kar::Base64EncodeWide(length));
    texts.push_back(kar::Base64EncodeWide(std::span(length).first(10)));
    texts.push_back(kar::Base64EncodeWide(AnnouncingStream(whole)));
    return texts;
}

/// What reading all damaged streams may allocate at most, far below what they announce.
constexpr std::size_t AllocatedForDamagedStreams = 4U << 20U;
