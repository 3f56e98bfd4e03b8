#pragma once

#include <clocale>
#include <string>

/// A locale of the C library whose decimal mark is the comma, for as long as the object lives.
class CommaLocale
{
public:
    CommaLocale() : m_former(std::setlocale(LC_ALL, nullptr))
    {
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "fr_FR"}) {
            if (std::setlocale(LC_ALL, name) != nullptr) {
                m_installed = std::string(std::localeconv()->decimal_point) == ",";
                return;
            }
        }
    }
    ~CommaLocale() { std::setlocale(LC_ALL, m_former.c_str()); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    bool IsInstalled() const { return m_installed; }

private:
    std::string m_former;
    bool m_installed = false;
};
