// The text of a value in full, as the test doubles print and store it.
#pragma once

#include "KARMPSerializationVariable.h"

#include <string>

/// The value as text: doubles by the shortest text that reads back the same, bools "true", "false".
std::wstring TestValueText(const KARMPSerializationVariable& variable);

/// The name of a kind of value.
const char* TestTypeName(KARMPSerializationVariable::Type type);
