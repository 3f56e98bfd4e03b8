// Makes entities by class name, writes one into a tree and reads it back.
//
// The library fixes no file format: it fills nodes of a class that the application derives. This
// program derives the smallest possible ones; the documents library has complete ones.
#include "KARMPEntities.h"

#include <iostream>

namespace {

/// Calls with what a node's variable holds.
template <class Take>
void Visit(const KARMPSerializationVariable& variable, Take take)
{
    using Type = KARMPSerializationVariable::Type;
    if (variable.type == Type::Bool)
        take(variable.value.boolValue);
    else if (variable.type == Type::Int)
        take(variable.value.intValue);
    else if (variable.type == Type::Double)
        take(variable.value.doubleValue);
    else if (variable.type == Type::String)
        take(std::wstring_view(variable.value.stringValue));
}

/// A node that entities read from: a parser would fill it.
class Reader : public KARMPDeserializer
{
public:
    using KARMPDeserializer::AddAttributeValue;
    using KARMPDeserializer::AddElement;
    using KARMPDeserializer::SetId;
    using KARMPDeserializer::SetValue;

    std::wstring Location() const override { return {}; }
};

/// A node that entities write into.
class Writer : public KARMPSerializer
{
public:
    KARStatus Render(std::wstring&) const override { return KARNotImplemented; }
    KARStatus Save(const char*) const override { return KARNotImplemented; }

    /// Visits the content of this node, which it prints and copies: a file format would render it.
    void CopyInto(Reader& node, int depth = 0) const
    {
        std::cout << std::string(static_cast<std::size_t>(2 * depth), ' ') << kar::ToUtf8(GetId());
        for (int a = 0; a < static_cast<int>(GetAttributeCount()); ++a) {
            const std::wstring name(GetAttributeId(a));
            Visit(GetAttribute(a), [&](const auto& value) { node.AddAttributeValue(name, value); });
            std::cout << ' ' << kar::ToUtf8(name) << '=' << kar::ToUtf8(GetAttributeValues(a));
        }
        std::cout << '\n';
        Visit(GetVariable(), [&node](const auto& value) { node.SetValue(value); });
        for (int i = 0; i < static_cast<int>(GetElementCount()); ++i) {
            const auto& child = static_cast<const Writer&>(*GetElement(i));
            auto* const copy = new Reader; // the node owns it
            copy->SetId(child.GetId());
            node.AddElement(child.GetId(), copy);
            child.CopyInto(*copy, depth + 1);
        }
    }

protected:
    KARMPSerializer* CreateChildElement() override { return new Writer; }
};

} // namespace

int main()
{
    QOBSharedHandle<KARMPEntity> body, copy;
    if (KARFailed(KARMPFactory::Create("KARMPBody", body)) ||
        KARFailed(KARMPFactory::Create(body->getClassName(), copy)))
        return 1;
    body->setEntityName(L"Crank");
    QOBSharedHandle<KARMPBody>(body)->SetMass(0.04325);

    Writer written;
    Reader read;
    if (KARFailed(body->Serialize(&written)))
        return 1;
    written.CopyInto(read);
    if (KARFailed(copy->Deserialize(&read, KARMPEntityTable())))
        return 1;

    double mass = 0.0;
    std::wstring first, second;
    QOBSharedHandle<KARMPBody>(copy)->GetMass(mass);
    body->GetIdentifier(first);
    copy->GetIdentifier(second);
    std::cout << "Read back: " << kar::ToUtf8(copy->getEntityName()) << ", " << mass << " kg\n";
    return first == second && mass == 0.04325 ? 0 : 1;
}
