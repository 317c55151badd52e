#include "record/TopTree.h"

#include "record/Serializer.h"
#include "support/Bytes.h"
#include "support/LogCapture.h"
#include "support/TestSession.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <tuple>

using namespace pwr;
using test::bytes;

namespace {

// Every node of a type in walk order: its qualified name and its number.
std::string nodes(const TopTree& tree, top_node_type type)
{
    std::vector<const TNode*> found;
    tree.getAllNodesOfType(found, type);
    std::string text;
    for (const TNode* node : found) {
        text += node->getFullyQualifiedName() + "=" + std::to_string(node->getUniqueID()) + " ";
    }
    return text;
}

std::string shape(const TopTree& tree)
{
    std::string text;
    for (unsigned type = 0; type < 9; ++type) {
        text += nodes(tree, top_node_type{type});
    }
    return text;
}

TopTree built(const std::string& text, unsigned long long coresPerModule = 0)
{
    TopTree tree;
    tree.buildTopology(text, coresPerModule);
    return tree;
}

std::vector<char> saved(const TopTree& tree)
{
    Serializer out;
    tree.serializeTree(out);
    return out.get_buffer();
}

TopTree restored(const std::vector<char>& stored)
{
    TopTree tree;
    Serializer in(stored);
    tree.deserializeTree(in);
    return tree;
}

TEST(TopTreeTest, GroupsMakeTheTree)
{
    const struct {
        const char* text;
        unsigned long long coresPerModule;
        const char* shape;
    } cases[] = {
        {"", 2, ""},
        {"0 0 0 -1 1 0 0 -1", 0,
         "Package_0=0 Package_0/Core_0=1 Package_0/Core_0/Thread_0=2 "
         "Package_0/Core_0/Thread_1=3 "},
        {"3 0 3 -1 0 0 0 -1", 2,
         "Package_0=0 Package_0/Module_0=1 Package_0/Module_1=4 Package_0/Module_0/Core_0=2 "
         "Package_0/Module_1/Core_3=5 Package_0/Module_0/Core_0/Thread_0=3 Package_0/Module_1/Core_3/Thread_3=6 "},
        {"0x1 1 0 0xffffffff 010 0 1 1", 0,
         "Package_0=0 Package_1=4 Package_1/Core_0=5 Package_0/Die_1/Core_1=2 Package_1/Core_0/Thread_1=6 "
         "Package_0/Die_1/Core_1/Thread_8=3 Package_0/Die_1=1 "},
        // A group that is not whole or has no processor, and 32 bits without a count of cores, say nothing.
        {"-1 0 0 0 0 -1 0 0 0 0 -1 0 0 0 0", 1ULL << 32, ""},
        {"0 0 0 -1 1 0", 1ULL << 32, "Package_0=0 Package_0/Core_0=1 Package_0/Core_0/Thread_0=2 "},
        {"0 0 x", 0, ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.shape, shape(built(c.text, c.coresPerModule))) << c.text;
    }
}

TEST(TopTreeTest, CountsLeaveOutEntriesWithoutANode)
{
    const TopTree tree = built("0 0 0 -1 1 0 0 -1 2 1 0 -1");
    EXPECT_EQ(2u, tree.getNumPackages());
    EXPECT_EQ(0u, tree.getNumModules());
    EXPECT_EQ(0u, tree.getNumDies());
    EXPECT_EQ(2u, tree.getNumCores());
    EXPECT_EQ(3u, tree.getNumThreads());
    EXPECT_EQ(0u, tree.getNumNodesOfType(top_node_type::NULL_NODE));
}

TEST(TopTreeTest, BuildingAgainAddsAndNumbersAnew)
{
    TopTree tree = built("1 1 0 -1");
    tree.buildTopology("1 1 0 -1 0 0 0 -1", 0);
    EXPECT_EQ("Package_0=0 Package_1=3 Package_0/Core_0=1 Package_1/Core_0=4 Package_0/Core_0/Thread_0=2 "
              "Package_1/Core_0/Thread_1=5 ",
              shape(tree));
}

TEST(TopTreeTest, ModulesWinOverDiesWithOneWarning)
{
    static bool s_isWarned = false;    // the library warns once in the life of the process
    test::LogCapture log(2);
    EXPECT_EQ("Package_0=0 Package_0/Module_0=1 Package_0/Module_0/Core_0=2 Package_0/Module_0/Core_1=4 "
              "Package_0/Module_0/Core_0/Thread_0=3 Package_0/Module_0/Core_1/Thread_1=5 ",
              shape(built("0 0 0 0 1 0 1 1", 2)));
    EXPECT_EQ(s_isWarned ? 0u : 1u, log.count("2WARNING: Unknown topology has both a module AND a die ID -- choosing "
                                              "to report module ID only\n"));
    s_isWarned = true;
}

TEST(TopTreeTest, TheForestIsDumpedAfterBuilding)
{
    test::LogCapture log(4);
    built("5 0 0 -1 6 0 1 -1");
    EXPECT_EQ(
        "INFO: Dumping trees\n0 [0] (Package)\n 0 [1] (Core)\n  5 [2] (Thread)\n 1 [3] (Core)\n  6 [4] (Thread)\n",
        log.debug());
    log.clear();
    log.environment().setVerbosity(2);
    built("");
    EXPECT_EQ("", log.debug());
}

TEST(TopTreeTest, NodesAreAddedOneByOne)
{
    test::LogCapture log(3);
    TopTree tree;
    EXPECT_FALSE(tree.addNode(-1, 0, 0, 0));
    EXPECT_FALSE(tree.addNode(0, -1, 0, 0));
    EXPECT_FALSE(tree.addNode(0, 0, 0, -1));
    EXPECT_TRUE(tree.addNode(1, 0, -1, 0));
    EXPECT_EQ("DEBUG: addNode_i::ID is negative -- going to next level!\n", log.debug());
    EXPECT_TRUE(tree.addNode(1, 0, -1, 0));
    EXPECT_TRUE(tree.addNode(0, 0, -1, 0));
    EXPECT_TRUE(tree.addNode(2, 4, -2, 1));
    EXPECT_EQ("Package_0=-1 Package_1=-1 Package_1/Module_-2=-1 Package_1/Module_-2/Core_4=-1 Package_0/Core_0=-1 "
              "Package_0/Core_0/Thread_0=-1 Package_0/Core_0/Thread_1=-1 Package_1/Module_-2/Core_4/Thread_2=-1 ",
              shape(tree));
    tree.buildTopology("", 0);
    EXPECT_EQ("Package_0=0 Package_1=4 ", nodes(tree, top_node_type::PACKAGE));
}

TEST(TopTreeTest, ATreeHasItsBytes)
{
    const std::vector<char> expected = bytes("01 00"
                                             "  00 00 00 00  01 00 00 00"    // package 0
                                             "  01 00 00 00  06 00 00 00"    // die 1
                                             "  02 01 00 00  03 00 00 00"    // core 258
                                             "  07 00 00 00  04 00 00 00"    // thread 7
                                             "  FF FF FF FF  FF FF FF FF  FF FF FF FF  FF FF FF FF");
    EXPECT_EQ(expected, saved(built("7 0 258 1")));
    EXPECT_EQ("Package_0=0 Package_0/Die_1/Core_258=2 Package_0/Die_1/Core_258/Thread_7=3 Package_0/Die_1=1 ",
              shape(restored(expected)));
    EXPECT_EQ(bytes("00 00"), saved(TopTree()));

    // A node with a negative id has no type.
    TopTree negative;
    negative.addNode(0, 0, -2, 0);
    EXPECT_EQ(bytes("01 00  00 00 00 00  01 00 00 00  FE FF FF FF  00 00 00 00  03 00 00 00  00 00 00 00  04 00 00 00"
                    "  FF FF FF FF  FF FF FF FF  FF FF FF FF  FF FF FF FF"),
              saved(negative));
}

TEST(TopTreeTest, ARestoredTreeIsTheOneSaved)
{
    const struct {
        std::string text;
        unsigned long long coresPerModule;
    } cases[] = {
        {test::topologyText(2, 4, 2), 0},
        {test::topologyText(2, 4, 2), 2},
        {"0 0 0 -1 1 0 0 0 2 0 1 1", 0},    // a core and a die with one id below one package
    };
    for (const auto& c : cases) {
        TopTree tree = built(c.text, c.coresPerModule);
        TopTree copy = restored(saved(tree));
        EXPECT_EQ(shape(tree), shape(copy));
        EXPECT_EQ(saved(tree), saved(copy));
        // Its keys are those of building, so known groups add nothing.
        copy.buildTopology(c.text, c.coresPerModule);
        EXPECT_EQ(shape(tree), shape(copy));
    }
}

TEST(TopTreeTest, AShortRecordEndsTheTreeWhereTheBytesEnd)
{
    const std::vector<char> whole = saved(built("0 0 0 -1 1 0 0 -1 2 1 1 -1"));
    std::size_t nodesBefore = 0;
    for (std::size_t n = 0; n <= whole.size(); ++n) {
        const TopTree tree = restored(test::cut(whole, n));
        const std::size_t count = tree.getNumPackages() + tree.getNumCores() + tree.getNumThreads();
        EXPECT_GE(count, nodesBefore) << n;
        nodesBefore = count;
    }
    EXPECT_EQ(7u, nodesBefore);
}

TEST(TopTreeTest, ARestoredTreeReplacesUnlessThereIsNone)
{
    for (const char* nothing : {"", "01", "00 00"}) {
        TopTree tree = built("0 0 0 -1");
        Serializer in = test::stored(nothing);
        tree.deserializeTree(in);
        EXPECT_EQ(1u, tree.getNumThreads()) << nothing;
    }
    TopTree tree = built("0 0 0 -1");
    Serializer in = test::stored("01 00  05 00 00 00  01 00 00 00  FF FF FF FF");
    tree.deserializeTree(in);
    EXPECT_EQ("Package_5=0 ", shape(tree));
}

TEST(TopTreeTest, OddRecordsKeepWhatCanBeKept)
{
    const std::string end = "  FF FF FF FF  ";
    const auto node = [](const char* id, const char* type) {
        return std::string(id) + " 00 00 00  " + type + " 00 00 00  ";
    };
    const struct {
        const char* title;
        std::string stored;
        const char* shape;
    } cases[] = {
        {"unknown types go with their children",
         "03 00  " + node("00", "01") + node("00", "07") + node("01", "03") + end + end + node("01", "00") + end +
             node("02", "03") + end + end + node("01", "00") + node("00", "04") + end + end + node("02", "09") + end,
         "Package_0=0 Package_0/Core_2=1 "},
        {"an end mark in place of a package", "02 00  FF FF FF FF  " + node("01", "01") + end, "Package_1=0 "},
        {"the later package of one id stays",
         "02 00  " + node("00", "01") + node("01", "03") + end + end + node("00", "01") + node("02", "03") + end + end,
         "Package_0=0 Package_0/Core_2=1 "},
        {"children come in the order of their ids, of two with one id the later is in the index",
         "01 00  " + node("00", "01") + node("02", "03") + end + node("01", "03") + node("00", "04") + end + end +
             node("01", "03") + node("01", "04") + end + end + end,
         "Package_0=0 Package_0/Core_1=3 Package_0/Core_2=5 Package_0/Core_1/Thread_0=2 Package_0/Core_1/Thread_1=4 "},
        {"a package below a node",
         "02 00  " + node("00", "01") + node("01", "01") + end + node("02", "01") + end + end + node("01", "01") + end,
         "Package_0=0 Package_1=3 Package_0/Package_2=2 "},
        {"a core below a core whose key is the same",
         "01 00  " + node("00", "01") + node("00", "03") + node("00", "03") + end + end + end,
         "Package_0=0 Package_0/Core_0=1 "},
        {"a core on top", "01 00  " + node("00", "03") + node("01", "04") + end + end, "Core_0=0 Core_0/Thread_1=1 "},
        {"more packages counted than there are", "FF FF  " + node("00", "01") + end, "Package_0=0 "},
    };
    for (const auto& c : cases) {
        const TopTree tree = restored(bytes(c.stored));
        EXPECT_EQ(c.shape, shape(tree)) << c.title;
        const TopTree copy(tree);
        EXPECT_EQ(c.shape, shape(copy)) << c.title;
    }
}

TEST(TopTreeTest, NestingEndsAtSixteenLevels)
{
    for (const int levels : {16, 17, 100000}) {
        std::string stored = "02 00  00 00 00 00  01 00 00 00  ";
        for (int level = 2; level <= levels; ++level) {
            stored += "00 00 00 00  03 00 00 00  ";
        }
        for (int level = 1; level <= levels; ++level) {
            stored += "FF FF FF FF  ";
        }
        stored += "01 00 00 00  01 00 00 00  FF FF FF FF";
        const TopTree tree = restored(bytes(stored));
        // Behind the end of the read nothing is taken any more.
        EXPECT_EQ(levels == 16 ? 2u : 1u, tree.getNumPackages()) << levels;
        EXPECT_GE(tree.getNumCores(), 1u);
    }
}

TEST(TopTreeTest, CopiesAreDeep)
{
    auto original = std::make_unique<TopTree>(built("0 0 0 -1 1 1 0 -1"));
    original->addNode(0, 0, 3, 1);
    const std::string before = shape(*original);
    TopTree copy(*original);
    TopTree assigned = built("9 9 9 -1");
    assigned = *original;
    assigned = *&assigned;
    original->addNode(7, 7, 7, 7);
    original.reset();
    EXPECT_EQ(before, shape(copy));
    EXPECT_EQ(before, shape(assigned));
    // The index of a copy is its own.
    copy.buildTopology("0 0 0 -1 2 1 0 -1", 0);
    EXPECT_NE(before, shape(copy));
    EXPECT_EQ(before, shape(assigned));
}

TEST(TopTreeTest, ACopiedNodeStandsAlone)
{
    std::unique_ptr<TNode> copy;
    TNode assigned(8, top_node_type::DIE);
    {
        const TopTree tree = built("4 0 3 -1");
        std::vector<const TNode*> cores;
        tree.getAllCores(cores);
        copy = std::make_unique<TNode>(*cores.at(0));
        assigned = *copy;
        assigned = *&assigned;
    }
    for (const TNode* node : {copy.get(), static_cast<TNode*>(&assigned)}) {
        EXPECT_EQ(nullptr, node->getParent());
        EXPECT_EQ(1, node->getUniqueID());
        ASSERT_EQ(1, node->end() - node->begin());
        EXPECT_EQ("Core_3/Thread_4", (*node->begin())->getFullyQualifiedName());
    }
    assigned = **assigned.begin();    // a node below itself
    EXPECT_EQ("Thread_4", assigned.getFullyQualifiedName());
    EXPECT_EQ("NULL_2", TNode(2, top_node_type{77}).getName());
}

const char* const CHANGE = "08 07 06 05 04 03 02 01  03 00 00 00  05 00  06 00  07 00  FE FF FF FF";

TEST(TopologyChangeTest, AChangeReadsWritesAndPrints)
{
    Serializer in = test::stored(CHANGE);
    TopologyChange change;
    EXPECT_EQ(0, change.deserialize(in));
    Serializer out;
    change.serialize(out);
    EXPECT_EQ(bytes(CHANGE), out.get_buffer());
    change.resetTimestamp(10);
    std::ostringstream text;
    text << change << TopologyChange();
    EXPECT_EQ("Top Change:\n\ttsc = 10\n\ttype = ONLINE\n\tlogicalProcID = 5\n\tcoreID = 6\n\tmoduleID = -2\n"
              "\tpkgID = 7\n"
              "Top Change:\n\ttsc = 0\n\ttype = NOP\n\tlogicalProcID = 0\n\tcoreID = 0\n\tmoduleID = -1\n"
              "\tpkgID = 0\n",
              text.str());
}

TEST(TopologyChangeTest, ACutChangeSaysWhatIsMissing)
{
    const struct {
        std::size_t cut;
        const char* field;
    } cases[] = {{0, "timestamp"}, {7, "timestamp"}, {8, "type"},       {11, "type"},     {12, "cpu id"},
                 {14, "core id"},  {16, "pkg id"},   {18, "module id"}, {21, "module id"}};
    const std::vector<char> whole = bytes(CHANGE);
    for (const auto& c : cases) {
        test::LogCapture log(2);
        Serializer in(test::cut(whole, c.cut));
        TopologyChange change;
        EXPECT_EQ(-1, change.deserialize(in));
        EXPECT_EQ(std::string("WARNING: couldn't extract ") + c.field +
                      " for topology change!\nWARNING: error extracting topology changes!\n",
                  log.debug());
        EXPECT_EQ(c.cut < 12 ? "NOP" : "ONLINE", change.getActionName());
    }
}

TEST(TopologyChangeTest, TheDriversReportIsTranslated)
{
    const struct {
        std::uint32_t type;
        unsigned long long coresPerModule;
        const char* name;
        int module;
    } cases[] = {{0, 0, "NOP", -1},
                 {1, 2, "OFFLINE", 2},
                 {2, 4, "ONLINE PREPARE", 1},
                 {3, 1, "ONLINE", 5},
                 {4, 1ULL << 32, "NOP", -1}};
    for (const auto& c : cases) {
        const TopologyChange change(qv_driver_topology_change{9, c.type, 3, 5, 1}, c.coresPerModule);
        EXPECT_EQ(c.name, change.getActionName());
        EXPECT_EQ(c.module, change.getModuleID());
        EXPECT_EQ(std::tuple(9u, 3, 5, 1), std::tuple(change.getTimestamp(), change.getLogicalProcessorID(),
                                                      change.getCoreID(), change.getPackageID()));
    }
}

}    // namespace
