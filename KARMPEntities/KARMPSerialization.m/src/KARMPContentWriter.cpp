#include "KARMPContentWriter.h"

#include "KARMPElementWriter.h"

namespace karmp {

KARStatus WriteContent(const Content& content, const void* owner, KARMPSerializer* serializer,
                       WriteBase base)
{
    return WalkContent<ElementWriter>(
        content, content.frame.write, owner, serializer, &Content::ElementOf, base != nullptr,
        [&](KARMPSerializer* element) { return base(owner, element); },
        [&](ElementWriter& element, bool baseFailed) {
            ContentWriter<ElementWriter>(owner, element.Version())
                .Walk(content.items, element, baseFailed);
        });
}

} // namespace karmp
