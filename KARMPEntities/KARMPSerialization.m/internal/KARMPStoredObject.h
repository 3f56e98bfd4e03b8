// Stored objects in the element tree: their stream as base-64 text.
#pragma once

#include "KARGeometricFactory.h"
#include "KARListPtrKARIGMKObject.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"

#include <memory>

namespace karmp {

struct FactoryRelease
{
    void operator()(KARGeometricFactory* factory) const { factory->Release(); }
};

/// What was loaded from one stream. The objects live as long as the factory, or as a reference that
/// is taken on them.
struct StoredObjects
{
    std::unique_ptr<KARGeometricFactory, FactoryRelease> factory;
    KARListPtrKARIGMKObject objects;
};

/// Adds an element with the stream of an object as text and its number of bytes as "length".
/// Whatever fails is reported; false when there is no such element then.
bool WriteStoredObject(ElementWriter& parent, std::wstring_view name, KARBaseUnknown* object,
                       KARMPSourceLocation where = KARMPSourceLocation::current());

/// Loads the objects from an element's text. Whatever fails is reported; false when there is no
/// object then. A "length" that is missing or wrong is none of that: the text decides.
bool ReadStoredObjects(ElementReader& parent, std::wstring_view name, StoredObjects& stored,
                       KARMPSourceLocation where = KARMPSourceLocation::current());

} // namespace karmp
