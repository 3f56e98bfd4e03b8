// The definition of the classes that KARMP_KIND declares.
#pragma once

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

/// Constructors and destructor of a class without fields.
#define KARMP_DEFINE_KIND_LIFE(Class)                                                              \
    Class::Class() = default;                                                                      \
    Class::Class(const Class& source, CopyMode mode) : Super(source, mode) {}                      \
    Class::~Class() = default

/// Defines a class by its GUID, its element, its family's frame and a sentence on what it is.
#define KARMP_DEFINE_KIND(Class, Guid, ElementName, Frame, Says)                                   \
    KARMP_DEFINE_ENTITY(Class, Guid);                                                              \
    template <>                                                                                    \
    struct karmp::ContentOf<Class>                                                                 \
    {                                                                                              \
        static constexpr auto List = Element(ElementName, Says, Frame);                            \
    };                                                                                             \
    KARMP_DEFINE_CONTENT(Class);                                                                   \
    KARMP_DEFINE_KIND_LIFE(Class)
