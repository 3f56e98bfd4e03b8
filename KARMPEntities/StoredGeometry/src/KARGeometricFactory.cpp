#include "KARGeometricFactory.h"

KARGeometricFactory::KARGeometricFactory() = default;

KARGeometricFactory::~KARGeometricFactory()
{
    for (KARIGMKObject* object : m_objects)
        object->Release();
}

KARGeometricFactory* KARGeometricFactory::Create()
{
    return new KARGeometricFactory;
}

void KARGeometricFactory::Adopt(KARIGMKObject* object)
{
    if (object == nullptr)
        return;
    try {
        m_objects.push_back(object);
    } catch (...) {
        object->Release();
        throw;
    }
}

void KARGeometricFactory::Adopt(const std::vector<KARIGMKObject*>& objects)
{
    m_objects.insert(m_objects.end(), objects.begin(), objects.end());
}
