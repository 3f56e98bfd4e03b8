#include "TestSerializer.h"

#include "KARMPVersions.h"
#include "KARTextConversion.h"
#include "TestValueText.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <utility>
#include <vector>

namespace {

std::atomic<std::size_t> aliveCount = 0;

// The first name of a path, with the number of the element of that name.
struct Step
{
    std::wstring_view name;
    std::size_t number = 0;
};

Step TakeStep(std::wstring_view& path)
{
    const std::size_t end = path.find(L'/');
    Step step{path.substr(0, end)};
    path = end == std::wstring_view::npos ? std::wstring_view() : path.substr(end + 1);
    if (const std::size_t bracket = step.name.find(L'['); bracket != std::wstring_view::npos) {
        for (const wchar_t digit : step.name.substr(bracket + 1))
            if (digit >= L'0' && digit <= L'9')
                step.number = step.number * 10 + static_cast<std::size_t>(digit - L'0');
        step.name = step.name.substr(0, bracket);
    }
    return step;
}

// Parts a path at its last "/": what stands before it, and the last name. "Name@id" ends in "@id".
std::pair<std::wstring_view, std::wstring_view> SplitLast(std::wstring_view path)
{
    if (const std::size_t at = path.find(L'@'); at != std::wstring_view::npos) {
        std::wstring_view element = path.substr(0, at);
        if (!element.empty() && element.back() == L'/')
            element.remove_suffix(1);
        return {element, path.substr(at)};
    }
    const std::size_t slash = path.rfind(L'/');
    if (slash == std::wstring_view::npos)
        return {std::wstring_view(), path};
    return {path.substr(0, slash), path.substr(slash + 1)};
}

std::string Typed(const KARMPSerializationVariable& variable)
{
    return std::string(TestTypeName(variable.type)) + " " + kar::ToUtf8(TestValueText(variable));
}

} // namespace

TestSerializer::TestSerializer() : TestSerializer(karmp::CurrentVersion) {}

TestSerializer::TestSerializer(std::wstring_view version)
    : TestSerializer(std::make_shared<Script>())
{
    SetVersion(version);
}

TestSerializer::TestSerializer(std::shared_ptr<Script> script) : m_script(std::move(script))
{
    ++aliveCount;
}

TestSerializer::~TestSerializer()
{
    --aliveCount;
}

std::size_t TestSerializer::Alive()
{
    return aliveCount;
}

KARMPSerializer* TestSerializer::CreateChildElement()
{
    if (++m_script->creations == m_script->failing)
        return nullptr;
    return new TestSerializer(m_script);
}

void TestSerializer::FailCreation(std::size_t number)
{
    *m_script = {0, number};
}

std::size_t TestSerializer::Creations() const
{
    return m_script->creations;
}

KARStatus TestSerializer::Render(std::wstring& text) const
{
    text += kar::ToWide(Dump());
    return KARSuccess;
}

KARStatus TestSerializer::Save(const char* path) const
{
    std::ofstream file(path, std::ios::binary);
    file << Dump();
    return file.flush() ? KARSuccess : KARFailure;
}

const TestSerializer& TestSerializer::Child(std::size_t index) const
{
    return static_cast<const TestSerializer&>(*GetElement(static_cast<int>(index)));
}

const TestSerializer* TestSerializer::Find(std::wstring_view path) const
{
    const TestSerializer* node = this;
    while (node != nullptr && !path.empty()) {
        Step step = TakeStep(path);
        const TestSerializer* found = nullptr;
        for (std::size_t index = 0; index < node->GetElementCount() && found == nullptr; ++index) {
            const TestSerializer& child = node->Child(index);
            if (child.GetId() == step.name && step.number-- == 0)
                found = &child;
        }
        node = found;
    }
    return node;
}

bool TestSerializer::Resolve(std::wstring_view path, KARMPSerializationVariable& variable) const
{
    const std::size_t at = path.find(L'@');
    const TestSerializer* node = Find(at == std::wstring_view::npos ? path : SplitLast(path).first);
    if (node == nullptr)
        return false;
    if (at == std::wstring_view::npos) {
        variable = node->GetVariable();
        return true;
    }
    for (std::size_t index = 0; index < node->GetAttributeCount(); ++index) {
        if (node->GetAttributeId(static_cast<int>(index)) == path.substr(at + 1)) {
            variable = node->GetAttribute(static_cast<int>(index));
            return true;
        }
    }
    return false;
}

bool TestSerializer::Has(std::wstring_view path) const
{
    KARMPSerializationVariable variable;
    return Resolve(path, variable);
}

std::size_t TestSerializer::Count(std::wstring_view path) const
{
    const auto [elementPath, name] = SplitLast(path);
    const TestSerializer* const node = Find(elementPath);
    std::size_t count = 0;
    if (node == nullptr)
        return count;
    if (!name.empty() && name.front() == L'@') {
        for (std::size_t index = 0; index < node->GetAttributeCount(); ++index)
            count += node->GetAttributeId(static_cast<int>(index)) == name.substr(1) ? 1U : 0U;
        return count;
    }
    for (std::size_t index = 0; index < node->GetElementCount(); ++index)
        count += node->Child(index).GetId() == name ? 1U : 0U;
    return count;
}

KARMPSerializationVariable TestSerializer::Variable(std::wstring_view path) const
{
    KARMPSerializationVariable variable;
    if (!Resolve(path, variable))
        ADD_FAILURE() << "Nothing at " << kar::ToUtf8(path) << " in\n" << Dump();
    return variable;
}

KARMPSerializationVariable TestSerializer::Expect(std::wstring_view path, Type type) const
{
    KARMPSerializationVariable variable = Variable(path);
    if (variable.type != type) {
        ADD_FAILURE() << "Not a " << TestTypeName(type) << " at " << kar::ToUtf8(path) << ": "
                      << Typed(variable);
    }
    return variable;
}

std::wstring TestSerializer::Text(std::wstring_view path) const
{
    return Expect(path, KARMPSerializationVariable::String).value.stringValue;
}

double TestSerializer::Number(std::wstring_view path) const
{
    return Expect(path, KARMPSerializationVariable::Double).value.doubleValue;
}

int TestSerializer::Integer(std::wstring_view path) const
{
    return Expect(path, KARMPSerializationVariable::Int).value.intValue;
}

bool TestSerializer::Flag(std::wstring_view path) const
{
    return Expect(path, KARMPSerializationVariable::Bool).value.boolValue;
}

std::string TestSerializer::Dump() const
{
    std::string text;
    std::vector<std::pair<const TestSerializer*, std::size_t>> pending{{this, 0}};
    while (!pending.empty()) {
        const auto [node, depth] = pending.back();
        pending.pop_back();
        text.append(depth, ' ').append(kar::ToUtf8(node->GetId()));
        for (std::size_t index = 0; index < node->GetAttributeCount(); ++index) {
            const KARMPSerializationVariable attribute =
                node->GetAttribute(static_cast<int>(index));
            text.append(" @").append(kar::ToUtf8(attribute.name)).append("=");
            text.append(Typed(attribute));
        }
        if (node->GetType() != KARMPSerializationVariable::None)
            text.append(" = ").append(Typed(node->GetVariable()));
        text.append("\n");
        for (std::size_t index = node->GetElementCount(); index > 0; --index)
            pending.emplace_back(&node->Child(index - 1), depth + 1);
    }
    return text;
}

std::size_t ForEachFailedCreation(
    std::wstring_view version,
    const std::function<void(TestSerializer& root, std::size_t failing)>& write)
{
    TestSerializer unharmed(version);
    write(unharmed, 0);
    const std::size_t creations = unharmed.Creations();
    for (std::size_t failing = 1; failing <= creations; ++failing) {
        TestSerializer root(version);
        root.FailCreation(failing);
        write(root, failing);
    }
    return creations;
}
