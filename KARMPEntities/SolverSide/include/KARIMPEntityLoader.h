#pragma once

#include "KARPlatformExport.h"
#include "KARStatus.h"

/// Root of the loader interfaces: what a solver attaches to an entity, to be told of its changes
/// and asked about its state. An entity owns the loader last set on it and deletes it.
class KAR_API KARIMPEntityLoader
{
public:
    virtual ~KARIMPEntityLoader() = default;

    /// Prepares the solver's counterpart of the entity.
    virtual KARStatus Initialize() { return KARSuccess; }
    /// Brings the solver's counterpart up to date with the entity.
    virtual KARStatus Update() { return KARSuccess; }
    /// Brings the solver's counterpart back to its initial state.
    virtual KARStatus Reset() { return KARSuccess; }
    /// Lets go of the solver's counterpart.
    virtual KARStatus Terminate() { return KARSuccess; }
    /// Called when the entity becomes active; the result is the activation's.
    virtual KARStatus OnActivate() = 0;
    /// Called when the entity becomes inactive; the result is the deactivation's.
    virtual KARStatus OnDeactivate() = 0;

protected:
    KARIMPEntityLoader() = default;
    KARIMPEntityLoader(const KARIMPEntityLoader&) = default;
    KARIMPEntityLoader& operator=(const KARIMPEntityLoader&) = default;
};
