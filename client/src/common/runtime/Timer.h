#pragma once

#include "runtime/Export.h"

#include <string>

namespace pwr {

// Measures the wall-clock time of a scope, in microseconds. With a name it reports the interval at info level when
// it ends; with a result pointer it leaves the microseconds there.
//
//   double usecs = 0;
//   { Timer timer(&usecs); work(); }
//
// A copy is a second timer with the same beginning: it reports and stores on its own when it ends.
class QUORVANE_API Timer {
public:
    explicit Timer(const std::string& name);    // an empty name silences the report
    explicit Timer(double* result);             // not owned, outlives the timer; null stores nothing
    ~Timer();
    Timer(const Timer&) = default;
    Timer& operator=(const Timer&) = default;

private:
    void init_i(const std::string& name, double* result);

    std::string m_name;
    double m_elapsedUsecs = 0;    // minus the start while running, the interval at the end
    double* m_result = nullptr;
};

}    // namespace pwr
