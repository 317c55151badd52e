#pragma once

#include <memory>
#include <string>
#include <vector>

namespace pwr {
class SystemMetadata;
}

namespace host {

class Feature;

// The measured machine: what stands in its record, and what can be measured on it.
//
//   std::unique_ptr<Machine> machine = openMachine("");
//   machine->describe(record, remarks);
//   for (auto& feature : machine->makeFeatures()) ...
class Machine {
public:
    Machine() = default;
    virtual ~Machine() = default;
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    // Fills host, operating system, processor and topology; every text that the record requires gets one. Lines for the
    // user go to `remarks`. False when no processor was found.
    virtual bool describe(pwr::SystemMetadata& record, std::vector<std::string>& remarks) const = 0;

    // All features that the host knows for this kind of machine; whether one is offered it finds out by itself. They
    // may not outlive the machine.
    virtual std::vector<std::unique_ptr<Feature>> makeFeatures() const = 0;

protected:
    // What this processor tells of itself: family, model and stepping, frequencies. 0 where it tells nothing.
    static void askProcessor(pwr::SystemMetadata& record);
};

// The machine whose files stand below `sysroot`; this machine when that is empty.
std::unique_ptr<Machine> openMachine(const std::string& sysroot);

}    // namespace host
