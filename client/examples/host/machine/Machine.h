#pragma once

#include <memory>
#include <string>
#include <vector>

namespace pwr {
class SystemMetadata;
}

namespace host {

class Collector;
class MachineClock;

// The measured machine: what stands in its record, and who collects from it.
//
//   std::unique_ptr<Machine> machine = openMachine("");
//   machine->describe(record, remarks);
//   std::unique_ptr<Collector> collector = machine->makeCollector(clock);
class Machine {
public:
    Machine() = default;
    virtual ~Machine() = default;
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    // Fills host, operating system, processor and topology; every text that the record requires gets one. Lines for the
    // user go to `remarks`. False when no processor was found.
    virtual bool describe(pwr::SystemMetadata& record, std::vector<std::string>& remarks) const = 0;

    // The collector with the kinds of access that this kind of machine has. `clock` outlives it.
    virtual std::unique_ptr<Collector> makeCollector(MachineClock& clock) const = 0;

protected:
    // What this processor tells of itself: family, model and stepping, frequencies. 0 where it tells nothing.
    static void askProcessor(pwr::SystemMetadata& record);
};

// The machine whose files stand below `sysroot`; this machine when that is empty.
std::unique_ptr<Machine> openMachine(const std::string& sysroot);

}    // namespace host
