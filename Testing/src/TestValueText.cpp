#include "TestValueText.h"

#include <charconv>

std::wstring TestValueText(const KARMPSerializationVariable& variable)
{
    char digits[64];
    std::to_chars_result end{digits, {}};
    switch (variable.type) {
    case KARMPSerializationVariable::Bool:
        return variable.value.boolValue ? L"true" : L"false";
    case KARMPSerializationVariable::Int:
        end = std::to_chars(digits, digits + sizeof digits, variable.value.intValue);
        break;
    case KARMPSerializationVariable::Double:
        end = std::to_chars(digits, digits + sizeof digits, variable.value.doubleValue);
        break;
    case KARMPSerializationVariable::String:
        return variable.value.stringValue;
    case KARMPSerializationVariable::None:
        break;
    }
    return {digits, end.ptr};
}

const char* TestTypeName(KARMPSerializationVariable::Type type)
{
    switch (type) {
    case KARMPSerializationVariable::Bool:
        return "bool";
    case KARMPSerializationVariable::Int:
        return "int";
    case KARMPSerializationVariable::Double:
        return "double";
    case KARMPSerializationVariable::String:
        return "string";
    case KARMPSerializationVariable::None:
        break;
    }
    return "nothing";
}
