// Makes entities by class name, writes one into a tree and reads it back.
//
// The library fixes no file format: it fills nodes of a class that the application derives. This
// program derives the smallest possible ones; the documents library has complete ones.
#include "KARMPBody.h"
#include "KARMPDeserializer.h"
#include "KARMPEntity.h"
#include "KARMPEntityTable.h"
#include "KARMPSerializationVariable.h"
#include "KARMPSerializer.h"
#include "KARMathPoint.h"
#include "KARStatus.h"
#include "KARTextConversion.h"
#include "QOBSharedHandle.h"

#include <iostream>
#include <string>

namespace {

std::string Narrow(std::wstring_view text)
{
    return kar::ToUtf8(text);
}

/// A node that entities write into.
class Writer : public KARMPSerializer
{
public:
    using Type = KARMPSerializationVariable::Type;

    KARStatus Render(std::wstring&) const override { return KARNotImplemented; }
    KARStatus Save(const char*) const override { return KARNotImplemented; }

    /// Prints what stands below this node.
    void Print(int depth = 0) const
    {
        for (int i = 0; i < static_cast<int>(GetElementCount()); ++i) {
            const auto& child = static_cast<const Writer&>(*GetElement(i));
            std::cout << std::string(static_cast<std::size_t>(2 * depth), ' ')
                      << Narrow(child.GetId());
            for (int a = 0; a < static_cast<int>(child.GetAttributeCount()); ++a)
                std::cout << ' ' << Narrow(child.GetAttributeId(a)) << '='
                          << Narrow(child.GetAttributeValues(a));
            if (child.GetType() == Type::Double)
                std::cout << " = " << child.GetValued();
            std::cout << '\n';
            child.Print(depth + 1);
        }
    }

    /// Visits the content of this node: a file format would render it here.
    template <class Node>
    void CopyInto(Node& node) const
    {
        for (int a = 0; a < static_cast<int>(GetAttributeCount()); ++a)
            node.Attribute(GetAttributeId(a), GetAttribute(a));
        node.Value(GetVariable());
        for (int i = 0; i < static_cast<int>(GetElementCount()); ++i) {
            const auto& child = static_cast<const Writer&>(*GetElement(i));
            child.CopyInto(node.Child(child.GetId()));
        }
    }

protected:
    KARMPSerializer* CreateChildElement() override { return new Writer; }
};

/// A node that entities read from: a parser would fill it.
class Reader : public KARMPDeserializer
{
public:
    using Type = KARMPSerializationVariable::Type;

    std::wstring Location() const override { return {}; }

    Reader& Child(std::wstring_view name)
    {
        auto* child = new Reader;
        child->SetId(name);
        AddElement(name, child);
        return *child;
    }
    void Attribute(std::wstring_view name, const KARMPSerializationVariable& variable)
    {
        Visit(
            variable, [this, name](const auto& value) { AddAttributeValue(name, value); });
    }
    void Value(const KARMPSerializationVariable& variable)
    {
        Visit(
            variable, [this](const auto& value) { SetValue(value); });
    }

private:
    template <class Take>
    static void Visit(const KARMPSerializationVariable& variable, Take take)
    {
        switch (variable.type) {
        case Type::Bool:
            return take(variable.value.boolValue);
        case Type::Int:
            return take(variable.value.intValue);
        case Type::Double:
            return take(variable.value.doubleValue);
        case Type::String:
            return take(std::wstring_view(variable.value.stringValue));
        default:
            return;
        }
    }
};

bool Run()
{
    QOBSharedHandle<KARMPEntity> body;
    QOBSharedHandle<KARMPEntity> copy;
    if (KARFailed(KARMPFactory::Create("KARMPBody", body)) ||
        KARFailed(KARMPFactory::Create(body->getClassName(), copy)))
        return false;
    std::cout << "The factory knows " << KARMPFactory::GetClassNames().size()
              << " classes; made two of " << body->getClassName() << ".\n\n";

    body->setEntityName(L"Crank");
    const QOBSharedHandle<KARMPBody> crank(body);
    crank->SetMass(0.04325);
    crank->SetCenterOfGravity(KARMathPoint(0.00092, 0.0, 0.0));

    Writer written;
    if (KARFailed(body->Serialize(&written)))
        return false;
    written.Print();

    Reader read;
    written.CopyInto(read);
    if (KARFailed(copy->Deserialize(&read, KARMPEntityTable())))
        return false;

    double mass = 0.0;
    QOBSharedHandle<KARMPBody>(copy)->GetMass(mass);
    std::wstring first;
    std::wstring second;
    body->GetIdentifier(first);
    copy->GetIdentifier(second);
    std::cout << "\nRead back: " << Narrow(copy->getEntityName()) << ", mass " << mass
              << " kg, identifier " << (first == second ? "kept" : "lost") << ".\n";
    return first == second && mass == 0.04325;
}

} // namespace

int main()
{
    return Run() ? 0 : 1;
}
