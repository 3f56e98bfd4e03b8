#include "KARMPTestFixture.h"

KARMPTestFixture::~KARMPTestFixture()
{
    for (const std::string& location : m_unclaimed)
        ADD_FAILURE() << "Unclaimed report of a failed check at " << location;
}

void KARMPTestFixture::ExpectReports(std::size_t count, KARMPSourceLocation where)
{
    if (m_unclaimed.size() != count) {
        std::string locations;
        for (const std::string& location : m_unclaimed)
            locations += "\n  at " + location;
        ADD_FAILURE_AT(where.file, where.line)
            << "Expected " << count << " reports of failed checks, got " << m_unclaimed.size()
            << locations;
    }
    m_unclaimed.clear();
}

std::size_t KARMPTestFixture::TakeReports()
{
    const std::size_t count = m_unclaimed.size();
    m_unclaimed.clear();
    return count;
}

void KARMPTestFixture::OnFailedCheck(const char* file, int line)
{
    m_unclaimed.push_back(std::string(file) + ":" + std::to_string(line));
}
