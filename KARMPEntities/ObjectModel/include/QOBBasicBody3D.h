// Spatial entities of the world model.
#pragma once

#include "KARMathTransformation.h"
#include "QOBBasicEntity.h"

#include <vector>

/// An entity with a position in space, given as the transformation from its frame to the world's.
class KAR_API QOBBasicEntity3D : public QOBBasicEntity
{
    QOB_CLASS(QOBBasicEntity3D)

public:
    /// Gives the position.
    virtual KARStatus GetPosition(KARMathTransformation& position) const;
    /// Stores the position.
    virtual KARStatus SetPosition(const KARMathTransformation& position);

protected:
    QOBBasicEntity3D() = default;
    QOBBasicEntity3D(const QOBBasicEntity3D& source, CopyMode mode);
    ~QOBBasicEntity3D() override;

private:
    KARMathTransformation m_position;
};

/// A body of the world model, which may float freely and carry further bodies.
class KAR_API QOBBasicBody3D : public QOBBasicEntity3D
{
    QOB_CLASS(QOBBasicBody3D)

public:
    /// A new body of that name at the origin, floating.
    static QOBSharedHandle<QOBBasicBody3D> create(std::wstring name);

    /// Attaches a body under this one; a null handle is a failure.
    virtual KARStatus addBody(const QOBSharedHandle<QOBBasicBody3D>& body);
    /// Number of bodies attached under this one.
    std::size_t getBodyCount() const noexcept { return m_bodies.size(); }
    /// True when the body moves freely.
    virtual bool isFloating() const;
    /// Makes the body float or follow.
    virtual void setFloating(bool floating);
    /// Lets the attached bodies go, then does what every entity does.
    void orphanObject() override;

protected:
    QOBBasicBody3D() = default;
    ~QOBBasicBody3D() override;

private:
    std::vector<QOBSharedHandle<QOBBasicBody3D>> m_bodies;
    bool m_floating = true;
};
