#include "KARMPReadingPlace.h"

#include "KARMPDeserializer.h"

#include <utility>

namespace {

thread_local const KARMPDeserializer* currentNode = nullptr;

} // namespace

KARMPReadingPlace::KARMPReadingPlace(const KARMPDeserializer* node) noexcept
    : m_node(node), m_outer(std::exchange(currentNode, node))
{
    if (m_node != nullptr)
        m_node->BeginReading();
}

KARMPReadingPlace::~KARMPReadingPlace()
{
    if (m_node != nullptr)
        m_node->EndReading();
    currentNode = m_outer;
}

const KARMPDeserializer* KARMPReadingPlace::Current() noexcept
{
    return currentNode;
}
