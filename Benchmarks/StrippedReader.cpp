#include "StrippedReader.h"

#include <charconv>
#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

class StrippedReader
{
public:
    explicit StrippedReader(std::string_view text)
        : m_at(text.data()),
          m_basicWorld(QOBBasicWorld::create(L"World")),
          m_world(KARMPWorld::create(m_basicWorld))
    {
        m_numbers.reserve(128);
    }

    QOBSharedHandle<KARMPWorld> Read()
    {
        for (m_at = std::strchr(m_at, '<'); m_at != nullptr; m_at = std::strchr(m_at, '<'))
            ReadMark();
        for (const Link& link : m_links)
            MakeLink(link);
        return m_world;
    }

private:
    enum class Kind { None, Body, Geometry, Variable, Joint, Constraint };
    static constexpr int EntityDepth = 3;
    struct Made
    {
        Kind kind = Kind::None;
        QOBSharedBase entity;
    };
    struct Link
    {
        const Made* owner;
        std::string_view target;
    };

    static std::string_view Until(const char* begin, char end)
    {
        return {begin, static_cast<std::size_t>(std::strchr(begin, end) - begin)};
    }
    static std::wstring Wide(std::string_view text) { return {text.begin(), text.end()}; }

    void ReadMark()
    {
        ++m_at;
        if (*m_at == '?')
            return;
        if (*m_at == '/') {
            if (--m_depth == EntityDepth && m_made != nullptr)
                SetNumbers();
            return;
        }
        const char* const begin = m_at;
        m_at += std::strcspn(m_at, " >/");
        const std::string_view name(begin, static_cast<std::size_t>(m_at - begin));
        std::string_view identifier;
        std::string_view title;
        while (*m_at == ' ') {
            const std::string_view attribute = Until(m_at + 1, '=');
            const std::string_view value = Until(attribute.data() + attribute.size() + 2, '"');
            if (attribute == "id")
                identifier = value;
            else if (attribute == "name")
                title = value;
            m_at = value.data() + value.size() + 1;
        }
        if (m_depth == EntityDepth && !identifier.empty() && m_inRegistry)
            Make(name, identifier, title);
        else if (m_depth > EntityDepth && !identifier.empty())
            m_links.push_back({m_made, identifier});
        if (*m_at == '/')
            return;
        if (++m_depth == EntityDepth)
            m_inRegistry = name != "Globals";
        ++m_at;
        if (*m_at == '-' || (*m_at >= '0' && *m_at <= '9'))
            ReadNumber();
    }

    void ReadNumber()
    {
        double number = 0.0;
        const char* const end = std::strchr(m_at, '<');
        std::from_chars(m_at, end, number);
        m_numbers.push_back(number);
        m_at = end;
    }

    void Make(std::string_view name, std::string_view identifier, std::string_view title)
    {
        m_numbers.clear();
        const std::wstring wide = Wide(title);
        if (name == "Body")
            File<KARMPBody>(Kind::Body, KARMPBody::create(wide), identifier);
        else if (name == "Point")
            File<KARMPGeometry>(Kind::Geometry, KARMPPoint::create(wide), identifier);
        else if (name == "AxisSystem")
            File<KARMPGeometry>(Kind::Geometry, KARMPAxisSystem::create(wide), identifier);
        else if (name == "Variable")
            File<KARMPVariable>(Kind::Variable, KARMPVariable::create(wide), identifier);
        else if (name == "Revolute")
            File<KARMPJoint>(Kind::Joint, KARMPRevolute::create(wide), identifier);
        else if (name == "Prismatic")
            File<KARMPJoint>(Kind::Joint, KARMPPrismatic::create(wide), identifier);
        else if (name == "RevoluteConstraint")
            File<KARMPConstraint>(Kind::Constraint, KARMPRevoluteConstraint::create(wide),
                                  identifier);
        else
            File<KARMPConstraint>(Kind::Constraint, KARMPCoincidence::create(wide), identifier);
    }

    template <class Family, class T>
    void File(Kind kind, const QOBSharedHandle<T>& entity, std::string_view identifier)
    {
        entity->SetIdentifier(Wide(identifier));
        m_basicWorld->addLogicalChild(entity);
        m_world->Add<Family>(entity);
        m_made = &m_entities.emplace(identifier, Made{kind, entity}).first->second;
    }

    /// The numbers of an entity have been read.
    void SetNumbers()
    {
        const std::vector<double>& n = m_numbers;
        if (m_made->kind == Kind::Body && n.size() >= 37) {
            KARMPBody& body = As<KARMPBody>(*m_made);
            body.SetPosition(
                KARMathTransformation(
                    KARMath3x3Matrix({n[3], n[4], n[5]}, {n[6], n[7], n[8]}, {n[9], n[10], n[11]}),
                    KARMathVector(n[0], n[1], n[2])),
                0);
            body.SetMass(n[24]);
            body.SetCenterOfGravity(KARMathPoint(n[25], n[26], n[27]));
            body.SetInertiaMatrix(KARMath3x3Matrix({n[28], n[29], n[30]}, {n[31], n[32], n[33]},
                                                   {n[34], n[35], n[36]}));
        } else if (m_made->kind == Kind::Geometry && n.size() == 3) {
            As<KARMPPoint>(*m_made).SetPoint(KARMathPoint(n[0], n[1], n[2]));
        } else if (m_made->kind == Kind::Variable && !n.empty()) {
            As<KARMPVariable>(*m_made).SetValue(n[0]);
        }
        m_made = nullptr;
    }

    template <class T>
    static T& As(const Made& made)
    {
        return static_cast<T&>(*made.entity._getReferent());
    }
    template <class T>
    static QOBSharedHandle<T> HandleOf(const Made& made)
    {
        return QOBSharedHandle<T>(&As<T>(made));
    }

    void MakeLink(const Link& link)
    {
        const auto found = m_entities.find(link.target);
        if (link.owner == nullptr || found == m_entities.end())
            return;
        const Made& target = found->second;
        switch (link.owner->kind) {
        case Kind::Body:
            return LinkBody(As<KARMPBody>(*link.owner), target);
        case Kind::Joint:
            return LinkJoint(As<KARMPJoint>(*link.owner), target);
        case Kind::Constraint:
            return LinkConstraint(As<KARMPConstraint>(*link.owner), target);
        case Kind::Geometry:
            if (target.kind == Kind::Body)
                As<KARMPGeometry>(*link.owner).SetBody(HandleOf<KARMPBody>(target));
            else
                As<KARMPGeometry>(*link.owner).LinkToConstraint(HandleOf<KARMPConstraint>(target));
            return;
        case Kind::Variable:
            As<KARMPVariable>(*link.owner).LinkToConstraint(HandleOf<KARMPConstraint>(target));
            return;
        case Kind::None:
            return;
        }
    }
    static void LinkBody(KARMPBody& body, const Made& target)
    {
        if (target.kind == Kind::Joint)
            body.LinkToJoint(HandleOf<KARMPJoint>(target));
        else
            body.AddGeometry(HandleOf<KARMPGeometry>(target));
    }
    static void LinkJoint(KARMPJoint& joint, const Made& target)
    {
        if (target.kind == Kind::Constraint)
            joint.AddConstraint(HandleOf<KARMPConstraint>(target));
        else
            joint.LinkToBody(HandleOf<KARMPBody>(target), joint.GetLinkedBodyCount() == 0
                                                              ? KARMPBodyOrientation::Out
                                                              : KARMPBodyOrientation::In);
    }
    static void LinkConstraint(KARMPConstraint& constraint, const Made& target)
    {
        if (target.kind == Kind::Geometry)
            constraint.LinkToGeometry(HandleOf<KARMPGeometry>(target));
        else if (target.kind == Kind::Joint)
            constraint.SetJoint(HandleOf<KARMPJoint>(target));
        else
            constraint.LinkToVariable(HandleOf<KARMPVariable>(target));
    }

    const char* m_at;
    int m_depth = 0;
    bool m_inRegistry = false;
    const Made* m_made = nullptr;
    std::vector<double> m_numbers;
    std::vector<Link> m_links;
    std::unordered_map<std::string_view, Made> m_entities;
    QOBSharedHandle<QOBBasicWorld> m_basicWorld;
    QOBSharedHandle<KARMPWorld> m_world;
};

} // namespace

QOBSharedHandle<KARMPWorld> ReadStripped(std::string_view text)
{
    return StrippedReader(text).Read();
}
