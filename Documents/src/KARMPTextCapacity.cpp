#include "KARMPTextCapacity.h"

#include "KARLargePages.h"

#include <new>
#include <stdexcept>

namespace karmp::documents {

void ReserveMore(std::string& bytes, std::size_t more)
{
    try {
        bytes.reserve(bytes.size() + more);
    } catch (const std::bad_alloc&) {
        return;
    } catch (const std::length_error&) {
        return;
    }
    kar::AskForLargePages(bytes.data() + bytes.size(), bytes.capacity() - bytes.size());
}

} // namespace karmp::documents
