#include "Commands.h"
#include "EntityText.h"
#include "KARMPBoolean.h"
#include "KARMPConstant.h"
#include "KARMPFamilies.h"
#include "KARMPOutput.h"
#include "KARMPParameter.h"
#include "KARMPState.h"
#include "KARMPString.h"
#include "KARMPWorld.h"
#include "KARTextConversion.h"
#include "Loading.h"
#include "Output.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace karmp::tool {

namespace {

using Attribute = QOBSharedHandle<KARMPAttribute>;

/// What a value holds, as text for people and as JSON.
struct ValueText
{
    std::string plain;
    std::string json;
};

/// A value that is neither number, flag nor text is named by its class, and null in JSON.
ValueText TextOf(const KARMPValue& value)
{
    if (const auto* constant = dynamic_cast<const KARMPConstant*>(&value)) {
        double number = 0.0;
        constant->GetValue(number);
        const std::string text = NumberText(number);
        return {text, std::isfinite(number) ? text : JsonText(text)};
    }
    if (const auto* flag = dynamic_cast<const KARMPBoolean*>(&value)) {
        unsigned char isTrue = 0;
        flag->GetValue(isTrue);
        const std::string text = isTrue != 0 ? "true" : "false";
        return {text, text};
    }
    if (const auto* string = dynamic_cast<const KARMPString*>(&value)) {
        KARUnicodeString text;
        string->GetValue(text);
        return {text.Text(), JsonText(text.Text())};
    }
    return {ClassOf(value), "null"};
}

/// An attribute, and the entity that lists it or an attribute above it.
struct Row
{
    std::string entity; // class and name
    std::string identifier;
    std::string kind;
    std::vector<std::string> path;
    std::string type;
    std::vector<ValueText> values;

    std::string PathText() const
    {
        std::string text;
        for (const std::string& element : path)
            text += (&element != path.data() ? "." : "") + element;
        return text;
    }
};

/// Collects the attributes of a world, entity by entity, each followed by those below it.
class AttributeWalk
{
public:
    std::vector<Row> Of(const KARMPWorld& world)
    {
        ForEachRegistryElement([&](const auto& element) {
            using T = typename std::remove_cvref_t<decltype(element)>::Type;
            for (int index = 0; index < world.Count<T>(); ++index) {
                QOBSharedHandle<T> handle;
                if (world.Get<T>(index, handle) != KARSuccess)
                    continue;
                const QOBSharedHandle<KARMPEntity> entity(handle);
                Listed<KARMPParameter>(*entity, entity->GetParameterCount(),
                                       &KARMPEntity::GetParameter);
                Listed<KARMPState>(*entity, entity->GetStateCount(), &KARMPEntity::GetState);
                Listed<KARMPOutput>(*entity, entity->GetOutputCount(), &KARMPEntity::GetOutput);
            }
        });
        return std::move(m_rows);
    }

private:
    struct Step
    {
        Attribute attribute;
        int nextChild = 0;
    };

    template <class T>
    void Listed(const KARMPEntity& entity, int count,
                KARStatus (KARMPEntity::*get)(int, QOBSharedHandle<T>&) const)
    {
        QOBSharedHandle<T> attribute;
        for (int index = 0; index < count; ++index)
            if ((entity.*get)(index, attribute) == KARSuccess)
                Walk(entity, Attribute(attribute));
    }

    // An attribute that is its own descendant is passed over there.
    void Walk(const KARMPEntity& entity, Attribute attribute)
    {
        std::vector<Step> path;
        do {
            const auto isSame = [&](const Step& step) { return step.attribute == attribute; };
            if (attribute && std::none_of(path.begin(), path.end(), isSame)) {
                path.push_back({attribute});
                Add(entity, path);
            }
            if (path.back().attribute->GetChild(path.back().nextChild++, attribute) != KARSuccess)
                path.pop_back();
        } while (!path.empty());
    }

    void Add(const KARMPEntity& entity, const std::vector<Step>& path)
    {
        const KARMPAttribute& attribute = *path.back().attribute;
        Row row{TitleOf(entity),
                kar::ToUtf8(IdentifierOf(entity)),
                ClassOf(attribute),
                {},
                attribute.GetType().Text(),
                {}};
        for (const Step& step : path)
            row.path.push_back(step.attribute->GetID().Text());
        for (int index = 0; index < attribute.GetValueCount(); ++index) {
            QOBSharedHandle<KARMPValue> value;
            attribute.GetValue(index, value);
            row.values.push_back(TextOf(*value));
        }
        m_rows.push_back(std::move(row));
    }

    std::vector<Row> m_rows;
};

/// Calls `print` with each value of a row, or once with an empty text.
template <class Print>
void ForEachValue(const Row& row, Print print)
{
    for (const ValueText& value : row.values)
        print(value.plain);
    if (row.values.empty())
        print(std::string());
}

std::string Padded(const std::string& text, std::size_t width)
{
    return text + std::string(width - kar::ToWide(text).size(), ' ');
}

void PrintTable(const std::vector<Row>& rows)
{
    std::array<std::size_t, 3> widths{};
    const auto cells = [](const Row& row) {
        return std::array{row.kind, Printable(std::string_view(row.PathText())),
                          Printable(std::string_view(row.type))};
    };
    for (const Row& row : rows)
        for (std::size_t i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths[i], kar::ToWide(cells(row)[i]).size());
    const Row* last = nullptr;
    for (const Row& row : rows) {
        if (last == nullptr || last->identifier != row.identifier)
            std::cout << (last != nullptr ? "\n" : "") << Bold(row.entity) << '\n';
        last = &row;
        ForEachValue(row, [&](const std::string& value) {
            std::string line;
            for (std::size_t i = 0; i < widths.size(); ++i)
                line += "  " + Padded(cells(row)[i], widths[i]);
            line += "  " + Printable(std::string_view(value));
            line.erase(line.find_last_not_of(' ') + 1);
            std::cout << line << '\n';
        });
    }
    if (rows.empty())
        std::cout << "no attributes\n";
}

/// A field in quotes where its text needs them, which are doubled within.
std::string CsvField(const std::string& text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string field = "\"";
    for (const char character : text)
        field += character == '"' ? std::string("\"\"") : std::string(1, character);
    return field + '"';
}

void PrintCsv(const std::vector<Row>& rows)
{
    std::cout << "entity,id,kind,path,type,value\n";
    for (const Row& row : rows)
        ForEachValue(row, [&row](const std::string& value) {
            for (const std::string& text :
                 {row.entity, row.identifier, row.kind, row.PathText(), row.type})
                std::cout << CsvField(text) << ',';
            std::cout << CsvField(value) << '\n';
        });
}

void PrintJson(const std::string& file, const std::vector<Row>& rows)
{
    std::cout << "{\n  \"file\": " << JsonText(file) << ",\n  \"attributes\": [";
    const char* separator = "\n    {";
    for (const Row& row : rows) {
        std::cout << std::exchange(separator, ",\n    {") << "\"entity\": " << JsonText(row.entity)
                  << ", \"id\": " << JsonText(row.identifier)
                  << ", \"kind\": " << JsonText(row.kind) << ", \"path\": [";
        for (const std::string& element : row.path)
            std::cout << (&element != row.path.data() ? ", " : "") << JsonText(element);
        std::cout << "], \"type\": " << JsonText(row.type) << ", \"values\": [";
        for (const ValueText& value : row.values)
            std::cout << (&value != row.values.data() ? ", " : "") << value.json;
        std::cout << "]}";
    }
    std::cout << (rows.empty() ? "]\n}\n" : "\n  ]\n}\n");
}

} // namespace

int RunOutputs(const OutputsOptions& options)
{
    const auto loaded = LoadWorld(options.file);
    if (!loaded)
        return Unreadable;
    const std::vector<Row> rows = AttributeWalk().Of(*loaded->world);
    if (options.json)
        PrintJson(options.file, rows);
    else if (options.csv)
        PrintCsv(rows);
    else
        PrintTable(rows);
    return loaded->diagnostics.items.empty() ? Clean : Findings;
}

} // namespace karmp::tool
