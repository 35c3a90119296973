// Makes movies that no writer of ours would: changes the atoms behind the media of a finished file.
#pragma once

#include "core/time.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace flowtide::test {

/// An atom of a movie's header; those that hold others have children, the rest have bytes.
struct MovieAtom {
    std::string type;
    std::string bytes; ///< in a sample table's description: everything before the first entry
    std::vector<MovieAtom> children;

    /// The first child of a type; the test ends with an exception when there is none.
    MovieAtom& child(const std::string& childType);
    /// The atom under `types`, one below the other.
    MovieAtom& at(const std::vector<std::string>& types);
    /// The movie's track of an index, counted from 0.
    MovieAtom& track(std::size_t index);
    bool has(const std::string& childType) const;
};

std::uint32_t number32(const std::string& bytes, std::size_t offset);
void setNumber32(std::string& bytes, std::size_t offset, std::uint32_t value);
std::string bytesOf32(std::uint32_t value);

/// Lets `change` work on the movie atom of a file that ends with it, and writes the file anew.
void changeMovie(const std::filesystem::path& path, const std::function<void(MovieAtom& movie)>& change);

/// Gives every track an edit list that shows these ranges of its media, in seconds, one after the other.
void setEdits(const std::filesystem::path& path, const std::vector<SourceRange>& edits);

/// Points the last chunk of a track (counted from 0) behind the file's end, as if the file had been cut off before it.
void loseLastChunk(const std::filesystem::path& path, std::size_t track);

/// Makes nonsense of `count` bytes of a chunk of a track, from its byte `first` on; both counted from 0.
void damageChunk(const std::filesystem::path& path, std::size_t track, std::size_t chunk, std::size_t first,
                 std::size_t count);

} // namespace flowtide::test
