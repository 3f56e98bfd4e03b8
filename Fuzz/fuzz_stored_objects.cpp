// Any bytes as a stream of stored objects, and as the payload of one, with and without the header
// of shapes: they give objects that can be used and saved, or a failure.
#include "KARBody.h"
#include "KARIGMKObjectsLoad.h"
#include "KARIGMKObjectsSave.h"
#include "SealedBlock.h"

#include <cstdlib>
#include <string_view>

namespace {

constexpr std::uint32_t ObjectMark = 0x4B4D474BU;
constexpr std::size_t HeaderSize = 20;
constexpr int ShapeMode = 1;

void Check(bool holds)
{
    if (!holds)
        std::abort();
}

void Use(KARIGMKObject* object)
{
    if (const auto* const curve = KARSysDynamicCast<KARCurve>(object)) {
        double low = 0.0;
        double high = 0.0;
        curve->GetLimits(low, high);
        Check(low < high);
        for (const double parameter : {low, 0.5 * (low + high), high, high + 1.0})
            curve->EvalTangent(parameter);
        curve->CreateParam(low);
    } else if (const auto* const surface = KARSysDynamicCast<KARSurface>(object)) {
        const KARSurLimits limits = surface->GetLimits();
        KARMathVector normal;
        surface->EvalNormal(limits.uLow, limits.vLow, normal);
        surface->EvalNormal(limits.uHigh, limits.vHigh, normal);
    } else if (const auto* const body = KARSysDynamicCast<KARBody>(object)) {
        body->IsClosed();
    }
}

void TryStream(KARGMKStream& stream)
{
    KARGeometricFactory* factory = nullptr;
    KARListPtrKARIGMKObject list;
    if (KARFailed(KARIGMKObjectsLoad(stream).Load(factory, list, 0))) {
        Check(factory == nullptr && list.Size() == 0);
        return;
    }
    for (int position = 1; position <= list.Size(); ++position)
        Use(list[position]);
    KARGMKStream again;
    Check(KARIGMKObjectsSave(again).Save(list, nullptr) == KARSuccess);
    factory->Release();
}

void Try(std::span<const std::uint8_t> bytes)
{
    KARGMKStream plain(bytes.data(), bytes.size());
    TryStream(plain);
    KARGMKStream withHeader(bytes.data(), bytes.size());
    if (!KARFailed(withHeader.OpenReadStreamHeader(ShapeMode)))
        TryStream(withHeader);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::span<const std::uint8_t> bytes(data, size);
    Try(bytes);
    // Of a whole stream, as the seeds are, the payload alone.
    const bool isWhole =
        size >= HeaderSize && std::string_view(reinterpret_cast<const char*>(data), 4) == "KGMK";
    Try(SealedBlock(ObjectMark, isWhole ? bytes.subspan(HeaderSize) : bytes));
    return 0;
}
