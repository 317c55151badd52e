// Input: one saved session. Invariant: the host reads it and makes results of it, or says why not; no read past the
// end, no leak.

#include "Session.h"
#include "features/Features.h"
#include "sessions/Replay.h"
#include "sessions/SessionReader.h"
#include "writers/ConsoleWriter.h"
#include "writers/ResultHead.h"

#include "record/SystemMetadata.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

void process(std::istream& in, std::ostream& nowhere)
{
    host::Session session(nowhere);
    pwr::SystemMetadata record;
    host::SessionReader reader(in);
    if (!reader.begin(record)) {
        if (reader.getFault().empty()) std::abort();
        return;
    }
    session.useSavedRecord(record);
    const std::vector<host::Feature> features = host::makeFeatures("");
    std::vector<host::FeaturePlugin*> plugins;
    for (const host::Feature& feature : features)
        plugins.push_back(&feature.getPlugin());
    host::ConsoleWriter tables(nowhere);
    host::OutputStream stream;
    stream.addWriter(tables);
    if (!stream.open(session.getEnvironment(), record)) std::abort();
    host::Replay replay(record, reader);
    replay.use(replay.choose(plugins));
    if (replay.begin() != nullptr) std::abort();    // these refuse nothing
    replay.run();
    if (reader.isWhole() != reader.getFault().empty()) std::abort();
    if (host::resultHead(record, true).tool.empty()) std::abort();
    replay.end();
}

}    // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    std::cerr.setstate(std::ios::failbit);    // unknown tags are told there
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    std::ostream nowhere(nullptr);
    try {
        process(in, nowhere);
    } catch (const char*) {    // how the library's constructors refuse
    }
    return 0;
}
