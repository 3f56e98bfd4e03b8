// A loader that records what it was told and answers what a test wants.
#pragma once

#include "KARIMPEntityLoader.h"

#include <string>
#include <vector>

/// The record of one or more loaders, which outlives them.
struct LoaderRecord
{
    std::vector<std::string> calls;
    KARStatus answer = KARSuccess;
    int deleted = 0;

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
    explicit RecordingLoader(LoaderRecord& record) : m_record(record) {}
    ~RecordingLoader() override { ++m_record.deleted; }

    KARStatus OnActivate() override { return m_record.Note("OnActivate"); }
    KARStatus OnDeactivate() override { return m_record.Note("OnDeactivate"); }

protected:
    LoaderRecord& m_record;
};

using RecordingEntityLoader = RecordingLoader<KARIMPEntityLoader>;
