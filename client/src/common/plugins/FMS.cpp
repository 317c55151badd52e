#include "plugins/FMS.h"

namespace pwr {

bool FMS::operator==(const FMS& other) const
{
    const bool anyStepping = stepping == 0 || other.stepping == 0;
    return family == other.family && model == other.model && (anyStepping || stepping == other.stepping);
}

std::ostream& operator<<(std::ostream& out, const FMS& fms)
{
    return out << std::hex << "0x" << unsigned{fms.family} << ".0x" << unsigned{fms.model} << ".0x"
               << unsigned{fms.stepping} << std::dec;
}

}    // namespace pwr
