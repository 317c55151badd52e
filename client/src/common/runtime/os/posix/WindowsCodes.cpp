#include "runtime/os/posix/WindowsCodes.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace pwr::os {

namespace {

struct CodePair {
    int errnum;
    int windows;
};

constexpr CodePair CODES[] = {
    {0, 0},
    {ENOENT, 2},            // file not found
    {ENOTDIR, 3},           // path not found
    {EMFILE, 4},            // too many open files
    {ENFILE, 4},            //
    {EACCES, 5},            // access denied
    {EPERM, 5},             //
    {EISDIR, 5},            //
    {EBADF, 6},             // invalid handle
    {ENOMEM, 8},            // not enough memory
    {EBADMSG, 13},          // invalid data
    {EROFS, 19},            // write protected
    {EBUSY, 32},            // in use by another
    {ETXTBSY, 32},          //
    {ENOSYS, 50},           // not supported
    {EOPNOTSUPP, 50},       //
    {EINVAL, 87},           // invalid parameter
    {EPIPE, 109},           // broken pipe
    {ENOSPC, 112},          // disk full
    {EDQUOT, 112},          //
    {EFBIG, 112},           //
    {EEXIST, 183},          // exists already
    {ENAMETOOLONG, 206},    // name too long
    {ECANCELED, 1223},      // cancelled
    {EUCLEAN, 1392},        // file corrupt
};

}    // namespace

int windowsCode(int errnum)
{
    const auto* found = std::find_if(std::begin(CODES), std::end(CODES),
                                     [errnum](const CodePair& pair) { return pair.errnum == errnum; });
    return found != std::end(CODES) ? found->windows : 31;
}

int errnoOf(std::uint32_t code)
{
    const auto* found = std::find_if(std::begin(CODES), std::end(CODES), [code](const CodePair& pair) {
        return static_cast<std::uint32_t>(pair.windows) == code;
    });
    return found != std::end(CODES) ? found->errnum : 0;
}

}    // namespace pwr::os
