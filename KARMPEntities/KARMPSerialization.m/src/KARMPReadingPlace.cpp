#include "KARMPReadingPlace.h"

#include <utility>

namespace {

thread_local const KARMPDeserializer* currentNode = nullptr;

} // namespace

KARMPReadingPlace::KARMPReadingPlace(const KARMPDeserializer* node) noexcept
    : m_outer(std::exchange(currentNode, node))
{}

KARMPReadingPlace::~KARMPReadingPlace()
{
    currentNode = m_outer;
}

const KARMPDeserializer* KARMPReadingPlace::Current() noexcept
{
    return currentNode;
}
