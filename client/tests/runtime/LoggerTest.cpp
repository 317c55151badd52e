#include "runtime/Logger.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace {

// Keeps each message that was written out as one piece.
class PieceLogger : public Logger {
public:
    void writeOut() override
    {
        pieces.emplace_back(m_buffer.begin(), m_buffer.end());
        wasDirty = m_dirty;
    }
    bool isDirty() const { return m_dirty; }
    using Logger::overflow;

    std::vector<std::string> pieces;
    bool wasDirty = false;
};

using Pieces = std::vector<std::string>;

TEST(LoggerTest, StreamedTextGoesOutAsOnePieceAtTheFlush)
{
    PieceLogger logger;
    logger << "samples: " << 12 << ' ' << 1.5;
    EXPECT_TRUE(logger.pieces.empty());
    EXPECT_TRUE(logger.isDirty());
    logger << std::endl;
    EXPECT_EQ(Pieces{"samples: 12 1.5\n"}, logger.pieces);
    EXPECT_FALSE(logger.isDirty());
    EXPECT_TRUE(logger.good());
}

TEST(LoggerTest, WholeTextJoinsWhatWasStreamedBefore)
{
    PieceLogger logger;
    logger << "a=" << 1 << ' ';
    logger.log("x");
    logger.log(2, "y\n");
    EXPECT_EQ((Pieces{"a=1 x", "y\n"}), logger.pieces);
    EXPECT_TRUE(logger.wasDirty);
}

TEST(LoggerTest, EmptyTextWritesOutWhatIsThereAndNullDoesNothing)
{
    PieceLogger logger;
    logger.log(nullptr);
    logger.log(1, nullptr);
    EXPECT_TRUE(logger.pieces.empty());
    logger << "half";
    logger.log(nullptr);
    EXPECT_TRUE(logger.pieces.empty());
    logger.log("");
    logger.log("");
    EXPECT_EQ((Pieces{"half", ""}), logger.pieces);
}

TEST(LoggerTest, EveryByteArrivesAndTheEndMarkIsNone)
{
    PieceLogger logger;
    logger.write("\0\xff\r\n", 4);
    EXPECT_EQ(0, logger.overflow(std::char_traits<char>::eof()));
    logger.flush();
    EXPECT_EQ(Pieces{std::string("\0\xff\r\n", 4)}, logger.pieces);
    EXPECT_EQ(0, logger.getStatus());
}

class FileLoggerTest : public testing::Test {
protected:
    void SetUp() override { std::filesystem::remove_all(m_path); }
    void TearDown() override { std::filesystem::remove_all(m_path); }

    std::string content() const
    {
        std::ifstream file(m_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    const std::string m_path = "FileLoggerTest.log";
};

TEST_F(FileLoggerTest, EachMessageReachesTheFileAtOnceByteForByte)
{
    std::ofstream(m_path) << "old content";
    FileLogger logger(m_path.c_str());
    EXPECT_EQ("", content());
    logger << "one" << std::endl;
    EXPECT_EQ("one\n", content());
    logger.log("two\r\n");
    logger << "three";
    EXPECT_EQ("one\ntwo\r\n", content());
}

TEST_F(FileLoggerTest, TextOfAnUnfinishedMessageIsLost)
{
    auto logger = std::make_unique<FileLogger>(m_path.c_str());
    *logger << "done" << std::endl << "unfinished";
    logger.reset();
    EXPECT_EQ("done\n", content());
}

TEST_F(FileLoggerTest, ClosedLoggerDropsItsText)
{
    FileLogger logger(m_path.c_str());
    logger.log("kept");
    logger.close();
    logger.log("dropped");
    logger.close();
    logger << "dropped too" << std::endl;
    EXPECT_EQ("kept", content());
}

TEST_F(FileLoggerTest, FileThatCannotBeOpenedSwallowsEverything)
{
    std::filesystem::create_directory(m_path);
    for (const char* path : {static_cast<const char*>(nullptr), "", "no/such/folder/x.log", m_path.c_str()}) {
        FileLogger logger(path);
        logger << "lost" << std::endl;
        logger.log("lost");
        logger.close();
        EXPECT_TRUE(logger.good());
        EXPECT_EQ(0, logger.getStatus());
    }
    EXPECT_TRUE(std::filesystem::is_empty(m_path));
}

}    // namespace
