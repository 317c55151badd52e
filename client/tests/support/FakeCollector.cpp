#include "support/FakeCollector.h"

#include "config/InputMsg.h"
#include "record/Metadata.h"

namespace test {

namespace {

int s_alive = 0;

}    // namespace

FakeOperation::FakeOperation(const std::string& kind, const std::vector<std::string>& categories) : Operation(kind)
{
    ++s_alive;
    for (const std::string& category : categories)
        addCategory(category);
}

FakeOperation::FakeOperation(const FakeOperation& other)
    : Operation(other), canWrite(other.canWrite), lockedCategory(other.lockedCategory), settings(other.settings)
{
    ++s_alive;
}

FakeOperation::~FakeOperation()
{
    --s_alive;
}

int FakeOperation::set(const std::string& key, const std::string& value)
{
    if (value == "REFUSED") return -1;
    settings.emplace_back(key, value);
    return 0;
}

pwr::OperationMetadata* FakeOperation::getOperationMetadata() const
{
    return new pwr::OperationMetadata(getName(), getOperation(), 8);
}

pwr::Operation* FakeOperation::clone() const
{
    return new FakeOperation(*this);
}

int FakeOperation::alive()
{
    return s_alive;
}

bool FakeOperation::canSetCategory(const std::string& category) const
{
    return category != lockedCategory;
}

bool FakeOperation::isValidCommand_i(pwr::QVOpCommand command) const
{
    const bool canRead = settings.empty() || settings.back().second != "WRITE-ONLY";
    return command == pwr::QVOpCommand::READ ? canRead : canWrite;
}

FakeOperation& FakeCollector::provide(const std::string& kind, const std::vector<std::string>& categories)
{
    auto* operation = new FakeOperation(kind, categories);
    addOperation(operation);
    return *operation;
}

FakeOperation& FakeCollector::provideUnavailable(const std::string& kind)
{
    FakeOperation& operation = provide(kind);
    operation.addRequirement(&m_unmet);
    return operation;
}

void FakeCollector::provideConstants()
{
    addOperation(new pwr::CONSTANTOperation("CONSTANT"));
}

int FakeCollector::doImmediateRead(const pwr::InputMsg* message, Results& results)
{
    calls.push_back("read " + message->getName());
    results.emplace_back("read", message->getName());
    return result;
}

int FakeCollector::doImmediateRead(pwr::Operation* operation, const std::string& text)
{
    calls.push_back("read " + operation->getName() + " " + text);
    return result;
}

int FakeCollector::doImmediateWrite(const pwr::InputMsg* message)
{
    calls.push_back("write " + message->getName());
    return result;
}

int FakeCollector::doImmediateWrite(pwr::Operation* operation, const std::string& text)
{
    calls.push_back("write " + operation->getName() + " " + text);
    return result;
}

}    // namespace test
