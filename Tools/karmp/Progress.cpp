#include "Progress.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <string_view>
#include <utility>

#include <sys/ioctl.h>
#include <unistd.h>

namespace karmp::tool {

namespace {

constexpr std::chrono::milliseconds Patience(500);
constexpr std::chrono::milliseconds Interval(200);

constexpr std::string_view RemoveLine = "\r\033[K";

// A line that is wider than the terminal cannot be removed. No character is cut in two.
std::string Cut(std::string text)
{
    winsize size{};
    const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    const std::size_t columns = (isKnown ? size.ws_col : 80U) - 1U;
    if (text.size() <= columns)
        return text;
    std::size_t end = columns;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end;
    text.resize(end);
    return text;
}

std::string TimeText(double seconds)
{
    const auto whole = static_cast<long>(std::ceil(seconds));
    return whole < 60 ? std::to_string(whole) + " s"
                      : std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
}

} // namespace

Progress::Progress(std::string activity, std::string units)
    : m_activity(std::move(activity)), m_units(std::move(units))
{
    if (::isatty(STDERR_FILENO) != 0)
        m_thread = std::thread([this] { Run(); });
}

Progress::~Progress()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_isOver = true;
    }
    m_ends.notify_one();
    m_thread.join();
}

void Progress::Show(std::size_t done, std::size_t of)
{
    const std::lock_guard lock(m_mutex);
    if (m_of == 0)
        m_counting = Clock::now();
    m_done = done;
    m_of = of;
}

documents::ProgressFunction Progress::Function()
{
    if (!m_thread.joinable())
        return {};
    return [this](std::size_t done, std::size_t of) { Show(done, of); };
}

void Progress::Run()
{
    const auto isOver = [this] { return m_isOver; };
    std::unique_lock lock(m_mutex);
    if (m_ends.wait_until(lock, m_begin + Patience, isOver))
        return;
    do
        std::cerr << RemoveLine << Cut(Line(Clock::now())) << std::flush;
    while (!m_ends.wait_for(lock, Interval, isOver));
    std::cerr << RemoveLine << std::flush;
}

std::string Progress::Line(Clock::time_point now) const
{
    if (m_of == 0)
        return m_activity + " ...";
    std::string line =
        m_activity + ": " + std::to_string(m_done) + " of " + std::to_string(m_of) + ' ' + m_units;
    if (m_done > 0) {
        const std::chrono::duration<double> passed = now - m_counting;
        const double left = static_cast<double>(m_of - m_done) / static_cast<double>(m_done);
        line += ", about " + TimeText(passed.count() * left) + " left";
    }
    return line;
}

} // namespace karmp::tool
