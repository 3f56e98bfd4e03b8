// What springs with attachments share: values that are given as numbers too, and how they are
// written.
#pragma once

#include "KARMPContentWalk.h"
#include "KARMPEntityServices.h"
#include "KARMPValue.h"

namespace karmp {

using SpringValue = QOBSharedHandle<KARMPValue>;

/// Stores a number of a quantity as a new constant, by the setter for values, once there is one. A
/// failure of either step is a failed check; the result is that of storing.
template <class Spring>
KARStatus SetSpringNumber(Spring& spring, KARStatus (Spring::*set)(const SpringValue&),
                          double number, KARMPPhysicalQuantity::Enum quantity,
                          KARMPSourceLocation where = KARMPSourceLocation::current())
{
    SpringValue value;
    KARMPVerify(!KARFailed(MakeConstant(&spring, number, quantity, value)), where);
    if (!value)
        return KARFailure;
    return KARMPVerify(!KARFailed((spring.*set)(value)), where) ? KARSuccess : KARFailure;
}

/// Reads the number of a constant. Having no value, or one that is no constant, is a failed check
/// and a failure with 0.
inline KARStatus GetSpringNumber(const KARMPLink<KARMPValue>& value, double& number,
                                 KARMPSourceLocation where = KARMPSourceLocation::current())
{
    return KARMPVerify(!KARFailed(ReadConstant(value.Handle(), number)), where) ? KARSuccess
                                                                                : KARFailure;
}

/// A value that the writer asks the spring's getter for.
template <class Spring, auto Link, KARStatus (Spring::*Get)(SpringValue&) const,
          KARStatus (Spring::*Set)(const SpringValue&)>
constexpr ItemList<1> AskedValue(std::wstring_view name, std::string_view says,
                                 Where where = Where::current())
{
    return AskedValueReference<Link, Get, Set>(name, says, where);
}

} // namespace karmp
