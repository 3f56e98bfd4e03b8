#pragma once

#include <cstdlib>
#include <optional>
#include <string>

/// A variable of the process's environment, set or taken away for as long as the object lives.
class EnvironmentVariable
{
public:
    /// Sets the variable; null takes it away.
    EnvironmentVariable(const char* name, const char* value) : m_name(name)
    {
        if (const char* former = std::getenv(name))
            m_former = former;
        Set(value);
    }
    ~EnvironmentVariable() { Set(m_former ? m_former->c_str() : nullptr); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

    /// Sets the variable to another value; null takes it away.
    void Set(const char* value)
    {
        if (value != nullptr)
            ::setenv(m_name, value, 1);
        else
            ::unsetenv(m_name);
    }

private:
    const char* m_name;
    std::optional<std::string> m_former;
};
