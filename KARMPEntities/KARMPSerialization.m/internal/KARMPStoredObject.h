// Stored objects in the element tree: their stream as base-64 text.
#pragma once

#include "KARGeometricFactory.h"
#include "KARListPtrKARIGMKObject.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPStreamElement.h"

#include <memory>
#include <optional>

namespace karmp {

/// Releases a factory, for a unique pointer.
struct FactoryRelease
{
    void operator()(KARGeometricFactory* factory) const { factory->Release(); }
};

/// The objects that were loaded from one stream. They live as long as the factory, or as a
/// reference that is taken on them.
struct StoredObjects
{
    std::unique_ptr<KARGeometricFactory, FactoryRelease> factory;
    KARListPtrKARIGMKObject objects;
};

/// Gives the bytes of an object's stream, behind a header of a mode where one is told; false for
/// null, for an object without a stored form and when an allocation fails.
bool SaveStoredObject(KARBaseUnknown* object, StreamBytes& bytes,
                      std::optional<int> headerMode = std::nullopt);
/// Loads the objects from a stream, without any when they cannot be loaded or when the header of
/// the mode that is told is not there.
StoredObjects LoadStoredObjects(const StreamBytes& bytes,
                                std::optional<int> headerMode = std::nullopt);

/// Adds an element with the stream of an object as text and its number of bytes as "length".
/// Every failure is reported; false when no such element was added.
bool WriteStoredObject(ElementWriter& parent, std::wstring_view name, KARBaseUnknown* object,
                       KARMPSourceLocation where = KARMPSourceLocation::current());

/// Loads the objects from an element's text. Every failure is reported; false when no object was
/// loaded. A missing or wrong "length" is no failure: the text decides.
bool ReadStoredObjects(ElementReader& parent, std::wstring_view name, StoredObjects& stored,
                       KARMPSourceLocation where = KARMPSourceLocation::current());

} // namespace karmp
