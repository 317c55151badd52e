#include "collector/SourceOperation.h"

#include "record/Metadata.h"

namespace host {

pwr::OperationMetadata* SourceOperation::getOperationMetadata() const
{
    auto* record = new pwr::OperationMetadata(getName(), getOperation(), sizeof(std::uint64_t));
    record->setOrgMsgTag(describe());
    return record;
}

}    // namespace host
