#pragma once

#include "KARMPEntities.h"

#include <functional>

/// A solver's loader on a sensor, which owns it: each update fills the sensor in by a function.
template <class Interface>
class Filler : public Interface
{
public:
    explicit Filler(std::function<void()> fill) : m_fill(std::move(fill)) {}
    KARStatus Update() override
    {
        m_fill();
        return KARSuccess;
    }
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }

private:
    std::function<void()> m_fill;
};
