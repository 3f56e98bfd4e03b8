#include "KARMPBodyRelease.h"

#include <new>
#include <utility>

namespace karmp {

namespace {

// The bodies that a dying body of this thread let go of, while there is one.
thread_local std::vector<QOBSharedHandle<KARMPBody>>* t_released = nullptr;

} // namespace

BodyRelease::BodyRelease() : m_first(t_released == nullptr)
{
    if (m_first)
        t_released = &m_own;
}

BodyRelease::~BodyRelease()
{
    if (!m_first)
        return;
    while (!m_own.empty()) {
        const QOBSharedHandle<KARMPBody> body = std::move(m_own.back());
        m_own.pop_back();
    }
    t_released = nullptr;
}

void BodyRelease::Take(const QOBSharedHandle<KARMPBody>& body)
{
    try {
        t_released->push_back(body);
    } catch (const std::bad_alloc&) {
        // The body dies with what refers to it.
    }
}

} // namespace karmp
