#pragma once

#include "config/Operation.h"
#include "records/QVBuffer.h"

#include <memory>
#include <string>

namespace host {

// The sources of one operation, as they stood when it was opened: read again and again, into one block each time.
class SourceReader {
public:
    virtual ~SourceReader() = default;
    virtual void read(QVBuffer& out) = 0;
};

// The base of the host's own kinds of access. Its description is a path or the like below the real root, with a "*" for
// each number; it stands as original tag in the operation's record, so that a plugin can name a source by its numbers.
class SourceOperation : public pwr::Operation {
public:
    // Why nothing of it can be read now, beginning with a small letter; empty when something can.
    virtual std::string findFault() const = 0;
    virtual std::string describe() const = 0;
    virtual std::unique_ptr<SourceReader> open() const = 0;

    pwr::OperationMetadata* getOperationMetadata() const override;

protected:
    explicit SourceOperation(const std::string& kind) : pwr::Operation(kind) {}
    SourceOperation(const SourceOperation&) = default;
    SourceOperation& operator=(const SourceOperation&) = default;
};

}    // namespace host
