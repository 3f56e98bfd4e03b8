#include "KARMPStoredObject.h"

#include "KARGMKStream.h"
#include "KARIGMKObjectsLoad.h"
#include "KARIGMKObjectsSave.h"

#include <new>

namespace karmp {

bool SaveStoredObject(KARBaseUnknown* object, StreamBytes& bytes, std::optional<int> headerMode)
try {
    KARListPtrKARIGMKObject list;
    list.Append(object);
    KARGMKStream stream(0, KARGMKStream::ObjectStream, 0, nullptr);
    std::size_t position = 0;
    int version = 0;
    if (headerMode)
        stream.OpenWriteStreamHeader(*headerMode, position, version);
    if (KARFailed(KARIGMKObjectsSave(stream).Save(list, nullptr)))
        return false;
    if (headerMode && KARFailed(stream.CloseWriteStreamHeader(position, version)))
        return false;
    bytes.resize(stream.GetLength());
    std::size_t count = 0;
    stream.GetMemoryCopy(bytes.data(), bytes.size(), count);
    bytes.resize(count);
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

StoredObjects LoadStoredObjects(const StreamBytes& bytes, std::optional<int> headerMode)
{
    StoredObjects stored;
    KARGMKStream stream(bytes.data(), bytes.size());
    if (headerMode && KARFailed(stream.OpenReadStreamHeader(*headerMode)))
        return stored;
    KARGeometricFactory* factory = nullptr;
    KARIGMKObjectsLoad(stream).Load(factory, stored.objects, 0);
    stored.factory.reset(factory);
    return stored;
}

bool WriteStoredObject(ElementWriter& parent, std::wstring_view name, KARBaseUnknown* object,
                       KARMPSourceLocation where)
{
    StreamBytes bytes;
    return KARMPVerify(SaveStoredObject(object, bytes), where) &&
           WriteStream(parent, name, bytes, where);
}

bool ReadStoredObjects(ElementReader& parent, std::wstring_view name, StoredObjects& stored,
                       KARMPSourceLocation where)
{
    StreamBytes bytes;
    if (!ReadStream(parent, name, bytes, Absent::ReportAndKeep, where))
        return false;
    stored = LoadStoredObjects(bytes);
    return KARMPVerify(stored.objects[1] != nullptr, where);
}

} // namespace karmp
