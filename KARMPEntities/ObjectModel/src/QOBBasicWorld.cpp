#include "QOBBasicWorld.h"

#include <utility>

QOB_DEFINE_CLASS(QOBBasicWorld, QOBBasicEntity);

QOBBasicWorld::QOBBasicWorld()
{
    m_world = this;
}

QOBBasicWorld::~QOBBasicWorld()
{
    orphanExtensions();
    orphanLogicalChildren();
}

QOBSharedHandle<QOBBasicWorld> QOBBasicWorld::create(std::wstring name)
{
    const QOBSharedHandle<QOBBasicWorld> world(new QOBBasicWorld);
    world->setEntityName(name);
    return world;
}

void QOBBasicWorld::orphanObject()
{
    if (isOrphaned())
        return;
    orphanExtensions();
    orphanLogicalChildren();
    QOBBasicEntity::orphanObject();
    m_world = this;
}
