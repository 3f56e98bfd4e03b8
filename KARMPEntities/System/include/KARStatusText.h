// Statuses in words, for logs and messages.
#pragma once

#include "KARStatus.h"

#include <string_view>

/// The words of a status, "failure" for KARFailure; "unknown status" for any other number.
constexpr std::string_view KARStatusText(KARStatus status)
{
    switch (status) {
    case KARSuccess:
        return "success";
    case KARUnchanged:
        return "unchanged";
    case KARFailure:
        return "failure";
    case KARUnexpected:
        return "unexpected failure";
    case KARNotImplemented:
        return "not implemented";
    case KAROutOfMemory:
        return "out of memory";
    default:
        return "unknown status";
    }
}
