// Cases in text files: exported functions, what is special about the arguments or the surroundings,
// and the events expected.
//
//   name/KVXfunction name/KVXfunction: i1=0 D2=null ints=2,0 solver=1
//     event | $(h1, 2) | = 0
//
// Headers and events may go on in further lines, an event after a comma; '$' is the name's KVX
// function. Arguments are numbered by type: h handles, i ints, d doubles, c chars, s texts, and I,
// D, C, L, S arrays of ints, doubles, chars, longs, texts. Without a setting they are recognisable
// values. malloc, fetch and solver say which allocation, fetch or solver call fails; ints, what the
// solver stores into single ints, a list for each call; stored, that it stores although it fails;
// missing, novm and noglobal, what the virtual machine doesn't have.
#pragma once

#include "ledger.h"

#include <map>
#include <set>
#include <string>
#include <vector>

struct Case {
    std::string place;    // file and line
    std::string function; // the Java method's name
    std::map<std::string, std::string> settings;
    std::vector<std::string> events;

    std::string setting(const std::string &key, const std::string &otherwise = "") const;
};

std::ostream &operator<<(std::ostream &out, const Case &shown);

struct Outcome {
    std::vector<std::string> events; // the last is "= RESULT" unless the method returns nothing
    int texts;                       // number of String arguments
    bool failed;                     // the planned failure came about
};

std::vector<Case> readCases(const std::string &directory);
// Splits "event | event".
std::vector<std::string> eventsOf(const std::string &text);
// Calls the function on fresh doubles, ends what it left running, and checks that nothing is left.
Outcome run(const Case &which, Plan plan);
// The names of all exported functions, without package and class.
std::set<std::string> exportedFunctions();
