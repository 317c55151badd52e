// Input: a program file of Windows. Invariant: what is found as its version lies in the file and isn't empty, nothing
// is read past the end of the file or of the version, and a version that can be read is told again.

#include "runtime/os/posix/PeVersion.h"

#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

void check(bool holds)
{
    if (!holds) std::abort();
}

class Input : public pwr::os::ByteSource {
public:
    Input(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}
    std::uint64_t sizeBytes() const override { return m_size; }

    bool read(std::uint64_t offset, void* to, std::size_t count) override
    {
        check(offset <= m_size && count <= m_size - offset);
        if (count > 0) std::memcpy(to, m_data + offset, count);
        return true;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
};

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input file(data, size);
    pwr::os::Extent found;
    if (!pwr::os::findVersionResource(file, found)) return 0;
    check(found.sizeBytes > 0 && found.offset <= size && found.sizeBytes <= size - found.offset);

    const std::vector<unsigned char> resource(data + found.offset, data + found.offset + found.sizeBytes);
    std::uint32_t numbers[4] = {};
    const bool isRead = pwr::os::readFileVersion(resource.data(), resource.size(), numbers[0], numbers[1]);
    check(isRead == pwr::os::readFileVersion(resource.data(), resource.size(), numbers[2], numbers[3]));
    check(numbers[0] == numbers[2] && numbers[1] == numbers[3]);
    check(isRead || (numbers[0] == 0 && numbers[1] == 0));
    return 0;
}
