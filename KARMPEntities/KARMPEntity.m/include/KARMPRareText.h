#pragma once

#include "KARString.h"

#include <memory>
#include <string_view>

namespace karmp {

/// A narrow text that is empty in nearly all objects, where it then takes no more than a pointer.
/// The entities of a large world do not fit the caches, so that each line of memory that one has
/// less is time.
class RareText
{
public:
    RareText() noexcept = default;
    RareText(const RareText& source) : m_text(source.IsEmpty() ? nullptr : Copy(*source.m_text)) {}
    RareText& operator=(const RareText&) = delete;
    ~RareText() = default;

    /// Replaces the text.
    RareText& operator=(const KARString& text)
    {
        m_text = text.IsEmpty() ? nullptr : Copy(text);
        return *this;
    }

    /// True when there is no byte.
    bool IsEmpty() const noexcept { return m_text == nullptr; }
    /// The bytes, valid until the text is replaced.
    std::string_view View() const noexcept
    {
        return m_text != nullptr ? std::string_view(m_text->Text()) : std::string_view();
    }
    /// The text by itself.
    KARString Get() const { return m_text != nullptr ? *m_text : KARString(); }

private:
    static std::unique_ptr<const KARString> Copy(const KARString& text)
    {
        return std::make_unique<const KARString>(text);
    }

    std::unique_ptr<const KARString> m_text;
};

} // namespace karmp
