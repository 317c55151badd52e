#pragma once

// The number of the binary interface: of the exported symbols, of the layout and the virtual operations of the public
// classes, and of what the example host shares with its modules. A change that removes or alters any of it raises the
// number; what only adds symbols leaves it. The build takes the number from this line: it stands in the name of the
// shared library and of the packages, and each module tells the one that it was built for.
#define QUORVANE_ABI 1
