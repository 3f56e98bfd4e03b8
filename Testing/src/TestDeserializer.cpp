#include "TestDeserializer.h"

#include "TestValueText.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <vector>

namespace {

std::atomic<std::size_t> aliveCount = 0;

// Makes a reader's tree and counts what it meets.
class Copier
{
public:
    explicit Copier(const TestTreeForm& form) : m_form(form) {}

    std::unique_ptr<TestDeserializer> Copy(const TestSerializer& tree);
    // The path of what was left out or spoilt; empty when the count did not reach it.
    const std::wstring& Harmed() const { return m_harmed; }

private:
    void Fill(const TestSerializer& from, TestDeserializer& to);
    bool LeavesOut(const TestDeserializer& node, std::wstring_view item);
    bool Spoils(const TestDeserializer& node, std::wstring_view item);
    template <class Put>
    void PutValue(const TestDeserializer& node, std::wstring_view item,
                  const KARMPSerializationVariable& variable, const Put& put);

    const TestTreeForm& m_form;
    std::wstring m_version;
    std::size_t m_items = 0;
    std::size_t m_values = 0;
    std::wstring m_harmed;
    std::vector<std::pair<const TestSerializer*, TestDeserializer*>> m_pending;
};

bool Copier::LeavesOut(const TestDeserializer& node, std::wstring_view item)
{
    if (++m_items != m_form.leftOut)
        return false;
    m_harmed = node.Location() + L"/" + std::wstring(item);
    return true;
}

bool Copier::Spoils(const TestDeserializer& node, std::wstring_view item)
{
    if (++m_values != m_form.spoilt)
        return false;
    m_harmed = node.Location() + std::wstring(item);
    return true;
}

template <class Put>
void Copier::PutValue(const TestDeserializer& node, std::wstring_view item,
                      const KARMPSerializationVariable& variable, const Put& put)
{
    if (Spoils(node, item)) {
        // A text is spoilt by a number, all others by a text that is none of them.
        if (variable.type == KARMPSerializationVariable::String && !m_form.asText)
            put(0);
        else
            put(L"?");
    } else if (m_form.asText || variable.type == KARMPSerializationVariable::String) {
        put(TestValueText(variable));
    } else if (variable.type == KARMPSerializationVariable::Bool) {
        put(variable.value.boolValue);
    } else if (variable.type == KARMPSerializationVariable::Int) {
        put(variable.value.intValue);
    } else {
        put(variable.value.doubleValue);
    }
}

void Copier::Fill(const TestSerializer& from, TestDeserializer& to)
{
    if (m_form.versionOnEveryNode)
        to.SetVersion(m_version);
    if (from.GetType() != KARMPSerializationVariable::None)
        PutValue(to, L"", from.GetVariable(), [&to](const auto& value) { to.SetValue(value); });
    for (std::size_t index = 0; index < from.GetAttributeCount(); ++index) {
        const KARMPSerializationVariable attribute = from.GetAttribute(static_cast<int>(index));
        const std::wstring item = L"@" + attribute.name;
        if (!LeavesOut(to, item)) {
            PutValue(
                to, L"/" + item, attribute,
                [&](const auto& value) { to.AddAttributeValue(attribute.name, value); });
        }
    }
    const std::size_t first = m_pending.size();
    for (std::size_t index = 0; index < from.GetElementCount(); ++index) {
        const TestSerializer& child = from.Child(index);
        if (!LeavesOut(to, child.GetId()))
            m_pending.emplace_back(&child, &to.Add(child.GetId()));
    }
    std::reverse(m_pending.begin() + static_cast<std::ptrdiff_t>(first), m_pending.end());
}

std::unique_ptr<TestDeserializer> Copier::Copy(const TestSerializer& tree)
{
    m_version = m_form.version.empty() ? std::wstring(tree.Version()) : m_form.version;
    auto root = std::make_unique<TestDeserializer>(tree.GetId());
    root->SetVersion(m_version);
    m_pending.emplace_back(&tree, root.get());
    while (!m_pending.empty()) {
        const auto [from, to] = m_pending.back();
        m_pending.pop_back();
        Fill(*from, *to);
    }
    return root;
}

std::size_t ForEachHarm(
    const TestSerializer& tree, TestTreeForm form, std::size_t TestTreeForm::*harm,
    const std::function<void(TestDeserializer& root, const std::wstring& item)>& read)
{
    for (form.*harm = 1;; ++(form.*harm)) {
        Copier copier(form);
        const std::unique_ptr<TestDeserializer> root = copier.Copy(tree);
        if (copier.Harmed().empty())
            return form.*harm - 1;
        read(*root, copier.Harmed());
    }
}

} // namespace

TestDeserializer::TestDeserializer(std::wstring_view name)
{
    SetId(name);
    ++aliveCount;
}

TestDeserializer::~TestDeserializer()
{
    --aliveCount;
}

std::size_t TestDeserializer::Alive()
{
    return aliveCount;
}

std::unique_ptr<TestDeserializer> TestDeserializer::From(const TestSerializer& tree,
                                                         const TestTreeForm& form)
{
    return Copier(form).Copy(tree);
}

std::wstring TestDeserializer::Location() const
{
    std::wstring path(Id());
    for (const TestDeserializer* node = m_parent; node != nullptr; node = node->m_parent)
        path.insert(0, std::wstring(node->Id()) + L"/");
    return path;
}

TestDeserializer& TestDeserializer::Add(std::wstring_view name)
{
    auto child = std::make_unique<TestDeserializer>(name);
    child->m_parent = this;
    AddElement(name, child.get());
    return *child.release();
}

std::size_t ForEachMissingItem(
    const TestSerializer& tree, const TestTreeForm& form,
    const std::function<void(TestDeserializer& root, const std::wstring& missing)>& read)
{
    return ForEachHarm(tree, form, &TestTreeForm::leftOut, read);
}

std::size_t ForEachSpoiltValue(
    const TestSerializer& tree, const TestTreeForm& form,
    const std::function<void(TestDeserializer& root, const std::wstring& spoilt)>& read)
{
    return ForEachHarm(tree, form, &TestTreeForm::spoilt, read);
}
