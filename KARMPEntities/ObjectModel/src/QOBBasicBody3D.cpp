#include "QOBBasicBody3D.h"

#include <utility>

QOB_DEFINE_CLASS(QOBBasicEntity3D, QOBBasicEntity);

QOBBasicEntity3D::QOBBasicEntity3D(const QOBBasicEntity3D& source, CopyMode mode)
    : QOBBasicEntity(source, mode), m_position(source.m_position)
{}

QOBBasicEntity3D::~QOBBasicEntity3D() = default;

KARStatus QOBBasicEntity3D::GetPosition(KARMathTransformation& position) const
{
    position = m_position;
    return KARSuccess;
}

KARStatus QOBBasicEntity3D::SetPosition(const KARMathTransformation& position)
{
    m_position = position;
    return KARSuccess;
}

QOB_DEFINE_CLASS(QOBBasicBody3D, QOBBasicEntity3D);

QOBBasicBody3D::~QOBBasicBody3D() = default;

QOBSharedHandle<QOBBasicBody3D> QOBBasicBody3D::create(std::wstring name)
{
    const QOBSharedHandle<QOBBasicBody3D> body(new QOBBasicBody3D);
    body->setEntityName(name);
    return body;
}

KARStatus QOBBasicBody3D::addBody(const QOBSharedHandle<QOBBasicBody3D>& body)
{
    if (!body)
        return KARFailure;
    m_bodies.push_back(body);
    return KARSuccess;
}

bool QOBBasicBody3D::isFloating() const
{
    return m_floating;
}

void QOBBasicBody3D::setFloating(bool floating)
{
    m_floating = floating;
}

void QOBBasicBody3D::orphanObject()
{
    m_bodies.clear();
    QOBBasicEntity3D::orphanObject();
}
