#include "StreamSession.h"

#include "output/TableMessage.h"
#include "values/EntityHandle.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

using namespace pwr;

namespace {

constexpr unsigned int SHARED_FIELDS = 4;
constexpr unsigned int ENTITY_FIELDS = 4;
constexpr unsigned int ENTITIES = 16;
constexpr unsigned int CELLS = SHARED_FIELDS + ENTITY_FIELDS * ENTITIES;

// Looks at every set cell.
class WalkingWriter : public bench::IdleWriter {
private:
    int writeMessage(const TableMessage& table) override
    {
        for (auto pair = table.validBegin(); pair != table.validEnd(); ++pair)
            benchmark::DoNotOptimize(pair->second);
        return 0;
    }
};

// A host with one writer and a created table.
struct Session : bench::StreamSession {
    explicit Session(std::shared_ptr<WriterPlugin> writer) : StreamSession(std::move(writer))
    {
        for (unsigned int i = 0; i < ENTITIES; ++i) {
            entities.push_back(EntityHandle::create("Core_" + std::to_string(i), nullptr));
            table.addEntity(entities.back());
        }
        for (unsigned int i = 0; i < SHARED_FIELDS + ENTITY_FIELDS; ++i) {
            const DataType type = i % 2 == 0 ? DataType::REAL : DataType::UINT;
            table.addField("Field_" + std::to_string(i), type, i < SHARED_FIELDS);
        }
        table.createTable();
    }

    std::vector<const EntityHandle*> entities;
    TableMessage table{"Table", nullptr};
};

void fillRow(TableMessage& table, const std::vector<const EntityHandle*>& entities, std::uint64_t round)
{
    for (unsigned int id = 0; id < SHARED_FIELDS; id += 2) {
        table.setField(id, static_cast<double>(round));
        table.setField(id + 1, round);
    }
    for (const EntityHandle* entity : entities) {
        for (unsigned int id = SHARED_FIELDS; id < SHARED_FIELDS + ENTITY_FIELDS; id += 2) {
            table.setField(entity, id, static_cast<double>(round));
            table.setField(entity, id + 1, round);
        }
    }
}

template <typename Writer>
void refill(benchmark::State& state)
{
    Session session(std::make_shared<Writer>());
    std::uint64_t round = 0;
    for (auto _ : state) {
        fillRow(session.table, session.entities, ++round);
        session.stream->pushMessage(session.table);
    }
    state.SetItemsProcessed(state.iterations());
}

struct TaggedNumber {
    union {
        double real;
        std::uint64_t count;
    };
    std::uint8_t type;
    bool valid;
};

// The floor: the same numbers written to a vector of tagged structures, and their flags cleared.
void BM_TableFloor(benchmark::State& state)
{
    std::vector<TaggedNumber> cells(CELLS);
    std::uint64_t round = 0;
    for (auto _ : state) {
        ++round;
        for (std::size_t i = 0; i < CELLS; i += 2) {
            cells[i].real = static_cast<double>(round);
            cells[i].type = 3;
            cells[i].valid = true;
            cells[i + 1].count = round;
            cells[i + 1].type = 2;
            cells[i + 1].valid = true;
        }
        benchmark::DoNotOptimize(cells.data());
        benchmark::ClobberMemory();
        for (TaggedNumber& cell : cells)
            cell.valid = false;
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_TableFloor);

// Refilling a created TableMessage allocates nothing; rows/s (a row is 4 shared cells and 4 for each of 16 entities).
void BM_TableRefill(benchmark::State& state)
{
    refill<bench::IdleWriter>(state);
}
BENCHMARK(BM_TableRefill);

// The same with a writer that walks the set of valid cells; rows/s.
void BM_TableRefillAndWalk(benchmark::State& state)
{
    refill<WalkingWriter>(state);
}
BENCHMARK(BM_TableRefillAndWalk);

}    // namespace
