#include "textfile.h"

#include <algorithm>
#include <bzlib.h>
#include <cerrno>
#include <cstring>
#include <unordered_set>
#include <zlib.h>

namespace korvex {

bool hasEnding(std::string_view name, std::string_view ending) {
    return name.size() >= ending.size() &&
           equalIgnoringCase(name.substr(name.size() - ending.size()), ending);
}

// zlib reads what isn't packed as it is.
std::string readFile(const std::string &name) {
    bool isBzip2 = hasEnding(name, ".bz2");
    errno = 0;
    gzFile gzip = isBzip2 ? nullptr : gzopen(name.c_str(), "rb");
    BZFILE *bzip2 = isBzip2 ? BZ2_bzopen(name.c_str(), "rb") : nullptr;
    std::string text;
    char buffer[1 << 14];
    int length = gzip || bzip2 ? 1 : -1;
    while (length > 0) {
        length =
            gzip ? gzread(gzip, buffer, sizeof buffer) : BZ2_bzread(bzip2, buffer, sizeof buffer);
        text.append(buffer, at(std::max(length, 0)));
    }
    int status, rest = 0; // of a second stream, which isn't read
    void *unused;
    if (bzip2)
        BZ2_bzReadGetUnused(&status, bzip2, &unused, &rest);
    BZ2_bzclose(bzip2);
    bool isPlain = gzip && gzdirect(gzip), isGzip = hasEnding(name, ".gz");
    // Only closing tells that a gzip file is cut off.
    bool isWhole = !gzip || gzclose(gzip) == Z_OK;
    if (length < 0 || !isWhole || rest > 0 || (isGzip && isPlain))
        fail(KVX_ERROR_FILE_READ, "%s: %s", name.c_str(),
             errno ? std::strerror(errno) : "damaged or cut off, or not packed as its name says");
    return text;
}

void writeFile(const std::string &name, const std::string &text) {
    std::string packed = text;
    if (hasEnding(name, ".bz2")) {
        packed.resize(text.size() + text.size() / 100 + 600); // enough in any case
        auto length = static_cast<unsigned>(packed.size());
        BZ2_bzBuffToBuffCompress(packed.data(), &length, const_cast<char *>(text.data()),
                                 static_cast<unsigned>(text.size()), 9, 0, 0);
        packed.resize(length);
    }
    const std::string partial = name + ".part"; // A failure leaves what was there before.
    gzFile file = gzopen(partial.c_str(), hasEnding(name, ".gz") ? "wb" : "wbT"); // T: as it is
    auto size = static_cast<unsigned>(packed.size());
    bool isWritten = file && gzwrite(file, packed.data(), size) == intSize(packed.size());
    isWritten = gzclose(file) == Z_OK && isWritten;
    if (!isWritten || std::rename(partial.c_str(), name.c_str()) != 0) {
        std::string reason = std::strerror(errno);
        std::remove(partial.c_str());
        fail(KVX_ERROR_FILE_WRITE, "%s: %s", name.c_str(), reason.c_str());
    }
}

bool Source::nextLine(char comment) {
    auto isBlank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    do {
        if (position >= text.size())
            return false;
        line = std::string_view(text).substr(position);
        line = line.substr(0, line.find('\n'));
        position += line.size() + 1;
        number++;
        words.clear();
        if (line[0] == comment)
            continue;
        const char *const last = line.data() + line.size(), *begin = line.data(), *end;
        for (; (begin = std::find_if_not(begin, last, isBlank)) != last; begin = end) {
            end = std::find_if(begin, last, isBlank);
            words.emplace_back(begin, end - begin);
            if (!isName(words.back()))
                refuse(words.back(), "isn't UTF-8 text");
        }
    } while (words.empty());
    return true;
}

void refuse(std::string_view word, const char *why) {
    fail(KVX_ERROR_FILE_READ, "'%s' %s", std::string(word).c_str(), why);
}

void expected(std::string_view word, const char *what) {
    std::string text(word);
    if (text.empty())
        fail(KVX_ERROR_FILE_READ, "the file ends where %s is expected", what);
    fail(KVX_ERROR_FILE_READ, "'%s' stands where %s is expected", text.c_str(), what);
}

template <class Number>
Number numberIn(std::string_view word) {
    Number value;
    if (parse(word, value))
        return value;
    std::string text(word);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == 'd' || c == 'D'; }, 'e');
    if (!parse(text, value))
        expected(word, "a number");
    return value;
}
template double numberIn(std::string_view word);
template long double numberIn(std::string_view word);

Names::Names(const ModelData &model, bool (*canHold)(std::string_view)) {
    std::unordered_set<std::string> takenByVars, takenByConstrs;
    auto fill = [&](std::vector<std::string> &names, const auto &elements, char letter,
                    std::unordered_set<std::string> &taken) {
        for (const auto &element : elements) {
            std::string name = element.name.text();
            bool isHeld = canHold(name) && taken.insert(name).second;
            names.push_back(isHeld ? std::move(name) : "");
        }
        for (size_t i = 0; i < names.size(); i++) {
            if (!names[i].empty())
                continue;
            replaced++;
            names[i] = letter + std::to_string(i);
            while (!taken.insert(names[i]).second)
                names[i] += '_';
        }
    };
    fill(vars, model.vars, 'x', takenByVars);
    fill(constrs, model.constrs, 'c', takenByConstrs);
    fill(qconstrs, model.qconstrs, 'q', takenByConstrs);
}

bool isWord(std::string_view name) {
    return name.find(' ') == std::string_view::npos && name[0] != '#' && name[0] != '\'';
}

} // namespace korvex
