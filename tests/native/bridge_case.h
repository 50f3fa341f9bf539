// Cases in text files: an exported function, what is special about its arguments or surroundings,
// and the events expected. Where a case says nothing else, arguments are recognisable values.
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
Outcome run(const Case &which, const Plan &plan);
// The names of all exported functions, without package and class.
std::set<std::string> exportedFunctions();
