// W3C XML Schema 1.0: a type for each class, the rest within.
#include "KARMPDocumentNames.h"
#include "KARMPSchemaClasses.h"
#include "KARMPSchemaLanguages.h"
#include "KARTextConversion.h"

namespace karmp::documents {

namespace {

constexpr const char* NumberType = "Number";
constexpr const char* IntegerType = "Integer";
constexpr const char* FlagType = "Flag";

std::string Quoted(std::string_view text)
{
    return '"' + Escaped(text) + '"';
}

class XsdPrinter
{
public:
    explicit XsdPrinter(std::wstring_view version) : m_version(version) {}
    std::string Print();

private:
    using Items = std::vector<const SchemaItem*>;

    void Open(const std::string& tag) { m_text += Indent() + '<' + tag + ">\n", ++m_depth; }
    void Close(const std::string& tag) { --m_depth, m_text += Indent() + "</" + tag + ">\n"; }
    void Line(const std::string& tag) { m_text += Indent() + '<' + tag + "/>\n"; }
    std::string Indent() const { return std::string(std::size_t{2} * m_depth, ' '); }

    void Says(std::string_view says);
    void Pattern(const char* name, std::string_view pattern);
    void Flag();
    static const char* SimpleTypeOf(const SchemaItem& item);
    void Words(const SchemaItem& item);
    void Element(const SchemaItem& item, Order order);
    void Elements(const Items& elements);
    void Attributes(const SchemaItem& item);
    void Attribute(const SchemaItem& item);
    void Content(const SchemaItem& item);
    void TextWithAttributes(const SchemaItem& item);
    void FamilyElement(const SchemaItem& item, const Family& family);
    void World(const SchemaItem& item);
    void Root();

    std::wstring_view m_version;
    std::vector<EntityClass> m_classes = EntityClasses();
    std::string m_text;
    unsigned m_depth = 0;
};

void XsdPrinter::Says(std::string_view says)
{
    if (!says.empty())
        m_text += Indent() + "<xs:annotation><xs:documentation>" + Escaped(says) +
                  "</xs:documentation></xs:annotation>\n";
}

void XsdPrinter::Pattern(const char* name, std::string_view pattern)
{
    Open("xs:simpleType name=" + Quoted(name));
    Open("xs:restriction base=\"xs:string\"");
    Line("xs:pattern value=" + Quoted(pattern));
    Close("xs:restriction");
    Close("xs:simpleType");
}

void XsdPrinter::Flag()
{
    Open("xs:simpleType name=" + Quoted(FlagType));
    Open("xs:restriction base=\"xs:string\"");
    for (const auto& forms : {TrueForms, FalseForms})
        for (const std::string_view form : forms)
            Line("xs:enumeration value=" + Quoted(form));
    Close("xs:restriction");
    Close("xs:simpleType");
}

// Null for a word, which has a type of its own, and for what holds no text.
const char* XsdPrinter::SimpleTypeOf(const SchemaItem& item)
{
    switch (item.kind) {
    case ItemKind::Number:
        return NumberType;
    case ItemKind::Integer:
    case ItemKind::Code:
        return IntegerType;
    case ItemKind::Flag:
        return FlagType;
    case ItemKind::Text:
        return "xs:string";
    default:
        return nullptr;
    }
}

void XsdPrinter::Words(const SchemaItem& item)
{
    Open("xs:simpleType");
    Open("xs:restriction base=\"xs:string\"");
    for (const std::wstring_view word : item.words)
        Line("xs:enumeration value=" + Quoted(kar::ToUtf8(word)));
    Close("xs:restriction");
    Close("xs:simpleType");
}

void XsdPrinter::Attribute(const SchemaItem& item)
{
    std::string tag = "xs:attribute name=" + Quoted(kar::ToUtf8(item.name));
    if (const char* const type = SimpleTypeOf(item))
        tag += " type=" + Quoted(type);
    if (item.presence != ItemPresence::Optional)
        tag += " use=\"required\"";
    Open(tag);
    Says(item.says);
    if (item.kind == ItemKind::Word)
        Words(item);
    Close("xs:attribute");
}

void XsdPrinter::Attributes(const SchemaItem& item)
{
    for (const SchemaItem* const attribute : ItemsAt(item.attributes, m_version))
        Attribute(*attribute);
}

// How often an element may stand is up to the group where that holds any number of anything.
void XsdPrinter::Element(const SchemaItem& item, Order order)
{
    const bool isOptional = item.presence == ItemPresence::Optional;
    std::string limits;
    if (order != Order::Repeating && isOptional)
        limits = " minOccurs=\"0\"";
    if (order == Order::Entries)
        limits += " maxOccurs=\"unbounded\"";
    if (item.anyName)
        return Line("xs:any processContents=\"skip\"" + limits);
    std::string tag = "xs:element name=" + Quoted(kar::ToUtf8(item.name));
    const bool isPlain = item.attributes.empty() && item.elements.empty();
    const char* const type = SimpleTypeOf(item);
    if (isPlain && type != nullptr)
        tag += " type=" + Quoted(type);
    Open(tag + limits);
    Says(item.says);
    if (isPlain && item.kind == ItemKind::Word) {
        Words(item);
    } else if (!isPlain || type == nullptr) {
        Open("xs:complexType");
        Content(item);
        Close("xs:complexType");
    }
    Close("xs:element");
}

void XsdPrinter::Elements(const Items& elements)
{
    const Order order = OrderOf(elements);
    if (elements.empty())
        return;
    const char* const tag = order == Order::Once      ? "xs:all"
                            : order == Order::Entries ? "xs:sequence"
                                                      : "xs:choice";
    Open(order == Order::Repeating ? "xs:choice minOccurs=\"0\" maxOccurs=\"unbounded\""
                                   : std::string(tag));
    for (const SchemaItem* const element : elements)
        Element(*element, order);
    Close(tag);
}

void XsdPrinter::TextWithAttributes(const SchemaItem& item)
{
    Open("xs:simpleContent");
    Open("xs:extension base=" + Quoted(SimpleTypeOf(item)));
    Attributes(item);
    Close("xs:extension");
    Close("xs:simpleContent");
}

void XsdPrinter::Content(const SchemaItem& item)
{
    if (SimpleTypeOf(item) != nullptr)
        return TextWithAttributes(item);
    Elements(ItemsAt(item.elements, m_version));
    Attributes(item);
}

void XsdPrinter::FamilyElement(const SchemaItem& item, const Family& family)
{
    Open("xs:element name=" + Quoted(kar::ToUtf8(item.name)) + " minOccurs=\"0\"");
    Says(item.says);
    Open("xs:complexType");
    Open("xs:choice minOccurs=\"0\" maxOccurs=\"unbounded\"");
    for (const EntityClass& entityClass : m_classes) {
        if (entityClass.IsA(family.className))
            Line("xs:element name=" + Quoted(kar::ToUtf8(entityClass.item->name)) +
                 " type=" + Quoted(entityClass.name));
    }
    Close("xs:choice");
    Close("xs:complexType");
    Close("xs:element");
}

void XsdPrinter::World(const SchemaItem& item)
{
    Open("xs:element name=" + Quoted(kar::ToUtf8(item.name)));
    Says(item.says);
    Open("xs:complexType");
    Open("xs:all");
    for (const SchemaItem& element : item.elements)
        if (const Family* const family = FamilyOf(element))
            FamilyElement(element, *family);
        else
            Element(element, Order::Once);
    Close("xs:all");
    Attributes(item);
    Close("xs:complexType");
    Close("xs:element");
}

void XsdPrinter::Root()
{
    const SchemaItem& root = RootItem();
    Open("xs:element name=" + Quoted(kar::ToUtf8(root.name)));
    Says(root.says);
    Open("xs:complexType");
    Open("xs:all");
    World(root.elements.front());
    Close("xs:all");
    Line("xs:attribute name=" + Quoted(kar::ToUtf8(VersionName)) +
         " type=\"xs:string\" use=\"required\" fixed=" + Quoted(kar::ToUtf8(m_version)));
    Close("xs:complexType");
    Close("xs:element");
}

std::string XsdPrinter::Print()
{
    m_text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    Open("xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"");
    Root();
    for (const EntityClass& entityClass : m_classes) {
        Open("xs:complexType name=" + Quoted(entityClass.name));
        Says(entityClass.item->says);
        Content(*entityClass.item);
        Close("xs:complexType");
    }
    Pattern(NumberType, NumberPattern);
    Pattern(IntegerType, IntegerPattern);
    Flag();
    Close("xs:schema");
    return std::move(m_text);
}

} // namespace

std::string XsdText(std::wstring_view version)
{
    return XsdPrinter(version).Print();
}

} // namespace karmp::documents
