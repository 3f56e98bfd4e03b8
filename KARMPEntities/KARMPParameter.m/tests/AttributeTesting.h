// Attributes and values for the tests of this module.
#pragma once

#include "KARMPBoolean.h"
#include "KARMPConstant.h"
#include "KARMPOutput.h"
#include "KARMPParameter.h"
#include "KARMPState.h"
#include "KARMPString.h"
#include "KARMPTestFixture.h"
#include "TestEntity.h"

#include <string>

using AttributePath = KAROmxArray<KARString>;

/// An attribute whose name in paths, name for people and identifier are one text.
template <class T>
QOBSharedHandle<T> NewAttribute(const std::string& text)
{
    const std::wstring wide(text.begin(), text.end());
    const QOBSharedHandle<T> attribute = T::create(wide);
    attribute->SetIdentifier(wide);
    attribute->SetID(KARString(std::string_view(text)));
    return attribute;
}

/// The lists of an entity by the kind of attribute.
inline KARStatus AddTo(KARMPEntity& entity, const QOBSharedHandle<KARMPParameter>& attribute)
{
    return entity.AddParameter(attribute);
}
inline KARStatus AddTo(KARMPEntity& entity, const QOBSharedHandle<KARMPState>& attribute)
{
    return entity.AddState(attribute);
}
inline KARStatus AddTo(KARMPEntity& entity, const QOBSharedHandle<KARMPOutput>& attribute)
{
    return entity.AddOutput(attribute);
}
template <class Key>
KARStatus GetFrom(const KARMPEntity& entity, const Key& key, QOBSharedHandle<KARMPParameter>& found)
{
    return entity.GetParameter(key, found);
}
template <class Key>
KARStatus GetFrom(const KARMPEntity& entity, const Key& key, QOBSharedHandle<KARMPState>& found)
{
    return entity.GetState(key, found);
}
template <class Key>
KARStatus GetFrom(const KARMPEntity& entity, const Key& key, QOBSharedHandle<KARMPOutput>& found)
{
    return entity.GetOutput(key, found);
}
inline KARStatus GetAllOf(const KARMPEntity& entity, QOBSharedVector<KARMPParameter>& all)
{
    return entity.GetAllParameters(all);
}
inline KARStatus GetAllOf(const KARMPEntity& entity, QOBSharedVector<KARMPState>& all)
{
    return entity.GetAllStates(all);
}
inline KARStatus GetAllOf(const KARMPEntity& entity, QOBSharedVector<KARMPOutput>& all)
{
    return entity.GetAllOutputs(all);
}

/// A fixture for each of the three kinds.
template <class T>
class AttributeKindTest : public KARMPTestFixture
{
protected:
    using Handle = QOBSharedHandle<T>;
    ~AttributeKindTest() override { entity->orphanObject(); }

    const QOBSharedHandle<TestEntity> entity = TestEntity::create(L"crank");
};
using AttributeKinds = ::testing::Types<KARMPParameter, KARMPState, KARMPOutput>;
