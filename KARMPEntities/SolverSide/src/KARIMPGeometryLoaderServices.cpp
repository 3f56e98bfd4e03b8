#include "KARIMPGeometryLoaderServices.h"

#include <mutex>
#include <utility>

namespace {

std::mutex mutex;
KARIMPGeometryLoaderServices* current = nullptr;

} // namespace

KARIMPGeometryLoaderServices::KARIMPGeometryLoaderServices() = default;
KARIMPGeometryLoaderServices::~KARIMPGeometryLoaderServices() = default;

KARIMPGeometryLoaderServices* KARIMPGeometryLoaderServices::GetKARIMPGeometryLoaderServices()
{
    const std::lock_guard lock(mutex);
    if (current != nullptr)
        current->AddRef();
    return current;
}

void KARIMPGeometryLoaderServices::SetKARIMPGeometryLoaderServices(
    KARIMPGeometryLoaderServices* services)
{
    if (services != nullptr)
        services->AddRef();
    KARIMPGeometryLoaderServices* former = nullptr;
    {
        const std::lock_guard lock(mutex);
        former = std::exchange(current, services);
    }
    // Outside the lock: the end of the former ones is the solver's code.
    if (former != nullptr)
        former->Release();
}
