#include "output/TextNotes.h"

namespace pwr {

int TextNotes::addPreTableNote(const std::string& note)
{
    return addNote(TextLocation::PRE_TABLE, note);
}

int TextNotes::addPostTableNote(const std::string& note)
{
    return addNote(TextLocation::POST_TABLE, note);
}

bool TextNotes::getPreTableNotes(std::vector<std::string>& notes) const
{
    return getNotes(TextLocation::PRE_TABLE, notes);
}

bool TextNotes::getPostTableNotes(std::vector<std::string>& notes) const
{
    return getNotes(TextLocation::POST_TABLE, notes);
}

int TextNotes::addNote(TextLocation location, const std::string& note)
{
    m_notes[location].push_back(note);
    return 0;
}

bool TextNotes::getNotes(TextLocation location, std::vector<std::string>& notes) const
{
    const auto found = m_notes.find(location);
    if (found == m_notes.end()) return false;
    notes = found->second;
    return true;
}

}    // namespace pwr
