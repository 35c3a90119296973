// Parsing and writing of a movie's header.
#include "tests/support/movie_atoms.h"

#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <string_view>

namespace flowtide::test {

namespace {

constexpr std::size_t headerSize = 8;

/// Bytes before the children; nothing for atoms without children.
std::size_t prefixOf(const std::string& type, bool& isContainer) {
    constexpr std::array containers{"moov", "trak", "mdia", "minf", "stbl", "edts", "stsd"};
    isContainer = std::find(containers.begin(), containers.end(), std::string_view(type)) != containers.end();
    return type == "stsd" ? 8 : 0;
}

std::vector<MovieAtom> parsed(std::string_view bytes) {
    std::vector<MovieAtom> atoms;
    while (bytes.size() >= headerSize) {
        const std::size_t size = number32(std::string(bytes.substr(0, 4)), 0);
        if (size < headerSize || size > bytes.size()) throw std::runtime_error("not a movie");
        MovieAtom& atom = atoms.emplace_back();
        atom.type = bytes.substr(4, 4);
        const std::string_view body = bytes.substr(headerSize, size - headerSize);
        bool isContainer = false;
        const std::size_t prefix = prefixOf(atom.type, isContainer);
        atom.bytes = isContainer ? body.substr(0, prefix) : body;
        if (isContainer) atom.children = parsed(body.substr(prefix));
        bytes.remove_prefix(size);
    }
    return atoms;
}

std::string written(const MovieAtom& atom) {
    std::string body = atom.bytes;
    for (const MovieAtom& child : atom.children)
        body += written(child);
    return bytesOf32(static_cast<std::uint32_t>(body.size() + headerSize)) + atom.type + body;
}

} // namespace

bool MovieAtom::has(const std::string& childType) const {
    return std::any_of(children.begin(), children.end(), [&](const auto& one) { return one.type == childType; });
}

MovieAtom& MovieAtom::child(const std::string& childType) {
    for (MovieAtom& one : children)
        if (one.type == childType) return one;
    throw std::runtime_error("no atom " + childType);
}

MovieAtom& MovieAtom::track(std::size_t index) {
    for (MovieAtom& one : children)
        if (one.type == "trak" && index-- == 0) return one;
    throw std::runtime_error("no such track");
}

MovieAtom& MovieAtom::at(const std::vector<std::string>& types) {
    MovieAtom* atom = this;
    for (const std::string& one : types)
        atom = &atom->child(one);
    return *atom;
}

std::uint32_t number32(const std::string& bytes, std::size_t offset) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes.at(offset + i));
    return value;
}

std::string bytesOf32(std::uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 0xFF);
    return bytes;
}

void setNumber32(std::string& bytes, std::size_t offset, std::uint32_t value) {
    bytes.replace(offset, 4, bytesOf32(value));
}

void changeMovie(const std::filesystem::path& path, const std::function<void(MovieAtom&)>& change) {
    const std::string file = readFile(path);
    for (std::size_t offset = 0; offset + headerSize <= file.size();) {
        const std::size_t size = number32(file, offset);
        if (file.compare(offset + 4, 4, "moov") == 0 && offset + size == file.size()) {
            MovieAtom movie = parsed(std::string_view(file).substr(offset)).front();
            change(movie);
            writeFile(path, file.substr(0, offset) + written(movie));
            return;
        }
        if (size < headerSize) break;
        offset += size;
    }
    throw std::runtime_error("the movie atom is not the last one");
}

void setEdits(const std::filesystem::path& path, const std::vector<SourceRange>& edits) {
    changeMovie(path, [&](MovieAtom& movie) {
        constexpr std::size_t timescaleOffset = 12; // in mvhd and mdhd of version 0
        const double movieScale = number32(movie.child("mvhd").bytes, timescaleOffset);
        const auto ticks = [](double seconds, double scale) {
            return static_cast<std::uint32_t>(std::lround(seconds * scale));
        };
        double total = 0;
        for (const SourceRange& edit : edits)
            total += edit.upper - edit.lower;
        setNumber32(movie.child("mvhd").bytes, 16, ticks(total, movieScale));
        for (MovieAtom& track : movie.children) {
            if (track.type != "trak") continue;
            setNumber32(track.child("tkhd").bytes, 20, ticks(total, movieScale));
            const double mediaScale = number32(track.at({"mdia", "mdhd"}).bytes, timescaleOffset);
            // Reordered pictures and an encoder's delay put the media's own zero later.
            std::uint32_t zero = 0;
            if (track.has("edts")) zero = number32(track.at({"edts", "elst"}).bytes, 12);
            std::string list = bytesOf32(0) + bytesOf32(static_cast<std::uint32_t>(edits.size()));
            for (const SourceRange& edit : edits)
                list += bytesOf32(ticks(edit.upper - edit.lower, movieScale)) +
                        bytesOf32(ticks(edit.lower, mediaScale) + zero) + bytesOf32(0x10000);
            std::erase_if(track.children, [](const MovieAtom& one) { return one.type == "edts"; });
            track.children.push_back({"edts", {}, {{"elst", list, {}}}});
        }
    });
}

void loseLastChunk(const std::filesystem::path& path, std::size_t track) {
    changeMovie(path, [&](MovieAtom& movie) {
        std::string& offsets = movie.track(track).at({"mdia", "minf", "stbl", "stco"}).bytes;
        setNumber32(offsets, offsets.size() - 4, 0x7FFFFFFF);
    });
}

void damageChunk(const std::filesystem::path& path, std::size_t track, std::size_t chunk, std::size_t first,
                 std::size_t count) {
    std::size_t offset = 0;
    changeMovie(path, [&](MovieAtom& movie) {
        constexpr std::size_t tableOffset = 8;
        offset = number32(movie.track(track).at({"mdia", "minf", "stbl", "stco"}).bytes, tableOffset + 4 * chunk);
    });
    std::string file = readFile(path);
    // As the start of an AAC packet it names a channel that is not there; as the start of a picture, a size too large.
    constexpr char nonsense = 0x60;
    for (std::size_t i = 0; i < count; ++i)
        file.at(offset + first + i) = nonsense;
    writeFile(path, file);
}

} // namespace flowtide::test
