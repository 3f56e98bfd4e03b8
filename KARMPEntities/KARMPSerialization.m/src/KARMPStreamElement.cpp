#include "KARMPStreamElement.h"

#include "KARSysTSCodePage.h"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>

namespace karmp {
namespace {

constexpr std::wstring_view Length = L"length";

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

bool StreamText(std::span<const unsigned char> bytes, std::wstring& text, KARMPSourceLocation where)
try {
    // The number of bytes is written as an int.
    if (!KARMPVerify(bytes.size() <= std::numeric_limits<std::int32_t>::max(), where))
        return false;
    char* encoded = nullptr;
    KARSysTSCodePage::ConvertToBase64(bytes.data(), static_cast<std::int32_t>(bytes.size()),
                                      encoded);
    const std::unique_ptr<char, Free> owner(encoded);
    if (!KARMPVerify(encoded != nullptr, where))
        return false;
    const std::string_view narrow(encoded);
    text.assign(narrow.begin(), narrow.end());
    return true;
} catch (const std::bad_alloc&) {
    return KARMPVerify(false, where);
}

bool StreamFromText(std::wstring_view text, StreamBytes& bytes, KARMPSourceLocation where)
try {
    unsigned char* decoded = nullptr;
    std::int32_t count = 0;
    KARSysTSCodePage::ConvertFromBase64(Narrowed(text).c_str(), decoded, count);
    const std::unique_ptr<unsigned char, Free> owner(decoded);
    if (!KARMPVerify(decoded != nullptr && count != 0, where))
        return false;
    bytes.assign(decoded, decoded + count);
    return true;
} catch (const std::bad_alloc&) {
    return KARMPVerify(false, where);
}

bool WriteStream(ElementWriter& parent, std::wstring_view name,
                 std::span<const unsigned char> bytes, KARMPSourceLocation where)
{
    std::wstring text;
    if (!StreamText(bytes, text, where)) {
        parent.Fail();
        return false;
    }
    KARMPSerializer* node = nullptr;
    if (!parent.Base(parent.Node()->AddElement(name, node, text), where))
        return false;
    if (!KARMPVerify(node != nullptr, where)) {
        parent.Fail();
        return false;
    }
    return ElementWriter(node).Attribute(Length, static_cast<int>(bytes.size()), where);
}

bool ReadStream(ElementReader& parent, std::wstring_view name, StreamBytes& bytes, Absent absent,
                KARMPSourceLocation where)
{
    ElementReader element = parent.Child(name, absent, where);
    if (!element)
        return false;
    std::wstring_view text;
    bool isRead = KARMPVerify(!KARFailed(element.Node()->GetValue(text)), where);
    if (isRead) {
        int length = 0;
        element.Attribute(Length, length, Absent::ReportAndKeep, where);
        isRead = StreamFromText(text, bytes, where);
    }
    if (!isRead && absent == Absent::ReportAndFail)
        parent.Fail();
    return isRead;
}

bool ReadStreamAttribute(ElementReader& element, std::wstring_view name, StreamBytes& bytes,
                         KARMPSourceLocation where)
{
    ReadText text;
    if (!element.Attribute(name, text, Absent::ReportAndFail, where))
        return false;
    if (StreamFromText(text.View(), bytes, where))
        return true;
    element.Fail();
    return false;
}

} // namespace karmp
