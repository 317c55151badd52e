#include "runtime/Timer.h"

#include "runtime/Log.h"
#include "runtime/os/Os.h"

namespace pwr {

namespace {

double nowUsecs()
{
    const unsigned long long nanoseconds = (os::current().clocks->systemTime100ns() - os::UNIX_EPOCH_100NS) * 100;
    return static_cast<double>(nanoseconds) / 1000;
}

}    // namespace

Timer::Timer(const std::string& name)
{
    init_i(name, nullptr);
}

Timer::Timer(double* result)
{
    init_i(std::string(), result);
}

Timer::~Timer()
{
    m_elapsedUsecs += nowUsecs();
    if (!m_name.empty()) {
        QV_LOG_INFO("INFO: Total time elapsed during %s = %.2f usecs or %.2f secs\n", m_name.c_str(), m_elapsedUsecs,
                    m_elapsedUsecs / 1e6);
    }
    if (m_result != nullptr) *m_result = m_elapsedUsecs;
}

void Timer::init_i(const std::string& name, double* result)
{
    m_elapsedUsecs = -nowUsecs();
    m_name = name;
    m_result = result;
}

}    // namespace pwr
