#include "writers/ThinnedSeries.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

void merge(ThinnedSeries::Piece& into, const ThinnedSeries::Piece& from)
{
    into.min = std::min(into.min, from.min);
    into.max = std::max(into.max, from.max);
    into.sum += from.sum;
    into.weight += from.weight;
}

}    // namespace

double ThinnedSeries::Piece::mean() const
{
    const double mean = sum / weight;
    return std::isfinite(mean) ? std::clamp(mean, min, max) : min / 2 + max / 2;
}

void ThinnedSeries::add(std::uint64_t timeNs, double value, double weight)
{
    unsigned int shift = m_shift;
    while ((timeNs >> shift) >= MAX_PIECES)
        ++shift;
    coarsen(shift);
    Piece piece{timeNs >> m_shift, value, value, value * weight, weight};
    if (!m_pieces.empty()) piece.index = std::max(piece.index, m_pieces.back().index);
    if (!m_pieces.empty() && m_pieces.back().index == piece.index) {
        merge(m_pieces.back(), piece);
    } else {
        m_pieces.push_back(piece);
    }
}

void ThinnedSeries::coarsen(unsigned int shift)
{
    if (shift <= m_shift) return;
    const unsigned int by = shift - m_shift;
    m_shift = shift;
    std::size_t count = 0;
    for (Piece& piece : m_pieces) {
        piece.index >>= by;
        if (count > 0 && m_pieces[count - 1].index == piece.index) {
            merge(m_pieces[count - 1], piece);
        } else {
            m_pieces[count++] = piece;
        }
    }
    m_pieces.resize(count);
}

double ThinnedSeries::timeOf(const Piece& piece) const
{
    return std::ldexp(static_cast<double>(piece.index) + 0.5, static_cast<int>(m_shift));
}

}    // namespace host
