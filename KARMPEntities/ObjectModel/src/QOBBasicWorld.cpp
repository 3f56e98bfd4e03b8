#include "QOBBasicWorld.h"

#include <utility>

QOB_DEFINE_CLASS(QOBBasicWorld, QOBBasicEntity);

QOBBasicWorld::QOBBasicWorld()
{
    m_world = this;
}

// Entities that an extension lists go after it, in the order of their placing: that is mostly the
// order of their memory, which the extension's lists need not have.
QOBBasicWorld::~QOBBasicWorld()
{
    orphanExtensions();
    const FormerChildren former = orphanLogicalChildren();
    deleteExtensions();
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
