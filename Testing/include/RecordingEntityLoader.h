// A loader that records what it was told and answers what a test wants.
#pragma once

#include "KARIMPEntityLoader.h"

#include <memory>
#include <string>
#include <vector>

/// A count that its copies share, so that a loader may be deleted after its record.
class SharedCount
{
public:
    void Increase() const { ++*m_count; }
    operator int() const { return *m_count; }

private:
    std::shared_ptr<int> m_count = std::make_shared<int>(0);
};

/// The record of one or more loaders. Entities delete their loaders, mostly after the test's body;
/// a loader that is called again then needs a record that still lives.
struct LoaderRecord
{
    std::vector<std::string> calls;
    KARStatus answer = KARSuccess;
    SharedCount deleted;

    KARStatus Note(const char* call)
    {
        calls.emplace_back(call);
        return answer;
    }
};

/// Implements the hooks of any loader interface by writing into a record.
template <class Interface>
class RecordingLoader : public Interface
{
public:
    explicit RecordingLoader(LoaderRecord& record) : m_record(record), m_deleted(record.deleted) {}
    ~RecordingLoader() override { m_deleted.Increase(); }

    KARStatus OnActivate() override { return m_record.Note("OnActivate"); }
    KARStatus OnDeactivate() override { return m_record.Note("OnDeactivate"); }

protected:
    LoaderRecord& m_record;

private:
    SharedCount m_deleted;
};

using RecordingEntityLoader = RecordingLoader<KARIMPEntityLoader>;
