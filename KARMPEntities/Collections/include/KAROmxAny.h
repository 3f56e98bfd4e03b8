#pragma once

#include "KARPlatformExport.h"
#include "KARString.h"
#include "KARUnicodeString.h"
#include "_SEQUENCE_octet.h"

#include <variant>

/// What a KAROmxAny can hold.
enum class KAROmxAnyKind { None, Boolean, Int, Double, String, Octets };

/// A value that knows its kind. Nothing is converted: fetching it as another kind gives false and
/// leaves the argument as it was.
class KAR_API KAROmxAny
{
public:
    /// Holds nothing.
    KAROmxAny() = default;
    /// Holds a truth value.
    KAROmxAny(bool value) : m_value(value) {}
    /// Holds an integer.
    KAROmxAny(int value) : m_value(value) {}
    /// Holds a number.
    KAROmxAny(double value) : m_value(value) {}
    /// Holds a text.
    KAROmxAny(const KARUnicodeString& value) : m_value(value) {}
    /// Holds a text.
    KAROmxAny(const KARString& value) : m_value(KARUnicodeString(value.Text())) {}
    /// Holds a text.
    KAROmxAny(const char* value) : m_value(KARUnicodeString(value)) {}
    /// Holds bytes.
    KAROmxAny(const _SEQUENCE_octet& value) : m_value(value) {}

    /// Tells the kind of the value.
    KAROmxAnyKind Kind() const { return static_cast<KAROmxAnyKind>(m_value.index()); }
    /// Gives the number of bytes of Octets, 0 for None, 1 for any other kind.
    int Size() const;

    /// Gives the truth value.
    bool TryGetBoolean(bool& value) const { return TryGet(value); }
    /// Gives the integer.
    bool TryGetInt(int& value) const { return TryGet(value); }
    /// Gives the number.
    bool TryGetDouble(double& value) const { return TryGet(value); }
    /// Gives the text.
    bool TryGetString(KARUnicodeString& value) const { return TryGet(value); }
    /// Gives the text.
    bool TryGetString(KARString& value) const;

    /// Copies the first `count` bytes of Octets to a C array, or all when there are fewer, and
    /// returns how many. Nothing is copied, and 0 returned, when `kind` or what is held is not
    /// Octets, the array is null or `count` is not above 0.
    int CopyToCArray(KAROmxAnyKind kind, void* array, int count) const;

private:
    template <typename T>
    bool TryGet(T& value) const
    {
        const T* held = std::get_if<T>(&m_value);
        if (held)
            value = *held;
        return held != nullptr;
    }

    // In the order of KAROmxAnyKind.
    std::variant<std::monostate, bool, int, double, KARUnicodeString, _SEQUENCE_octet> m_value;
};
