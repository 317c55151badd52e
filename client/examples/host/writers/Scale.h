#pragma once

#include <string>
#include <vector>

namespace host {

// An axis: maps values to the points of a drawing, and knows round values to mark. Any finite range works.
class Scale {
public:
    // Widens the range to round numbers where `isRounded`, and a range without length.
    Scale(double low, double high, double fromPoint, double toPoint, bool isRounded);

    double at(double value) const;
    const std::vector<double>& getMarks() const { return m_marks; }
    std::string text(double mark) const;
    double getLow() const { return m_low; }
    double getHigh() const { return m_high; }

private:
    double m_low;
    double m_high;
    double m_from;
    double m_to;
    int m_digits = 0;    // behind the point of a mark
    std::vector<double> m_marks;
};

}    // namespace host
