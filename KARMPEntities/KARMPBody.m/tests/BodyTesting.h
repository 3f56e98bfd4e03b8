// What the tests of bodies share.
#pragma once

#include "ConcreteEntity.h"
#include "KARMPBody.h"
#include "KARMPConnector.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPJoint.h"
#include "KARMPPoint.h"
#include "KARMPShape.h"
#include "KARMPTestFixture.h"
#include "QOBBasicBody3D.h"
#include "QOBBasicWorld.h"
#include "RecordingBodyLoader.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

using Body = QOBSharedHandle<KARMPBody>;
using Calls = std::vector<std::string>;
using OpenBody = ConcreteEntity<KARMPBody>;

inline KARMathTransformation shift(double x, double y = 0.0, double z = 0.0)
{
    return KARMathTransformation(KARMathVector(x, y, z));
}

inline KARMathTransformation quarterTurn()
{
    return {{{0.0, 1.0, 0.0}, {-1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}}, {5.0, 6.0, 7.0}};
}

inline KARMathTransformation positionOf(const KARMPBody& body)
{
    KARMathTransformation position;
    EXPECT_EQ(body.GetPosition(position), KARSuccess);
    return position;
}

/// The neighbour of a body, with counts.
class TestNeighbour : public QOBBasicBody3D
{
public:
    static QOBSharedHandle<TestNeighbour> create(std::wstring name)
    {
        const QOBSharedHandle<TestNeighbour> neighbour(new TestNeighbour);
        neighbour->setEntityName(std::move(name));
        return neighbour;
    }
    KARStatus SetPosition(const KARMathTransformation& position) override
    {
        ++positionsSet;
        return fails ? KARFailure : QOBBasicBody3D::SetPosition(position);
    }
    KARStatus GetPosition(KARMathTransformation& position) const override
    {
        return fails ? KARFailure : QOBBasicBody3D::GetPosition(position);
    }
    KARStatus addBody(const QOBSharedHandle<QOBBasicBody3D>& body) override
    {
        added.push_back(body);
        return KARSuccess;
    }

    int positionsSet = 0;
    bool fails = false;
    std::vector<QOBSharedHandle<QOBBasicBody3D>> added;
};

/// An active sensor that lets a test look around when it is asked for that, before it is moved.
template <class Sensor>
class LookingSensor : public ConcreteEntity<Sensor>
{
public:
    bool IsActive() const override
    {
        look();
        return true;
    }

    std::function<void()> look;
};

/// Notes which bodies say that they changed, in order.
class ChangeLog : public QOBNotificationAgent
{
public:
    void Watch(const Body& body)
    {
        body->addSubscriber(QOBNotificationFunctor(*this, &ChangeLog::Note),
                            QOBNotificationFunctor::Events().set(9));
    }

    std::vector<const KARMPBody*> changed;

private:
    void Note(QOBNotificationFunctor::Sender sender, QOBNotificationFunctor::Events)
    {
        changed.push_back(static_cast<const KARMPBody*>(sender.get()));
    }
};

/// A fixture whose bodies are let go at its end, whatever links they have.
class BodyFixture : public KARMPTestFixture
{
protected:
    ~BodyFixture() override
    {
        for (const QOBSharedHandle<KARMPEntity>& entity : m_entities)
            entity->orphanObject();
    }

    Body NewBody(const std::wstring& name)
    {
        const auto body = KARMPBody::create(name);
        Keep(body)->SetIdentifier(name);
        return body;
    }
    template <class T>
    const QOBSharedHandle<T>& Keep(const QOBSharedHandle<T>& entity)
    {
        m_entities.emplace_back(entity);
        return entity;
    }
    /// A body that follows its father.
    Body NewFollower(const std::wstring& name)
    {
        const Body body = NewBody(name);
        body->SetFloating(false);
        return body;
    }
    template <class T>
    QOBSharedHandle<ConcreteEntity<T>> New(const std::wstring& name)
    {
        return Keep(ConcreteEntity<T>::create(name));
    }

    QOBSharedHandle<ChangeLog> log{new ChangeLog};

    /// Claims all reports and gives the number of those from sources of this name.
    std::size_t TakeReportsOf(std::string_view source)
    {
        const auto isOf = [source](const std::string& place) {
            return place.find(source) != std::string::npos;
        };
        const auto& places = UnclaimedReports();
        const auto count = std::count_if(places.begin(), places.end(), isOf);
        TakeReports();
        return static_cast<std::size_t>(count);
    }
    /// A record that outlives the bodies and their loaders.
    BodyLoaderRecord& NewRecord() { return m_records.emplace_back(); }
    Body2DLoaderRecord& NewPlanarRecord() { return m_planarRecords.emplace_back(); }

private:
    std::deque<BodyLoaderRecord> m_records;
    std::deque<Body2DLoaderRecord> m_planarRecords;
    std::vector<QOBSharedHandle<KARMPEntity>> m_entities;
};
