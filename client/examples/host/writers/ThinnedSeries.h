#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host {

// A timeline for drawing, in a bounded number of pieces: when there would be more, each two neighbours become one. A
// piece keeps the least and the greatest of its values and their weighted mean, so that no peak is ever lost. Times are
// nanoseconds since the start of the run; they do not fall.
class ThinnedSeries {
public:
    static constexpr std::size_t MAX_PIECES = 480;

    struct Piece {
        std::uint64_t index = 0;    // begins at index << shift
        double min = 0;
        double max = 0;
        double sum = 0;    // of value times weight
        double weight = 0;

        double mean() const;
    };

    // `value` is finite, `weight` above 0.
    void add(std::uint64_t timeNs, double value, double weight);

    // Makes the pieces at least 2^shift nanoseconds long.
    void coarsen(unsigned int shift);

    const std::vector<Piece>& getPieces() const { return m_pieces; }
    unsigned int getShift() const { return m_shift; }
    double timeOf(const Piece& piece) const;    // its middle, in nanoseconds

private:
    std::vector<Piece> m_pieces;    // in the order of time, without those that would be empty
    unsigned int m_shift = 0;
};

}    // namespace host
