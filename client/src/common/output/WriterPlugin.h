#pragma once

#include "plugins/Plugin.h"
#include "runtime/Export.h"

#include <deque>
#include <string>

class WriterStream;
namespace pwr {
class DataHandle;
class EntityHandle;
class IdMessage;
class Metric;
class MetricContainerInfoMessage;
class PluginCapability;
class SystemMessage;
class SystemMetadata;
class TableMessage;
class TextMessage;
}    // namespace pwr

// The base of everything that renders results. The stream calls the writeMessage() overloads on the producer's thread;
// a plugin overrides those it takes an interest in. The host calls openOutput(), the end of the stream closeOutput().
// A writer has exactly one capability, a WriterPluginCapability, which tells what tables it wants.
//
//   class CsvWriter : public WriterPlugin {
//       // getColumnTitles() and getRowValues() flatten the table
//       int writeMessage(const pwr::TableMessage& table) override;
//   };
class QUORVANE_API WriterPlugin : public Plugin {
public:
    // Takes ownership of the first. A second is refused with a warning: it stays the caller's, untouched.
    void addCapability(pwr::PluginCapability* capability) override;

    // Both return 0 on success. The result of closeOutput() is not looked at.
    virtual int openOutput() = 0;
    virtual int closeOutput() = 0;

    // True when results of a continuous collection were written out. The default has none.
    virtual bool flushContinuousResults(const pwr::SystemMetadata& system);

private:
    friend class ::WriterStream;

    // Each returns 0 on success; the defaults take nothing and succeed. A header text arrives as a TextMessage.
    virtual int writeMessage(const pwr::MetricContainerInfoMessage& message);
    virtual int writeMessage(const pwr::Metric& metric);
    virtual int writeMessage(const pwr::IdMessage& message);
    virtual int writeMessage(const pwr::SystemMessage& message);
    virtual int writeMessage(const pwr::TextMessage& message);
    virtual int writeMessage(const pwr::TableMessage& message);

protected:
    explicit WriterPlugin(const std::string& name);
    ~WriterPlugin() override;

    // Flatten a table into one list of titles and one of cell texts that match by position: shared handles first, then
    // for each entity each handle. They append to `out`. A cell that is not set is empty; one that can't be read is
    // "Invalid".
    virtual void getColumnTitles(const pwr::TableMessage& table, std::deque<std::string>& out) const;
    virtual void getRowValues(const pwr::TableMessage& table, std::deque<std::string>& out) const;

    // One title: the entity's name when the table has a single handle, else the handle's. One cell: the entity's, else
    // the first row's. Either pointer may be null.
    std::string getFieldNameFromHandle(const pwr::TableMessage& table, const pwr::EntityHandle* entity,
                                       const pwr::DataHandle* handle) const;
    std::string getFieldValueFromHandle(const pwr::TableMessage& table, const pwr::EntityHandle* entity,
                                        const pwr::DataHandle* handle) const;
};
