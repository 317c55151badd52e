#pragma once

#include "output/TableTypes.h"
#include "runtime/Export.h"

#include <map>
#include <string>
#include <vector>

namespace pwr {

// Free text that a writer places before or after a table, note by note in the order of adding.
class QUORVANE_API TextNotes {
public:
    int addPreTableNote(const std::string& note);     // returns 0
    int addPostTableNote(const std::string& note);    // returns 0

    // True with the notes of that place; false, with `notes` left alone, when there are none.
    bool getPreTableNotes(std::vector<std::string>& notes) const;
    bool getPostTableNotes(std::vector<std::string>& notes) const;

private:
    int addNote(TextLocation location, const std::string& note);
    bool getNotes(TextLocation location, std::vector<std::string>& notes) const;

    std::map<TextLocation, std::vector<std::string>> m_notes;
};

}    // namespace pwr
