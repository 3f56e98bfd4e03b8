#include "KARMPStoredObject.h"

#include "KARGMKStream.h"
#include "KARIGMKObjectsLoad.h"
#include "KARIGMKObjectsSave.h"
#include "KARSysTSCodePage.h"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

namespace karmp {
namespace {

struct Free
{
    void operator()(void* memory) const { std::free(memory); }
};

// Base-64 is ASCII, and so is no other character that the decoder takes.
std::string Narrowed(std::wstring_view text)
{
    std::string narrow(text.size(), '?');
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] > 0 && text[i] < 0x80)
            narrow[i] = static_cast<char>(text[i]);
    return narrow;
}

} // namespace

bool WriteStoredObject(ElementWriter& parent, std::wstring_view name, KARBaseUnknown* object,
                       KARMPSourceLocation where)
{
    KARListPtrKARIGMKObject list;
    list.Append(object);
    KARGMKStream stream(0, KARGMKStream::ObjectStream, 0, nullptr);
    if (!KARMPVerify(!KARFailed(KARIGMKObjectsSave(stream).Save(list, nullptr)), where))
        return false;
    std::vector<std::uint8_t> bytes(stream.GetLength());
    std::size_t count = 0;
    stream.GetMemoryCopy(bytes.data(), bytes.size(), count);
    // The number of bytes is written as an int.
    if (!KARMPVerify(count <= std::numeric_limits<std::int32_t>::max(), where))
        return false;
    char* encoded = nullptr;
    KARSysTSCodePage::ConvertToBase64(bytes.data(), static_cast<std::int32_t>(count), encoded);
    const std::unique_ptr<char, Free> text(encoded);
    if (!KARMPVerify(encoded != nullptr, where))
        return false;

    const std::string_view narrow(encoded);
    KARMPSerializer* node = nullptr;
    const KARStatus status =
        parent.Node()->AddElement(name, node, std::wstring(narrow.begin(), narrow.end()));
    if (!KARMPVerify(!KARFailed(status) && node != nullptr, where)) {
        parent.Fail();
        return false;
    }
    return ElementWriter(node).Attribute(L"length", static_cast<int>(count), where);
}

bool ReadStoredObjects(ElementReader& parent, std::wstring_view name, StoredObjects& stored,
                       KARMPSourceLocation where)
{
    ElementReader element = parent.Child(name, Absent::ReportAndKeep, where);
    std::wstring_view text;
    if (!element || !KARMPVerify(!KARFailed(element.Node()->GetValue(text)), where))
        return false;
    int length = 0;
    element.Attribute(L"length", length, Absent::ReportAndKeep, where);
    unsigned char* decoded = nullptr;
    std::int32_t count = 0;
    KARSysTSCodePage::ConvertFromBase64(Narrowed(text).c_str(), decoded, count);
    const std::unique_ptr<unsigned char, Free> bytes(decoded);
    if (!KARMPVerify(decoded != nullptr && count != 0, where))
        return false;

    KARGMKStream stream(decoded, static_cast<std::size_t>(count));
    KARGeometricFactory* factory = nullptr;
    KARIGMKObjectsLoad(stream).Load(factory, stored.objects, 0);
    stored.factory.reset(factory);
    return KARMPVerify(stored.objects[1] != nullptr, where);
}

} // namespace karmp
