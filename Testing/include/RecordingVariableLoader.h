#pragma once

#include "KARIMPVariableLoader.h"
#include "RecordingEntityLoader.h"

#include <sstream>

/// A variable's loader that records what it was told.
class RecordingVariableLoader : public RecordingLoader<KARIMPVariableLoader>
{
public:
    using RecordingLoader::RecordingLoader;

    KARStatus SetValue(double value) override { return NoteNumber("SetValue", value); }
    KARStatus SetMinValue(double value) override { return NoteNumber("SetMinValue", value); }
    KARStatus SetMaxValue(double value) override { return NoteNumber("SetMaxValue", value); }
    KARStatus Fix() override { return m_record.Note("Fix"); }
    KARStatus Unfix() override { return m_record.Note("Unfix"); }

private:
    KARStatus NoteNumber(const char* call, double value)
    {
        std::ostringstream text;
        text << call << ' ' << value;
        return m_record.Note(text.str().c_str());
    }
};
