#include "KARMPStoredObject.h"

#include "KARGMKStream.h"
#include "KARIGMKObjectsLoad.h"
#include "KARIGMKObjectsSave.h"

namespace karmp {

bool SaveStoredObject(KARBaseUnknown* object, StreamBytes& bytes)
{
    KARListPtrKARIGMKObject list;
    list.Append(object);
    KARGMKStream stream(0, KARGMKStream::ObjectStream, 0, nullptr);
    if (KARFailed(KARIGMKObjectsSave(stream).Save(list, nullptr)))
        return false;
    bytes.resize(stream.GetLength());
    std::size_t count = 0;
    stream.GetMemoryCopy(bytes.data(), bytes.size(), count);
    bytes.resize(count);
    return true;
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
    KARGMKStream stream(bytes.data(), bytes.size());
    KARGeometricFactory* factory = nullptr;
    KARIGMKObjectsLoad(stream).Load(factory, stored.objects, 0);
    stored.factory.reset(factory);
    return KARMPVerify(stored.objects[1] != nullptr, where);
}

} // namespace karmp
