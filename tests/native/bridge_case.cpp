#include "bridge_case.h"

#include "com_korvex_KVXBatch.h"
#include "com_korvex_KVXEnv.h"
#include "com_korvex_KVXModel.h"
#include "com_korvex_KorvexJni.h"
#include "java_double.h"
#include "solver_double.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <tuple>

namespace {
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
    std::string key, text;

    int number(const std::string &type) {
        int k = ++numbers[type];
        key = type + std::to_string(k);
        text = source.setting(key);
        return k;
    }

    void make(jlong &value) {
        int k = number("h");
        value = text.empty() ? reinterpret_cast<jlong>(handle<void>(k)) : std::stol(text);
    }
    void make(jint &value) {
        int k = number("i");
        value = text.empty() ? k + 1 : std::stoi(text);
    }
    void make(jdouble &value) { value = number("d") + 0.25; }
    // What exceeds a byte must get lost on the way to the solver.
    void make(jchar &value) {
        number("c");
        value = 0x0100 + '<';
    }
    void make(jstring &value) {
        number("s");
        value = static_cast<jstring>(text == "null" ? nullptr : string(key)->reference());
    }
    void make(jintArray &value) { value = array<jintArray, jint>("I", 1, 10); }
    void make(jdoubleArray &value) { value = array<jdoubleArray, jdouble>("D", 0.5, 10); }
    void make(jcharArray &value) { value = array<jcharArray, jchar>("C", 0x0140, 1); }
    void make(jlongArray &value) { value = array<jlongArray, jlong>("L", 0, 0); }

    void make(jobjectArray &value) {
        int k = number("S");
        std::vector<Object *> elements;
        for (const std::string &name : listed())
            elements.push_back(name == "null" ? nullptr : string(name));
        for (int i = 0; text.empty() && i < 4; ++i)
            elements.push_back(string(static_cast<char>('a' + k - 1) + std::to_string(i)));
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

    // The words of a setting "[word word]".
    std::vector<std::string> listed() {
        std::vector<std::string> words;
        if (text.size() > 2 && text[0] == '[') {
            std::istringstream stream(text.substr(1, text.size() - 2));
            for (std::string word; std::getline(stream, word, ',');)
                words.push_back(word);
        }
        return words;
    }

    static Object *string(const std::string &text) { return java.make(text, text); }

    const Case &source;
    std::map<std::string, int> numbers;
};

template <class R, class Receiver, class... A>
void callExport(R (*function)(JNIEnv *, Receiver, A...), Arguments &arguments) {
    std::tuple<A...> values{arguments.next<A>()...};
    auto *self = static_cast<Receiver>(java.self()->reference());
    auto call = [&](A... value) { return function(java.env(), self, value...); };
    if constexpr (std::is_void_v<R>) {
        std::apply(call, values);
    } else {
        R result = std::apply(call, values);
        if constexpr (std::is_same_v<R, jint>) {
            ledger.note("= " + std::to_string(result));
        } else if constexpr (std::is_same_v<R, jlong>) {
            ledger.note("= " + showPointer(reinterpret_cast<void *>(result)));
        } else {
            auto *text = reinterpret_cast<Object *>(result);
            ledger.note("= " + (text ? text->name : "null"));
            if (text)
                --text->locals;
        }
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

std::vector<std::vector<int>> rowsOf(const std::string &text) {
    std::vector<std::vector<int>> rows;
    std::istringstream stream(text);
    for (std::string row; std::getline(stream, row, '/');) {
        rows.emplace_back();
        std::istringstream numbers(row);
        for (std::string number; std::getline(numbers, number, ',');)
            rows.back().push_back(std::stoi(number));
    }
    return rows;
}

// What Java does in the end: turns its log off, waits for the run it started.
void endWhatIsLeft() {
    ledger.plan = {};
    solver.storesOnFailure = false;
    JNIEnv *env = java.env();
    auto model = reinterpret_cast<jlong>(handle<KVXmodel>(1));
    if (ledger.blockOf(solver.logData))
        Java_com_korvex_KVXEnv_jniSetLogCB(env, java.self()->reference(), model, 0);
    if (ledger.blockOf(solver.callbackData))
        Java_com_korvex_KorvexJni_sync(env, nullptr, model,
                                       reinterpret_cast<jlong>(solver.callbackData), nullptr);
}

std::string trimmed(const std::string &text) {
    auto first = text.find_first_not_of(' ');
    return first == std::string::npos ? ""
                                      : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

void addEvents(std::vector<std::string> &events, const std::string &line) {
    std::istringstream stream(line);
    for (std::string event; std::getline(stream, event, '|');)
        if (!events.empty() && events.back().back() == ',')
            events.back() += ' ' + trimmed(event);
        else if (!trimmed(event).empty())
            events.push_back(trimmed(event));
}

// "name/KVXfunction name/KVXfunction: key=value key" makes a case for each name.
std::vector<Case> casesOfHeader(const std::string &place, const std::string &header,
                                const std::vector<std::string> &events) {
    auto colon = header.find(':');
    std::istringstream names(header.substr(0, colon));
    std::istringstream words(colon == std::string::npos ? "" : header.substr(colon + 1));
    std::map<std::string, std::string> settings;
    for (std::string word; words >> word;)
        settings[word.substr(0, word.find('='))] =
            word.find('=') == std::string::npos ? "yes" : word.substr(word.find('=') + 1);
    std::vector<Case> cases;
    for (std::string name; names >> name;) {
        auto slash = name.find('/');
        cases.push_back({place, name.substr(0, slash), settings, events});
        for (std::string &event : cases.back().events)
            if (event[0] == '$')
                event = name.substr(slash + 1) + event.substr(1);
    }
    return cases;
}
} // namespace

std::string Case::setting(const std::string &key, const std::string &otherwise) const {
    auto found = settings.find(key);
    return found == settings.end() ? otherwise : found->second;
}

std::ostream &operator<<(std::ostream &out, const Case &shown) {
    return out << shown.place;
}

// A header starts in the first column and may go on for several lines; its events are indented,
// with
// '|' between them; a line that ends with a comma goes on in the next; '#' begins a comment line.
std::vector<Case> readCases(const std::string &directory) {
    std::vector<Case> cases;
    for (const auto &file : std::filesystem::directory_iterator(directory)) {
        std::ifstream in(file.path());
        std::string header, place;
        std::vector<std::string> events;
        auto finish = [&] {
            auto more = casesOfHeader(place, header, events);
            cases.insert(cases.end(), more.begin(), more.end());
            header.clear();
            events.clear();
        };
        int number = 0;
        for (std::string line; std::getline(in, line);) {
            ++number;
            if (line.empty() || line[0] == '#')
                continue;
            if (line[0] == ' ') {
                addEvents(events, line);
            } else {
                if (!events.empty())
                    finish();
                if (header.empty())
                    place = file.path().stem().string() + "_" + std::to_string(number);
                header += " " + line;
            }
        }
        finish();
    }
    return cases;
}

std::vector<std::string> eventsOf(const std::string &text) {
    std::vector<std::string> events;
    addEvents(events, text);
    return events;
}

Outcome run(const Case &which, const Plan &plan) {
    java.begin();
    solver.begin();
    Plan planned = plan;
    planned.allocation = std::stoi(which.setting("malloc", std::to_string(plan.allocation)));
    planned.fetch = std::stoi(which.setting("fetch", std::to_string(plan.fetch)));
    planned.solverCall = std::stoi(which.setting("solver", std::to_string(plan.solverCall)));
    planned.status = std::stoi(which.setting("status", std::to_string(plan.status)));
    solver.ints = rowsOf(which.setting("ints", "2,3,4,5"));
    solver.storesOnFailure = which.settings.count("stored");
    java.missing = which.setting("missing");
    java.noVM = which.settings.count("novm");
    std::string text = which.setting("text", "text");
    solver.text = text == "null" ? nullptr : text.c_str();

    ledger.begin(planned);
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
