#include "params.h"

#include "input.h"
#include "log.h"
#include "textfile.h"

#include <cstring>
#include <limits>
#include <sstream>

namespace korvex {
namespace {

struct Parameter {
    const char *name;
    ParameterValue standard, minimum, maximum;
};

constexpr int maxInt = std::numeric_limits<int>::max();

// Never destroyed: runs may go on while the process ends.
const std::vector<Parameter> &table() {
    static const auto &parameters = *new std::vector<Parameter>{
        {"TimeLimit", 1e100, 0.0, 1e100},
        {"MIPGap", 1e-4, 0.0, 1e100},
        {"MIPGapAbs", 1e-10, 0.0, 1e100},
        {"NodeLimit", 1e100, 0.0, 1e100},
        {"IterationLimit", 1e100, 0.0, 1e100},
        {"SolutionLimit", maxInt, 1, maxInt},
        {"FeasibilityTol", 1e-6, 1e-9, 1e-2},
        {"OptimalityTol", 1e-6, 1e-9, 1e-2},
        {"IntegralityTol", 1e-6, 1e-9, 1e-1},
        {"Method", -1, -1, 2},
        {"Presolve", 1, 0, 1},
        {"Cuts", 1, 0, 1},
        {"Heuristics", 1, 0, 1},
        {"Threads", 0, 0, 1024},
        {"Seed", 0, 0, maxInt},
        {"LazyConstraints", 0, 0, 1},
        {"LogToConsole", 1, 0, 1},
        {"LogFile", "", "", ""},
        {"LogInterval", 5.0, 0.1, 1e100},
        {"ResultFile", "", "", ""},
        {"TuneTimeLimit", 60.0, 0.0, 1e100},
        {"TuneCriterion", 0, 0, 0},
    };
    return parameters;
}

constexpr const char *typeNames[] = {"an integer", "a number", "a text"};

size_t position(const char *name) {
    for (size_t i = 0; i < table().size(); i++)
        if (equalIgnoringCase(table()[i].name, needed(name, "the parameter name")))
            return i;
    fail(KVX_ERROR_UNKNOWN_PARAMETER, "unknown parameter \"%s\"", name);
}

// The position of a parameter of the type T.
template <class T>
size_t position(const char *name) {
    size_t i = position(name);
    if (const ParameterValue &standard = table()[i].standard; !std::holds_alternative<T>(standard))
        fail(KVX_ERROR_UNKNOWN_PARAMETER, "parameter %s is %s", name, typeNames[standard.index()]);
    return i;
}

std::string asText(const ParameterValue &value) {
    if (auto text = std::get_if<std::string>(&value))
        return *text;
    auto number = std::get_if<int>(&value);
    return number ? std::to_string(*number) : toText(std::get<double>(value));
}

ParameterValue fromText(size_t i, const std::string &text) {
    ParameterValue value = table()[i].standard;
    bool isGood = true;
    if (auto integer = std::get_if<int>(&value))
        isGood = parse(text, *integer);
    else if (auto number = std::get_if<double>(&value))
        isGood = parse(text, *number);
    else
        value = text;
    if (!isGood)
        fail(KVX_ERROR_INVALID_ARGUMENT, "parameter %s: \"%s\" isn't %s", table()[i].name,
             text.c_str(), typeNames[value.index()]);
    return value;
}

void assign(std::vector<ParameterValue> &values, size_t i, const ParameterValue &value) {
    const auto &[name, standard, minimum, maximum] = table()[i];
    if (value.index() != standard.index())
        fail(KVX_ERROR_INVALID_ARGUMENT, "parameter %s is %s", name, typeNames[standard.index()]);
    if (auto text = std::get_if<std::string>(&value); text && !isName(*text))
        fail(KVX_ERROR_INVALID_ARGUMENT,
             "the value of parameter %s isn't UTF-8 text without control characters", name);
    else if (!text && !(value >= minimum && value <= maximum)) // nor is a NaN
        fail(KVX_ERROR_VALUE_OUT_OF_RANGE, "parameter %s must be between %s and %s, not %s", name,
             asText(minimum).c_str(), asText(maximum).c_str(), asText(value).c_str());
    values[i] = value;
}

// The log reads parameters on any thread, so they change under its lock.
void setParams(KVXenv &env, std::vector<ParameterValue> values) {
    static const size_t logFile = position("LogFile");
    std::shared_ptr<std::FILE> file = env.logFile;
    if (values[logFile] != env.parameters[logFile])
        file = openLogFile(std::get<std::string>(values[logFile]));
    std::lock_guard lock(env.log->mutex);
    env.parameters.swap(values);
    env.logFile.swap(file);
}

void setParam(KVXenv &env, size_t i, const ParameterValue &value) {
    std::vector<ParameterValue> values = env.parameters;
    assign(values, i, value);
    setParams(env, std::move(values));
}

// Copies as much of a text as fits; doesn't end within a character.
void copyText(const std::string &text, char *buffer, int capacity) {
    needed(buffer, "buffer");
    if (capacity < 1)
        fail(KVX_ERROR_INVALID_ARGUMENT, "capacity %d is below 1", capacity);
    size_t length = std::min(text.size(), at(capacity) - 1);
    while (length < text.size() && length > 0 && (text[length] & 0xC0) == 0x80)
        length--;
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

template <class T>
int getParam(KVXenv *env, const char *name, T *current, T *minimum = nullptr, T *maximum = nullptr,
             T *standard = nullptr) {
    return guardedRead(env, [&] {
        size_t i = position<T>(name);
        store(current, std::get<T>(env->parameters[i]));
        store(minimum, std::get<T>(table()[i].minimum));
        store(maximum, std::get<T>(table()[i].maximum));
        store(standard, std::get<T>(table()[i].standard));
    });
}

} // namespace

std::vector<ParameterValue> defaultParameters() {
    std::vector<ParameterValue> values;
    for (const Parameter &parameter : table())
        values.push_back(parameter.standard);
    return values;
}

int intParam(const KVXenv &env, const char *name) {
    return std::get<int>(env.parameters[position(name)]);
}

double dblParam(const KVXenv &env, const char *name) {
    return std::get<double>(env.parameters[position(name)]);
}

const std::string &strParam(const KVXenv &env, const char *name) {
    return std::get<std::string>(env.parameters[position(name)]);
}

void setParam(KVXenv &env, const char *name, const ParameterValue &value) {
    size_t i = position(name);
    auto integer = std::get_if<int>(&value);
    bool isNumber = integer && std::holds_alternative<double>(table()[i].standard);
    setParam(env, i, isNumber ? ParameterValue(1.0 * *integer) : value);
}

std::string writeParams(const KVXenv &env) {
    std::string text;
    for (size_t i = 0; i < table().size(); i++)
        if (env.parameters[i] != table()[i].standard)
            text += std::string(table()[i].name) + ' ' + asText(env.parameters[i]) + '\n';
    return text;
}

void readParams(KVXenv &env, const char *filename) {
    std::istringstream file(readFile(filename));
    std::vector<ParameterValue> values = env.parameters;
    std::string line;
    for (int number = 1; std::getline(file, line); number++) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty() || line[0] == '#')
            continue;
        size_t end = std::min(line.find(' '), line.size());
        try {
            size_t i = position(line.substr(0, end).c_str());
            assign(values, i, fromText(i, end < line.size() ? line.substr(end + 1) : ""));
        } catch (const Failure &failure) {
            fail(failure.status, "%s, line %d: %s", filename, number, failure.text.c_str());
        }
    }
    setParams(env, std::move(values));
}

} // namespace korvex

using namespace korvex;

int KVXgetlongstrparam(KVXenv *env, const char *name, char *buffer, int capacity, int *length) {
    return guardedRead(env, [&] {
        const auto &value = std::get<std::string>(env->parameters[position<std::string>(name)]);
        needed(length, "length");
        copyText(value, buffer, capacity);
        *length = intSize(value.size());
    });
}

int KVXgetstrparaminfo(KVXenv *env, const char *name, char *current, char *standard) {
    return guardedRead(env, [&] {
        size_t i = position<std::string>(name);
        needed(standard, "standard");
        copyText(std::get<std::string>(env->parameters[i]), current, KVX_TEXT_SIZE);
        copyText(std::get<std::string>(table()[i].standard), standard, KVX_TEXT_SIZE);
    });
}

// The functions of numbers.
#define KVX_PARAMETER(type, T)                                                                     \
    int KVXget##type##param(KVXenv *env, const char *name, T *value) {                             \
        return getParam(env, name, value);                                                         \
    }                                                                                              \
    int KVXget##type##paraminfo(KVXenv *env, const char *name, T *current, T *minimum, T *maximum, \
                                T *standard) {                                                     \
        return getParam(env, name, current, minimum, maximum, standard);                           \
    }                                                                                              \
    int KVXset##type##param(KVXenv *env, const char *name, T value) {                              \
        return guarded(env, [&] { setParam(*env, position<T>(name), value); });                    \
    }
KVX_PARAMETER(int, int)
KVX_PARAMETER(dbl, double)

int KVXsetstrparam(KVXenv *env, const char *name, const char *value) {
    return guarded(env, [&] {
        setParam(*env, position<std::string>(name), std::string(needed(value, "value")));
    });
}

int KVXsetparam(KVXenv *env, const char *name, const char *value) {
    return guarded(env, [&] {
        size_t i = position(name);
        setParam(*env, i, fromText(i, needed(value, "value")));
    });
}

int KVXresetparams(KVXenv *env) {
    return guarded(env, [&] { setParams(*env, defaultParameters()); });
}

int KVXwriteparams(KVXenv *env, const char *filename) {
    return guardedRead(env, [&] { writeFile(needed(filename, "filename"), writeParams(*env)); });
}

int KVXreadparams(KVXenv *env, const char *filename) {
    return guarded(env, [&] { readParams(*env, needed(filename, "filename")); });
}
