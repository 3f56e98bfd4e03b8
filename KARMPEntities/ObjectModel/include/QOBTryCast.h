// Casts of handles that answer null, beside the conversions, which throw.
#pragma once

#include "QOBSharedHandle.h"

/// The referent as a T; null, where the conversion of the handle throws QOBEInvalidCast, when it is
/// no T, and of a null handle.
template <class T, class U>
QOBSharedHandle<T> QOBTryCast(const QOBSharedHandle<U>& handle) noexcept
{
    return dynamic_cast<const T*>(handle.get()) != nullptr ? QOBSharedHandle<T>::unchecked(handle)
                                                           : QOBSharedHandle<T>();
}
