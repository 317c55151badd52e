#pragma once

#include "config/Operation.h"
#include "plugins/CollectorPlugin.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace test {

// An operation of any kind that keeps its settings and refuses the value "REFUSED". With the value "WRITE-ONLY" it
// can't be read any more.
class FakeOperation : public pwr::Operation {
public:
    explicit FakeOperation(const std::string& kind, const std::vector<std::string>& categories = {"CATEG"});
    FakeOperation(const FakeOperation& other);
    FakeOperation& operator=(const FakeOperation&) = delete;
    ~FakeOperation() override;

    int set(const std::string& key, const std::string& value) override;
    pwr::OperationMetadata* getOperationMetadata() const override;
    pwr::Operation* clone() const override;

    static int alive();    // how many there are in the process

    bool canWrite = false;
    std::string lockedCategory;    // known, but not to be set now
    std::vector<std::pair<std::string, std::string>> settings;

protected:
    bool canSetCategory(const std::string& category) const override;
    bool isValidCommand_i(pwr::QVOpCommand command) const override;
};

// A requirement with a fixed answer.
class FixedRequirement : public pwr::PluginRequirement {
public:
    explicit FixedRequirement(bool isMet, bool negative = false) : PluginRequirement("FIXED", negative), m_isMet(isMet)
    {
    }
    ~FixedRequirement() override = default;

protected:
    bool isPluginRequirementSatisfied_i(const pwr::SystemMetadata&, const Params&) const override { return m_isMet; }

private:
    bool m_isMet;
};

// A collector of given kinds of operations that writes down what it is asked to do at once, and answers `result`.
//
//   FakeCollector collector;
//   collector.provide("OPKIND");
//   collector.provideConstants();
class FakeCollector : public CollectorPlugin {
public:
    explicit FakeCollector(const std::string& uuid = "fake") : CollectorPlugin(uuid) {}
    ~FakeCollector() override = default;

    FakeOperation& provide(const std::string& kind, const std::vector<std::string>& categories = {"CATEG"});
    FakeOperation& provideUnavailable(const std::string& kind);    // a requirement of it fails
    void provideConstants();

    int startCollection(const std::vector<pwr::InputMsg*>&, pwr::SystemMetadata&) override { return 0; }
    int stopCollection(CollectionData&) override { return 0; }
    int pauseCollection() override { return 0; }
    int resumeCollection() override { return 0; }
    int getCollectionResults(QVBuffer&) override { return 0; }

    using CollectorPlugin::doImmediateRead;
    int doImmediateRead(const pwr::InputMsg* message, Results& results) override;
    int doImmediateRead(pwr::Operation* operation, const std::string& text) override;
    int doImmediateWrite(const pwr::InputMsg* message) override;
    int doImmediateWrite(pwr::Operation* operation, const std::string& text) override;

    int result = 0;
    std::vector<std::string> calls;    // "read NAME", "write NAME text"

private:
    FixedRequirement m_unmet{false};
};

}    // namespace test
