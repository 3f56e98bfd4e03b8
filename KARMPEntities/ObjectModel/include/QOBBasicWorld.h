#pragma once

#include "QOBBasicEntity.h"

/// Root of a hierarchy of entities and host of world extensions.
///
/// Releasing the last reference to a world orphans its extensions and everything that hangs under
/// it, which breaks the cycles of handles among its entities.
class KAR_API QOBBasicWorld : public QOBBasicEntity
{
    QOB_CLASS(QOBBasicWorld)

public:
    /// A new, empty world of that name.
    static QOBSharedHandle<QOBBasicWorld> create(std::wstring name);

    /// Orphans the extensions and everything under the world.
    void orphanObject() override;

protected:
    QOBBasicWorld();
    ~QOBBasicWorld() override;
};
