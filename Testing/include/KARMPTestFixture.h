#pragma once

#include "KARMPFailedCheck.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

/// Base of fixtures that count failed checks: a report that no test claims is a failure. It hears
/// the reports of its thread up to the end of the fixture's life. Members of a derived fixture are
/// destroyed before, so that their reports count as well.
class KARMPTestFixture : public ::testing::Test, private KARMPFailedCheckListener
{
public:
    /// Fails the test for each report that was not claimed.
    ~KARMPTestFixture() override;

    /// Claims the reports made since the last claim, which must be exactly `count`.
    void ExpectReports(std::size_t count,
                       KARMPSourceLocation where = KARMPSourceLocation::current());
    /// Claims the reports made since the last claim, however many, and gives their number.
    std::size_t TakeReports();
    /// The source locations of the reports that are not claimed, "file:line" each.
    const std::vector<std::string>& UnclaimedReports() const { return m_unclaimed; }

private:
    void OnFailedCheck(const char* file, int line) final;

    std::vector<std::string> m_unclaimed;
};
