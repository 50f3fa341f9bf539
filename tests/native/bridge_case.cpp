#include "bridge_case.h"

#include "com_korvex_KVXBatch.h"
#include "com_korvex_KVXEnv.h"
#include "com_korvex_KVXModel.h"
#include "com_korvex_KorvexJni.h"
#include "java_double.h"
#include "solver_double.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <tuple>

namespace {
using Words = std::vector<std::string>;

// The parts of a text between separators, without the blanks around them; empty ones don't count.
Words split(const std::string &text, char separator) {
    Words words;
    std::istringstream stream(text);
    for (std::string word; std::getline(stream, word, separator);) {
        auto first = word.find_first_not_of(' ');
        if (first != std::string::npos)
            words.push_back(word.substr(first, word.find_last_not_of(' ') - first + 1));
    }
    return words;
}

// Makes arguments by type. Each type is numbered by itself (i1 is the first int), and a setting of
// that name replaces the default.
class Arguments {
  public:
    explicit Arguments(const Case &used) : source(used) {}

    template <class T>
    T next() {
        T value;
        make(value);
        return value;
    }
    int texts() { return numbers["s"]; }

  private:
    int number(const std::string &type) {
        int k = ++numbers[type];
        key = type + std::to_string(k);
        text = source.setting(key);
        return k;
    }

    void make(jlong &value) {
        auto usual = reinterpret_cast<jlong>(handle<void>(number("h")));
        value = text.empty() ? usual : std::stol(text);
    }
    void make(jint &value) {
        int usual = number("i") + 1;
        value = text.empty() ? usual : std::stoi(text);
    }
    void make(jdouble &value) { value = number("d") + 0.25; }
    // What exceeds a byte must get lost on the way to the solver.
    void make(jchar &value) { value = static_cast<jchar>(0x0100 + '<' + number("c") - 1); }
    void make(jstring &value) {
        number("s");
        value = static_cast<jstring>(text == "null" ? nullptr : java.make(key)->reference());
    }
    void make(jintArray &value) { value = array<jintArray, jint>("I", 1, 10); }
    void make(jdoubleArray &value) { value = array<jdoubleArray, jdouble>("D", 0.5, 10); }
    void make(jcharArray &value) { value = array<jcharArray, jchar>("C", 0x0140, 1); }
    void make(jlongArray &value) { value = array<jlongArray, jlong>("L", 0, 0); }

    void make(jobjectArray &value) {
        int k = number("S");
        std::vector<Object *> elements;
        for (const std::string &name : listed())
            elements.push_back(name == "null" ? nullptr : java.make(name));
        for (int i = 0; text.empty() && i < 4; ++i)
            elements.push_back(java.make(static_cast<char>('a' + k - 1) + std::to_string(i)));
        value = reference<jobjectArray>(std::move(elements));
    }

    // Element i of the k-th array: k + first + i * step.
    template <class A, class T>
    A array(const std::string &type, double first, double step) {
        int k = number(type);
        std::vector<T> elements;
        for (const std::string &element : listed())
            elements.push_back(static_cast<T>(std::stod(element)));
        for (int i = 0; text.empty() && i < 40; ++i)
            elements.push_back(static_cast<T>(k + first + i * step));
        return reference<A>(std::move(elements));
    }

    template <class A, class Elements>
    A reference(Elements elements) {
        if (text == "null")
            return nullptr;
        Object *object = java.make(key, std::move(elements));
        object->boundless = text == "boundless";
        return static_cast<A>(object->reference());
    }

    // The elements of a setting "[element,element]".
    Words listed() {
        return text[0] == '[' ? split(text.substr(1, text.size() - 2), ',') : Words();
    }

    const Case &source;
    std::map<std::string, int> numbers;
    std::string key, text; // of the argument at hand: "i1" and its setting
};

template <class R, class Receiver, class... A>
void callExport(R (*function)(JNIEnv *, Receiver, A...), Arguments &arguments) {
    std::tuple<A...> values{arguments.next<A>()...};
    auto *self = static_cast<Receiver>(java.self->reference());
    auto call = [&](A... value) { return function(&java.env, self, value...); };
    if constexpr (std::is_void_v<R>) {
        std::apply(call, values);
    } else if constexpr (std::is_same_v<R, jint>) {
        ledger.note("= " + std::to_string(std::apply(call, values)));
    } else if constexpr (std::is_same_v<R, jlong>) {
        ledger.note("= " + showPointer(reinterpret_cast<void *>(std::apply(call, values))));
    } else {
        auto *text = reinterpret_cast<Object *>(std::apply(call, values));
        ledger.note("= " + (text ? text->name : "null"));
        if (text)
            --text->locals;
    }
}

const std::map<std::string, std::function<void(Arguments &)>> &exports() {
    static const auto table = [] {
        std::map<std::string, std::function<void(Arguments &)>> made;
        auto add = [&](const std::string &symbol, auto *function) {
            made[symbol.substr(symbol.rfind('_') + 1)] = [function](Arguments &arguments) {
                callExport(function, arguments);
            };
        };
#define EXPORT(symbol) add(#symbol, &symbol);
#include "exports.inc"
        return made;
    }();
    return table;
}

// What Java does in the end: turns its log off, waits for the run it started.
void endWhatIsLeft() {
    ledger.plan = {};
    auto object = reinterpret_cast<jlong>(handle<void>(1));
    auto record = reinterpret_cast<jlong>(solver.callbackData);
    if (ledger.blockOf(solver.logData))
        Java_com_korvex_KVXEnv_jniSetLogCB(&java.env, java.self->reference(), object, 0);
    if (ledger.blockOf(solver.callbackData))
        Java_com_korvex_KorvexJni_sync(&java.env, nullptr, object, record, nullptr);
}

// "name/KVXfunction name/KVXfunction: key=value key" makes a case for each name.
void addCases(std::vector<Case> &cases, const std::string &place, const std::string &header,
              const Words &events) {
    auto colon = header.find(':');
    std::map<std::string, std::string> settings;
    for (const std::string &word :
         split(colon == std::string::npos ? "" : header.substr(colon + 1), ' ')) {
        Words pair = split(word, '=');
        settings[pair[0]] = pair.size() > 1 ? pair[1] : "yes";
    }
    for (const std::string &name : split(header.substr(0, colon), ' ')) {
        Words pair = split(name, '/');
        cases.push_back({place, pair[0], settings, events});
        for (std::string &event : cases.back().events)
            if (event[0] == '$')
                event = pair.back() + event.substr(1);
    }
}

void addEvents(Words &events, const std::string &line) {
    for (const std::string &event : split(line, '|'))
        if (!events.empty() && events.back().back() == ',')
            events.back() += ' ' + event;
        else
            events.push_back(event);
}
} // namespace

std::string Case::setting(const std::string &key, const std::string &otherwise) const {
    auto found = settings.find(key);
    return found == settings.end() ? otherwise : found->second;
}

std::ostream &operator<<(std::ostream &out, const Case &shown) {
    return out << shown.place << " " << shown.function;
}

std::vector<std::string> eventsOf(const std::string &text) {
    Words events;
    addEvents(events, text);
    return events;
}

std::vector<Case> readCases(const std::string &directory) {
    std::vector<Case> cases;
    for (const auto &file : std::filesystem::directory_iterator(directory)) {
        std::ifstream in(file.path());
        std::string header, place;
        Words events;
        int number = 0;
        for (std::string line; std::getline(in, line);) {
            ++number;
            if (line.empty() || line[0] == '#')
                continue;
            if (line[0] == ' ') {
                addEvents(events, line);
                continue;
            }
            if (!events.empty()) {
                addCases(cases, place, header, events);
                header.clear();
                events.clear();
            }
            if (header.empty())
                place = file.path().stem().string() + "_" + std::to_string(number);
            header += " " + line;
        }
        addCases(cases, place, header, events);
    }
    return cases;
}

Outcome run(const Case &which, Plan plan) {
    auto number = [&](const char *key, int otherwise) {
        return std::stoi(which.setting(key, std::to_string(otherwise)));
    };
    plan.allocation = number("malloc", plan.allocation);
    plan.fetch = number("fetch", plan.fetch);
    plan.solverCall = number("solver", plan.solverCall);
    java.begin();
    java.missing = which.setting("missing");
    java.noVM = which.settings.count("novm");
    java.noGlobal = which.settings.count("noglobal");
    solver.begin();
    solver.storesOnFailure = which.settings.count("stored");
    solver.text = which.setting("text") == "null" ? nullptr : "text";
    for (const std::string &row : split(which.setting("ints"), '/')) {
        solver.ints.emplace_back();
        for (const std::string &word : split(row, ','))
            solver.ints.back().push_back(std::stoi(word));
    }

    ledger.begin(plan);
    Arguments arguments(which);
    exports().at(which.function)(arguments);
    Outcome outcome{ledger.events, arguments.texts(), ledger.failed};
    endWhatIsLeft();
    ledger.end();
    java.end();
    return outcome;
}

std::set<std::string> exportedFunctions() {
    std::set<std::string> names;
    for (const auto &[name, function] : exports())
        names.insert(name);
    return names;
}
