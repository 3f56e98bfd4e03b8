#pragma once

#include "KARMPEnumerations.h"
#include "KARMPModelEdit.h"

#include <string_view>

class KARMPConstant;

namespace karmp::model {

/// A number of a quantity; null after a failure.
QOBSharedHandle<KARMPConstant> MakeConstant(Edit& edit, std::string_view identifier,
                                            KARMPPhysicalQuantity::Enum quantity, double number);

} // namespace karmp::model
