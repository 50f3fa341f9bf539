#include "textfile.h"

#include "inner.h"
#include "input.h"
#include "text.h"

#include <bzlib.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace korvex {
namespace {

// The codecs: zlib's and bzlib's records have the same members.
struct Gzip {
    z_stream stream{};
    Gzip() { deflateInit2(&stream, 6, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY); }
    ~Gzip() { deflateEnd(&stream); }
    int step(bool last) { return deflate(&stream, last ? Z_FINISH : Z_NO_FLUSH); }
    static constexpr int end = Z_STREAM_END;
};
struct Gunzip {
    z_stream stream{};
    Gunzip() { inflateInit2(&stream, 15 + 16); }
    ~Gunzip() { inflateEnd(&stream); }
    int step(bool) { return inflate(&stream, Z_NO_FLUSH); }
    static constexpr int end = Z_STREAM_END;
};
struct Bzip2 {
    bz_stream stream{};
    Bzip2() { BZ2_bzCompressInit(&stream, 9, 0, 0); }
    ~Bzip2() { BZ2_bzCompressEnd(&stream); }
    int step(bool last) { return BZ2_bzCompress(&stream, last ? BZ_FINISH : BZ_RUN); }
    static constexpr int end = BZ_STREAM_END;
};
struct Bunzip2 {
    bz_stream stream{};
    Bunzip2() { BZ2_bzDecompressInit(&stream, 0, 0); }
    ~Bunzip2() { BZ2_bzDecompressEnd(&stream); }
    int step(bool) { return BZ2_bzDecompress(&stream); }
    static constexpr int end = BZ_STREAM_END;
};

// Runs a whole text through a codec; false when it is damaged or cut off. A packed file may hold
// stream after stream.
template <class Codec>
bool convert(std::string_view in, std::string &out) {
    std::vector<char> buffer(1 << 16);
    do {
        Codec codec;
        auto &stream = codec.stream;
        int status;
        do {
            auto offered = static_cast<unsigned>(std::min<size_t>(in.size(), 1 << 30));
            auto room = static_cast<unsigned>(buffer.size());
            stream.next_in =
                reinterpret_cast<decltype(stream.next_in)>(const_cast<char *>(in.data()));
            stream.avail_in = offered;
            stream.next_out = reinterpret_cast<decltype(stream.next_out)>(buffer.data());
            stream.avail_out = room;
            status = codec.step(offered == in.size());
            in.remove_prefix(offered - stream.avail_in);
            out.append(buffer.data(), room - stream.avail_out);
            bool stuck = offered == stream.avail_in && room == stream.avail_out;
            if (status != Codec::end && (status < 0 || stuck))
                return false;
        } while (status != Codec::end);
    } while (!in.empty());
    return true;
}

struct Closer {
    void operator()(std::FILE *file) const { std::fclose(file); }
};

constexpr std::string_view blanks = " \t\r\v\f";

} // namespace

bool hasEnding(std::string_view name, std::string_view ending) {
    return name.size() >= ending.size() &&
           equalIgnoringCase(name.substr(name.size() - ending.size()), ending);
}

std::string readFile(const std::string &name) {
    std::unique_ptr<std::FILE, Closer> file(std::fopen(name.c_str(), "rb"));
    std::string raw;
    std::vector<char> buffer(1 << 16);
    while (file) {
        size_t got = std::fread(buffer.data(), 1, buffer.size(), file.get());
        raw.append(buffer.data(), got);
        if (got == 0)
            break;
    }
    if (!file || std::ferror(file.get()))
        fail(KVX_ERROR_FILE_READ, "%s: %s", name.c_str(), std::strerror(errno));
    bool gzip = hasEnding(name, ".gz");
    if (!gzip && !hasEnding(name, ".bz2"))
        return raw;
    std::string text;
    if (!(gzip ? convert<Gunzip>(raw, text) : convert<Bunzip2>(raw, text)))
        fail(KVX_ERROR_FILE_READ, "%s: not a %s file, damaged or cut off", name.c_str(),
             gzip ? "gzip" : "bzip2");
    return text;
}

void writeFile(const std::string &name, std::string_view text) {
    std::string packed;
    if (hasEnding(name, ".gz") ? convert<Gzip>(text, packed)
                               : hasEnding(name, ".bz2") && convert<Bzip2>(text, packed))
        text = packed;
    static std::atomic<int> count{0};
    std::string partial = name + ".part" + std::to_string(getpid()) + "." + std::to_string(count++);
    std::FILE *file = std::fopen(partial.c_str(), "wb");
    bool good = file && std::fwrite(text.data(), 1, text.size(), file) == text.size();
    good =
        file && std::fclose(file) == 0 && good && std::rename(partial.c_str(), name.c_str()) == 0;
    if (good)
        return;
    std::string reason = std::strerror(errno);
    if (file)
        std::remove(partial.c_str());
    fail(KVX_ERROR_FILE_WRITE, "%s: %s", name.c_str(), reason.c_str());
}

std::string quoted(std::string_view text) {
    constexpr size_t most = 60;
    return "'" + validUtf8(text.substr(0, most)) + (text.size() > most ? "...'" : "'");
}

bool Source::nextLine(char comment) {
    while (position < text.size()) {
        size_t end = std::min(text.find('\n', position), text.size());
        line = std::string_view(text).substr(position, end - position);
        position = end + 1;
        lineNumber++;
        line = line.substr(0, line.find_last_not_of(blanks) + 1);
        tokens.clear();
        for (size_t begin = 0; (begin = line.find_first_not_of(blanks, begin)) < line.size();) {
            size_t past = std::min(line.find_first_of(blanks, begin), line.size());
            tokens.push_back(line.substr(begin, past - begin));
            begin = past;
        }
        if (!tokens.empty() && line[0] != comment)
            return true;
    }
    return false;
}

void Source::refuse(const std::string &why) const {
    fail(KVX_ERROR_FILE_READ, "%s, line %d: %s", name.c_str(), lineNumber, why.c_str());
}

double Source::number(std::string_view token) const {
    double value;
    if (!parse(token, value))
        refuse(quoted(token) + " is not a number");
    return value;
}

Names::Names(const ModelData &model, size_t count, std::string (*name)(const ModelData &, int),
             bool (*writable)(std::string_view)) {
    list.reserve(count);
    for (int i = 0; i < static_cast<int>(count); i++) {
        list.push_back(name(model, i));
        if (!writable(list.back()))
            fail(KVX_ERROR_FILE_WRITE, "the format can't hold the name %s",
                 quoted(list.back()).c_str());
        if (!index.emplace(list.back(), i).second)
            fail(KVX_ERROR_INVALID_ARGUMENT, "the name %s is not unique",
                 quoted(list.back()).c_str());
    }
}

int Names::find(std::string_view name) const {
    auto found = index.find(name);
    return found == index.end() ? -1 : found->second;
}

ModelData complete(ModelData model, const std::string &filename) {
    try {
        if (!isName(model.name))
            fail(KVX_ERROR_FILE_READ, "the model's name isn't UTF-8 text");
        readFinite(model.objcon, "the objective constant");
        for (size_t j = 0; j < model.vars.size(); j++) {
            Variable &var = model.vars[j];
            readFinite(var.obj, "an objective coefficient");
            Range domain = readDomain({var.lb, var.ub, var.type}, j);
            var.lb = domain.lower;
            var.ub = domain.upper;
        }
        for (size_t i = 0; i < model.constrs.size(); i++) {
            Constraint &constr = model.constrs[i];
            Range sides = readSides({constr.lower, constr.upper, constr.sense}, i);
            constr.lower = sides.lower;
            constr.upper = sides.upper;
            constr.sense = senseOf(constr.lower, constr.upper);
            auto &row = constr.row;
            for (const Entry &entry : row)
                readFinite(entry.value, "a coefficient");
            row.erase(std::remove_if(row.begin(), row.end(), [](Entry e) { return e.value == 0; }),
                      row.end());
        }
        makeColumns(model);
    } catch (const Failure &failure) {
        fail(KVX_ERROR_FILE_READ, "%s: %s", filename.c_str(), failure.text.c_str());
    }
    return model;
}

} // namespace korvex
