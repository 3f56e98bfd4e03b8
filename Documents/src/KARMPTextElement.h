#pragma once

#include "KARMPContentWriter.h"
#include "KARMPEntity.h"
#include "KARMPEntityText.h"
#include "KARMPFailedCheck.h"
#include "KARMPStreamElement.h"
#include "KARMPValue.h"

#include <concepts>
#include <span>
#include <string>
#include <string_view>

namespace karmp::documents {

/// Writes the content of one element as text, by the reporting rules of ElementWriter, which has
/// the same operations.
class TextElement
{
public:
    using Where = KARMPSourceLocation;
    using Place = EntityText::Place;

    explicit TextElement(Place* place, Where /*where*/) : m_place(place) {}
    TextElement(Place* parent, std::wstring_view name, Where /*where*/)
        : m_place(&Inside(*parent).Open(parent->text->NameOf(name)))
    {}

    explicit operator bool() const { return true; }
    Place* Node() const { return m_place; }
    KARStatus Status() const { return m_failed ? KARFailure : KARSuccess; }
    void Fail() { m_failed = true; }
    void SetStatus(KARStatus earlier) { m_failed = KARFailed(earlier); }
    bool Base(KARStatus status, Where where)
    {
        if (!KARFailed(status))
            return true;
        m_failed = true;
        return KARMPVerify(false, where);
    }

    template <class T>
    void Attribute(std::wstring_view name, T value, Where /*where*/)
    {
        EntityText& text = Inside(*m_place);
        const bool isLate = m_place->state != EntityText::State::Tag;
        const std::size_t begin = text.m_out.Size();
        text.BeginAttribute(text.NameOf(name));
        Put(text, value, TextContext::Attribute);
        text.m_out.Put('"');
        if (isLate)
            text.EndLateAttribute(*m_place, begin);
    }
    template <class T>
    void Value(std::wstring_view name, T value, Where /*where*/)
    {
        EntityText& text = Inside(*m_place);
        const EntityText::Name& known = text.NameOf(name);
        constexpr bool isNumber = std::is_same_v<T, double> || std::is_same_v<T, int>;
        char* to = text.BeginTag(known, isNumber);
        *to++ = '>';
        if constexpr (isNumber) {
            text.m_out.End(text.PutEndTag(known, PutNumber(text, value, to)));
        } else {
            text.m_out.End(to);
            Put(text, value, TextContext::Element);
            text.PutEndTag(known);
        }
    }
    void Values(std::span<const std::wstring_view> names, const double* values, Where where)
    {
        if (Inside(*m_place).PutGroup(names, values))
            return;
        for (std::size_t index = 0; index < names.size(); ++index)
            Value(names[index], values[index], where);
    }
    TextElement Child(std::wstring_view name, Where where) { return {m_place, name, where}; }

    void Note(const Item& item, const QOBSharedBase& target)
    {
        if (target)
            m_place->text->m_links.push_back(
                {&item, static_cast<const KARMPEntity*>(target._getReferent())});
    }

    void Reference(std::wstring_view name, const QOBSharedBase& entity, Where where)
    {
        EntityText& text = Inside(*m_place);
        text.m_out.End(text.BeginTag(text.NameOf(name), false));
        if (KARMPVerify(static_cast<bool>(entity), where))
            text.PutReference(*static_cast<const KARMPEntity*>(entity._getReferent()),
                              KARMPSerializer::SerializeName());
        text.m_out.PutPadded<2>("/>", 2);
    }
    void UnknownReference(std::wstring_view name, Where where)
    {
        TextElement child = Child(name, where);
        child.Attribute(L"id", true, where);
        child.Attribute(L"name", true, where);
    }
    /// Writes the identifier and the name of an entity, which are the first items of its content,
    /// as they are stored. Gives the number of items written.
    std::size_t Names(const Content& content, const KARMPEntity& entity)
    {
        EntityText& text = Inside(*m_place);
        const kar::SharedText* identifier = nullptr;
        if (!EntityAccess::IsNameWritten<KARMPEntity>() || !text.IsNamed(content) ||
            KARFailed(EntityAccess::Identifier(entity, identifier)))
            return 0;
        const bool isLate = m_place->state != EntityText::State::Tag;
        const std::size_t begin = text.m_out.Size();
        text.PutReference(entity, true);
        if (isLate)
            text.EndLateAttribute(*m_place, begin);
        return 2;
    }
    void ReferenceAttributes(const KARMPEntity* entity, bool withName, Where /*where*/)
    {
        m_place->text->PutReference(*entity, withName);
    }
    void ValueReference(std::wstring_view name, const QOBSharedBase& value, Where /*where*/)
    {
        const QOBSharedHandle<KARMPValue> target(value);
        EntityText& text = Inside(*m_place);
        text.m_out.End(text.BeginTag(text.NameOf(name), false));
        text.PutReference(*target, true);
        text.m_out.PutPadded<2>("/>", 2);
    }
    void Stream(std::wstring_view name, std::span<const unsigned char> bytes, Where where)
    {
        std::wstring coded;
        if (!StreamText(bytes, coded, where)) {
            Fail();
            return;
        }
        TextElement child = Child(name, where);
        child.Attribute(L"length", static_cast<int>(bytes.size()), where);
        EntityText& text = *m_place->text;
        child.m_place->tagEnd = text.m_out.Size();
        child.m_place->state = EntityText::State::Value;
        text.m_out.Put('>');
        text.PutText(coded, TextContext::Element);
    }

private:
    static EntityText& Inside(const Place& place)
    {
        place.text->CloseTo(place);
        return *place.text;
    }
    static void Put(EntityText& text, std::wstring_view value, TextContext context)
    {
        text.PutText(value, context);
    }
    static void Put(EntityText& text, ListedWord word, TextContext context)
    {
        const EntityText::Name& known = text.NameOf(word);
        if (known.isPlain)
            text.PutName(known);
        else
            text.PutText(word, context);
    }
    static char* PutNumber(EntityText& text, double value, char* to)
    {
        return text.PutDouble(value, to);
    }
    static char* PutNumber(EntityText&, int value, char* to)
    {
        return ByteBuffer::PutNumber(value, to);
    }
    template <class T>
    requires std::same_as<T, double> || std::same_as<T, int>
    static void Put(EntityText& text, T value, TextContext)
    {
        text.m_out.End(PutNumber(text, value, text.m_out.Begin(ByteBuffer::LongestNumber)));
    }
    static void Put(EntityText& text, std::same_as<bool> auto value, TextContext)
    {
        text.PutBool(value);
    }

    Place* m_place;
    bool m_failed = false;
};

} // namespace karmp::documents
