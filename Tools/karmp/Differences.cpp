#include "Differences.h"

#include "EntityText.h"
#include "KARTextConversion.h"
#include "Output.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <ostream>
#include <set>
#include <span>

namespace karmp::tool {

namespace {

using documents::Difference;
using documents::DifferenceKind;
using Handle = QOBSharedHandle<KARMPEntity>;
using Handles = std::vector<Handle>;

// Longer texts, streams for instance, are shortened.
constexpr std::size_t LongestText = 60;

/// Prints differences entity by entity, for people.
class TextPrinter
{
public:
    TextPrinter(std::ostream& out, const std::vector<Difference>& differences,
                bool showsIdentifiers)
        : m_out(out), m_differences(differences), m_showsIdentifiers(showsIdentifiers)
    {}

    void Print(std::size_t limit)
    {
        const KARMPEntity* last = nullptr;
        bool isFirst = true;
        const std::size_t count = std::min(limit, m_differences.size());
        for (const Difference& difference : std::span(m_differences).first(count)) {
            const KARMPEntity* const entity = difference.before.get();
            const bool hasItem = difference.kind != DifferenceKind::Added &&
                                 difference.kind != DifferenceKind::Removed;
            if (hasItem && (isFirst || entity != last))
                m_out << Bold(entity != nullptr ? TitleOf(difference.before) : "World") << '\n';
            last = hasItem ? entity : difference.after.get();
            isFirst = false;
            PrintLine(difference);
        }
    }
    void PrintSummary() const;

private:
    std::string TitleOf(const Handle& entity) const
    {
        std::string title = karmp::tool::TitleOf(*entity);
        if (m_showsIdentifiers && !entity->getEntityName().empty())
            title += ' ' + Dim('[' + Printable(IdentifierOf(*entity)) + ']');
        return title;
    }

    void PrintLine(const Difference& difference) const
    {
        const std::string item = Printable(difference.item);
        switch (difference.kind) {
        case DifferenceKind::Removed:
            m_out << Red("- " + TitleOf(difference.before)) << '\n';
            return;
        case DifferenceKind::Added:
            m_out << Bold("+ " + TitleOf(difference.after)) << '\n';
            return;
        case DifferenceKind::LinkLost:
            m_out << "  - " << item << ": " << TitleOf(difference.target) << '\n';
            return;
        case DifferenceKind::LinkGained:
            m_out << "  + " << item << ": " << TitleOf(difference.target) << '\n';
            return;
        case DifferenceKind::Renamed:
            m_out << "  renamed: ";
            break;
        case DifferenceKind::Moved:
            return PrintMove(difference);
        case DifferenceKind::Reordered:
            m_out << "  " << item << " in another order: ";
            break;
        default:
            m_out << "  " << item;
            if (difference.target)
                m_out << " of " << TitleOf(difference.target);
            m_out << ": ";
        }
        m_out << ValueText(difference.oldValue) << " becomes " << ValueText(difference.newValue)
              << '\n';
    }

    // Translation and rotation are told each by itself. A body that became a planar one has fewer
    // numbers of both.
    void PrintMove(const Difference& difference) const
    {
        const auto& before = std::get<NumberArray>(difference.oldValue);
        const auto& after = std::get<NumberArray>(difference.newValue);
        const std::size_t splitBefore = TranslationLength(before.size());
        const std::size_t splitAfter = TranslationLength(after.size());
        PrintPart("moved: ", std::span(before).first(splitBefore),
                  std::span(after).first(splitAfter));
        PrintPart("turned: ", std::span(before).subspan(splitBefore),
                  std::span(after).subspan(splitAfter));
    }
    void PrintPart(const char* what, std::span<const double> before,
                   std::span<const double> after) const
    {
        const std::string left = '(' + Joined(before, NumberText) + ')';
        const std::string right = '(' + Joined(after, NumberText) + ')';
        if (left != right)
            m_out << "  " << what << left << " becomes " << right << '\n';
    }

    std::string ValueText(const Value& data) const
    {
        return std::visit([this](const auto& value) { return TextOf(value); }, data);
    }
    std::string TextOf(std::monostate) const { return "none"; }
    std::string TextOf(bool value) const { return value ? "yes" : "no"; }
    std::string TextOf(int value) const { return std::to_string(value); }
    std::string TextOf(double value) const { return NumberText(value); }
    std::string TextOf(const std::wstring& value) const
    {
        if (value.size() <= LongestText)
            return '"' + Printable(value) + '"';
        return '"' + Printable(std::wstring_view(value).substr(0, LongestText)) + "...\" (" +
               CountText(value.size(), "character)", "characters)");
    }
    std::string TextOf(EnumWord value) const { return TextOf(std::wstring(value.text)); }
    std::string TextOf(const Handle& value) const { return TitleOf(value); }
    std::string TextOf(const std::vector<unsigned char>& value) const
    {
        return documents::StreamText(value);
    }
    std::string TextOf(const NumberArray& value) const
    {
        return '(' + Joined(value, NumberText) + ')';
    }
    std::string TextOf(const std::vector<RecordValues>& value) const
    {
        return CountText(value.size(), "record", "records");
    }
    std::string TextOf(const Handles& value) const
    {
        return Joined(
            value, [this](const Handle& entity) { return TitleOf(entity); });
    }

    template <class Values, class ToText>
    static std::string Joined(const Values& values, ToText toText)
    {
        std::string text;
        for (const auto& value : values)
            text += (text.empty() ? "" : ", ") + toText(value);
        return text;
    }

    std::ostream& m_out;
    const std::vector<Difference>& m_differences;
    bool m_showsIdentifiers;
};

void TextPrinter::PrintSummary() const
{
    std::set<const KARMPEntity*> changed;
    std::map<DifferenceKind, std::size_t> counts;
    for (const Difference& difference : m_differences) {
        ++counts[difference.kind];
        if (difference.before && difference.after)
            changed.insert(difference.before.get());
    }
    m_out << CountText(m_differences.size(), "difference: ", "differences: ")
          << CountText(counts[DifferenceKind::Removed], "entity", "entities") << " removed, "
          << counts[DifferenceKind::Added] << " added, " << changed.size() << " changed";
    if (const std::size_t settings = counts[DifferenceKind::Setting]; settings > 0)
        m_out << "; " << CountText(settings, "setting", "settings") << " of the world";
    m_out << '\n';
}

struct JsonValue
{
    std::string operator()(std::monostate) const { return "null"; }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(int value) const { return std::to_string(value); }
    // JSON has no infinities and no NaN.
    std::string operator()(double value) const
    {
        return std::isfinite(value) ? NumberText(value) : JsonText(NumberText(value));
    }
    std::string operator()(const std::wstring& value) const { return JsonText(kar::ToUtf8(value)); }
    std::string operator()(EnumWord value) const { return JsonText(kar::ToUtf8(value.text)); }
    std::string operator()(const Handle& value) const { return EntityJson(value); }
    std::string operator()(const Value& value) const { return std::visit(*this, value); }
    std::string operator()(const NumberArray& values) const { return List(values); }
    template <class T>
    std::string operator()(const std::vector<T>& values) const
    {
        return List(values);
    }

private:
    template <class Values>
    std::string List(const Values& values) const
    {
        std::string text;
        for (const auto& value : values)
            text += (text.empty() ? "" : ", ") + (*this)(value);
        return '[' + text + ']';
    }
};

void PrintJsonItem(std::ostream& out, const Difference& difference)
{
    out << "    {\"kind\": " << JsonText(documents::DifferenceText(difference.kind))
        << ", \"before\": " << EntityJson(difference.before)
        << ", \"after\": " << EntityJson(difference.after);
    if (!difference.item.empty()) {
        out << ", \"item\": " << JsonText(kar::ToUtf8(difference.item));
        if (difference.target)
            out << ", \"target\": " << EntityJson(difference.target);
        if (difference.kind != DifferenceKind::LinkLost &&
            difference.kind != DifferenceKind::LinkGained)
            out << ", \"old\": " << std::visit(JsonValue(), difference.oldValue)
                << ", \"new\": " << std::visit(JsonValue(), difference.newValue);
    }
    out << '}';
}

} // namespace

void PrintText(std::ostream& out, const std::vector<Difference>& differences, bool showsIdentifiers,
               std::size_t limit)
{
    TextPrinter(out, differences, showsIdentifiers).Print(limit);
}

void PrintSummary(std::ostream& out, const std::vector<Difference>& differences)
{
    TextPrinter(out, differences, false).PrintSummary();
}

void PrintJson(std::ostream& out, const std::vector<Difference>& differences)
{
    out << '[';
    for (std::size_t i = 0; i < differences.size(); ++i) {
        out << (i == 0 ? "\n" : ",\n");
        PrintJsonItem(out, differences[i]);
    }
    out << (differences.empty() ? "]" : "\n  ]");
}

} // namespace karmp::tool
