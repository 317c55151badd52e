#include "output/TextNotes.h"

#include <gtest/gtest.h>

using pwr::TextNotes;

TEST(TextNotesTest, NotesKeepTheirPlaceAndOrder)
{
    TextNotes notes;
    std::vector<std::string> found = {"kept"};
    EXPECT_FALSE(notes.getPreTableNotes(found));
    EXPECT_FALSE(notes.getPostTableNotes(found));
    EXPECT_EQ(std::vector<std::string>{"kept"}, found);

    EXPECT_EQ(0, notes.addPreTableNote("b"));
    EXPECT_EQ(0, notes.addPreTableNote("a"));
    EXPECT_FALSE(notes.getPostTableNotes(found));
    EXPECT_EQ(0, notes.addPostTableNote(""));
    EXPECT_TRUE(notes.getPreTableNotes(found));
    EXPECT_EQ((std::vector<std::string>{"b", "a"}), found);
    EXPECT_TRUE(notes.getPostTableNotes(found));
    EXPECT_EQ(std::vector<std::string>{""}, found);
}
