#pragma once

#include "KARBaseUnknown.h"
#include "KARMPExport.h"
#include "KARStatus.h"
#include "QOBSharedHandle.h"

class KARMPCurve;

/// What a solver offers on the geometry of a mechanism, for the whole process.
class KARMP_API KARIMPGeometryLoaderServices : public KARCountedUnknown
{
public:
    /// Gives the solver's services with a reference for the caller; null when there are none.
    static KARIMPGeometryLoaderServices* GetKARIMPGeometryLoaderServices();
    /// Makes these the services of the process, with a reference on them, and gives up that on the
    /// former ones; null leaves none. May be called from any thread.
    static void SetKARIMPGeometryLoaderServices(KARIMPGeometryLoaderServices* services);

    /// Gives the tangent of a curve at a parameter of the whole curve: three numbers, along the
    /// axes of the curve's body.
    virtual KARStatus GetCurveTangent(const QOBSharedHandle<KARMPCurve>& curve, double parameter,
                                      double* tangent) = 0;

protected:
    KARIMPGeometryLoaderServices();
    ~KARIMPGeometryLoaderServices() override;
};
