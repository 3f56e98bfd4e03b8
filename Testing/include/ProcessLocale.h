#pragma once

#include <clocale>
#include <initializer_list>
#include <string>

/// A locale of the C library for the whole process, for as long as the object lives.
class ProcessLocale
{
public:
    /// Sets the first of the locales that is installed; without one the process keeps its own.
    ProcessLocale(std::initializer_list<const char*> names)
        : m_former(std::setlocale(LC_ALL, nullptr))
    {
        for (const char* name : names) {
            m_installed = m_installed || std::setlocale(LC_ALL, name) != nullptr;
            if (m_installed)
                break;
        }
    }
    ~ProcessLocale() { std::setlocale(LC_ALL, m_former.c_str()); }
    ProcessLocale(const ProcessLocale&) = delete;
    ProcessLocale& operator=(const ProcessLocale&) = delete;

    /// True when one of the locales is set.
    bool IsInstalled() const { return m_installed; }

private:
    std::string m_former;
    bool m_installed = false;
};

/// The locale of a program that asked for none: ASCII alone.
struct PlainLocale : ProcessLocale
{
    PlainLocale() : ProcessLocale({"C"}) {}
};

/// A locale whose narrow characters are UTF-8.
struct Utf8Locale : ProcessLocale
{
    Utf8Locale() : ProcessLocale({"C.UTF-8", "en_US.UTF-8"}) {}
};

/// A locale whose decimal mark is the comma.
struct DecimalCommaLocale : ProcessLocale
{
    DecimalCommaLocale() : ProcessLocale({"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8", "fr_FR"}) {}
};
