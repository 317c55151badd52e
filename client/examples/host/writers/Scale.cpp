#include "writers/Scale.h"

#include "writers/Text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace host {

namespace {

constexpr double MARKS = 5;    // about as many
constexpr double LEAST_RANGE = 1e-300;
constexpr double MOST_STEPS = 1e9;    // from zero: marks further out would need more digits than a reader wants

// 1, 2 or 5 times a power of ten.
double roundStep(double rough)
{
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    const double lead = rough / power;
    if (lead <= 1) return power;
    if (lead <= 2) return 2 * power;
    return (lead <= 5 ? 5 : 10) * power;
}

}    // namespace

Scale::Scale(double low, double high, double fromPoint, double toPoint, bool isRounded)
    : m_low(low), m_high(high), m_from(fromPoint), m_to(toPoint)
{
    if (m_high / 2 - m_low / 2 < LEAST_RANGE) {
        const double room = std::max(std::abs(m_low) * 0.05, 0.5);
        m_low = std::max(m_low - room, -std::numeric_limits<double>::max());
        m_high = std::min(m_high + room, std::numeric_limits<double>::max());
    }
    const double step = roundStep((m_high / MARKS) - (m_low / MARKS));
    const double first = std::floor(m_low / step);
    const double last = std::ceil(m_high / step);
    const bool canRound = std::abs(first) < MOST_STEPS && std::abs(last) < MOST_STEPS && std::isfinite(first * step) &&
                          std::isfinite(last * step);
    if (!canRound) {
        m_marks = {m_low, m_high};
        m_digits = -1;
        return;
    }
    m_digits = std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
    if (isRounded) {
        m_low = first * step;
        m_high = last * step;
    }
    for (double i = first; i <= last; i += 1) {
        const double mark = i * step + 0.0;    // no negative zero
        if (mark >= m_low && mark <= m_high) m_marks.push_back(mark);
    }
}

double Scale::at(double value) const
{
    // In halves: the range of doubles is no double.
    const double share = (value / 2 - m_low / 2) / (m_high / 2 - m_low / 2);
    return m_from + std::clamp(share, 0.0, 1.0) * (m_to - m_from);
}

std::string Scale::text(double mark) const
{
    std::string text;
    const bool isLong = std::abs(mark) >= 1e7 || m_digits > 6;
    if (m_digits < 0 || isLong) {
        appendGeneral(text, mark, 4);
    } else {
        appendFixed(text, mark, m_digits);
    }
    return text;
}

}    // namespace host
