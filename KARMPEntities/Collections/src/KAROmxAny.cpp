#include "KAROmxAny.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

int KAROmxAny::Size() const
{
    if (const auto* octets = std::get_if<_SEQUENCE_octet>(&m_value))
        return octets->length();
    return Kind() == KAROmxAnyKind::None ? 0 : 1;
}

bool KAROmxAny::TryGetString(KARString& value) const
{
    KARUnicodeString text;
    if (!TryGet(text))
        return false;
    value = KARString(text.Text());
    return true;
}

int KAROmxAny::CopyToCArray(KAROmxAnyKind kind, void* array, int count) const
{
    const auto* octets = std::get_if<_SEQUENCE_octet>(&m_value);
    if (octets == nullptr || kind != KAROmxAnyKind::Octets || array == nullptr || count <= 0)
        return 0;
    const int copied = std::min(count, octets->length());
    if (copied > 0)
        std::memcpy(array, octets->Data(), static_cast<std::size_t>(copied));
    return copied;
}
